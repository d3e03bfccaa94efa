#pragma once
// The columns of the exports that write one value a field: the tab walk over the design and the
// column names of the delimited text.
//
// The walk takes every tab position from 0 up to the highest one of the design, as the focus
// order does; at each position the text fields standing at it, then the check fields, the
// combos and the notes, each family by element number. A field counts when it stands on no page
// (page -1) or on a page the user may see. The delimited text adds the per-record pictures after
// the walk, one column each, on the same condition.
//
// Names are the elements' tags, one table per family (text, combo, note, check). A name that a
// family holds twice is made unique on its second and later holders: a running number, "_", the
// name. The number starts at 2 and runs on over all families of the export.

#include "design/Design.h"
#include "design/Page.h"

#include <QString>
#include <array>
#include <vector>

namespace ff {

// Pages 0..4: true when the user may see the page.
using PageAllowed = std::array<bool, kPageLimit>;
inline PageAllowed AllPagesAllowed() { return {true, true, true, true, true}; }

struct ExportColumn {
    ElementKind kind = ElementKind::None; // Field, Check, Combo, Note or Picture
    int index = 0;
    QString name;     // the column head of the delimited text
    float width = 0;  // the element's width in twips (checks have none)
};

// True when an element on `page` is exported for a user with `allowed` pages.
bool ExportPageCounts(int page, const PageAllowed &allowed);

// The order of the families at one tab position.
enum class TabWalkOrder { TextCheckComboNote, TextComboCheckNote };

// The tab walk: fields, checks, combos and notes in column order, named.
std::vector<ExportColumn> TabWalkColumns(const Design &design, const PageAllowed &allowed,
                                         TabWalkOrder order = TabWalkOrder::TextCheckComboNote);
// The per-record pictures (Stretch) on a page that counts, named by their PictureName.
std::vector<ExportColumn> PictureColumns(const Design &design, const PageAllowed &allowed);

} // namespace ff
