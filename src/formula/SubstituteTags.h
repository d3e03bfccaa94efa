#pragma once
// Fills the tags of a free text (button lines, templates, mail, printing) with live values of the
// page. Tags are matched ignoring case, in this order: "ID:", "APATH:", "F<n>:" text fields,
// "C<n>:" combos, "M<n>:" notes, "L<n>:" label captions, "L<n>$" label tags, "LF$" a line break,
// "K<n>:" check values. The colon ends the number, so ascending order is safe.

#include "design/Page.h"
#include "formula/FormulaContext.h"

#include <QString>

namespace ff {

QString SubstituteTags(QString &text, const Page &page, const FormulaContext &context);

} // namespace ff
