#pragma once
// The right side of an assignment token: the function forms CUR(, CUR0( to CUR4(, NUM0( to NUM4(,
// MSGBOX( and the comparisons. They are looked for in the whole token, ignoring case, in that
// order, and only the first found runs.

#include "core/Result.h"
#include "formula/FormulaContext.h"

#include <QString>

namespace ff {

// Replaces `right` by what the first function form or comparison in `token` yields. A currency
// or number form whose argument is no number is a failure that stops the line.
Status EvaluateRightSide(const QString &token, QString &right, FormulaContext &context);

} // namespace ff
