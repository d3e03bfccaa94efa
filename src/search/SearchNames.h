#pragma once
// The names a search line may use: the tags of the stored elements, lower-cased, in four lists
// (text fields, combos, check fields, notes) that are searched in this order, so that a name used
// twice means the first. Also describes any element as a SearchField: where its bytes are and how
// they read. Elements without bytes in the record (global fields, fields on no page) have no name.

#include "design/Design.h"
#include "search/SearchQuery.h"
#include "store/RecordLayout.h"

#include <QString>
#include <QVector>

namespace ff {

class SearchNames {
public:
    SearchNames(const Design &design, const RecordLayout &layout);

    // Exact lookup of a lower-case name; an invalid field when nothing is called so.
    SearchField lookup(const QString &lowerName) const;
    // Every field whose name matches `lowerPattern` by the pattern rule, in list order.
    QVector<SearchField> matching(const QString &lowerPattern) const;
    // The element `index` of `kind`; invalid when it has no bytes.
    SearchField describe(SearchKind kind, int index) const;
    // "F3", "C1", "K0", "M2", "P1", or a name from the lists.
    SearchField byTag(const QString &tag) const;
    // The columns a "*" takes: the design's search settings 1 to 10 name text fields; when none
    // is set, the first ten stored text fields.
    QVector<SearchField> defaultColumns() const;

    const Design &design() const { return design_; }
    const RecordLayout &layout() const { return layout_; }

private:
    struct Entry {
        QString name;
        SearchKind kind;
        int index;
    };
    const Design &design_;
    const RecordLayout &layout_;
    QVector<Entry> entries_; // the four lists one after the other
};

} // namespace ff
