#pragma once
// The rewriting evaluator: turns one expression of digits, signs and single letters into a number.
// There is no tokenizer and no precedence. Each innermost bracket is computed and its text replaced
// by the result; what is left is computed by one scan from left to right. Stored formulas rely on
// every odd rule here, so they are kept: "-" is part of a number and "~" subtracts, the bracket pass
// has a bound fixed at entry and resumes at the second character with the last bracket start kept,
// and inside a bracket the rounding letters are looked up at the same index of the whole expression.

#include <QString>

#include <optional>

namespace ff {

// Evaluates `expression` and rewrites it on the way (its brackets are replaced by their values).
// No value means the call was abandoned: a ")" was met with no "(" before it. Callers go on as if
// the result were empty, which later reads as 0. Every failure inside an operator is passed over.
std::optional<double> EvaluateExpression(QString &expression,
                                         const QString &decimalSeparator = QStringLiteral("."));

// The result as callers use it: the default conversion to text through CleanNumber, and the empty
// text for an abandoned call.
QString EvaluateToText(QString &expression, const QString &decimalSeparator = QStringLiteral("."));

} // namespace ff
