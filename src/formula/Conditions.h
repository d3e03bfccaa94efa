#pragma once
// Formula lines: a line of assignment tokens, or an IF line with a flat AND/OR/THEN/ELSE walk, and
// the test of one comparison. A line is cut at every single blank, so two blanks give an empty
// token and a comparison holds no blanks of its own. Field references are already replaced.
//
// The compare mode belongs to the caller and is passed by reference: 0 numbers, 1 text, 2 dates.
// A token holding a double quote raises it to 1 for the rest of the line.

#include "core/Result.h"
#include "formula/FormulaContext.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

namespace ff {

// Carries out one assignment token; a failure stops the line.
using StatementRunner = std::function<Status(QString &token)>;

// Inside double quotes every blank becomes "_", so that a quoted text stays one token.
QString &ProtectQuotedText(QString &line);

// "TRUE" becomes "1" and "FALSE" "0" (anywhere, any case), quotes are protected, and every token
// is run in order. Stops at the first failing statement and returns its failure.
Status RunAssignments(QString &line, uint8_t &mode, const StatementRunner &run);

// IF condition { AND condition | OR condition } THEN statement... [ELSE statement...]
// The first token is not looked at; "_" becomes a blank again in every token.
Status RunIf(QString &line, uint8_t &mode, const StatementRunner &run, const FormulaContext &context);

// One comparison token: NOT(...) is numeric and its operands are not evaluated; otherwise sides
// holding an operator are evaluated (except for "="), then compared by mode. A text that is no
// date in mode 2 is a failure.
Result<bool> TestCondition(QString &token, uint8_t &mode, const FormulaContext &context);

} // namespace ff
