#pragma once
// Number texts of the formula language: the clean-up every number text passes before it is read,
// the leading-number reader, the default number-to-text conversion and the decimal rounding that
// the rounding operators use.

#include <QString>

#include <optional>

namespace ff {

// Turns a number in the system's notation into the notation Val reads: with a decimal separator
// other than "." every "." goes and the separator becomes "."; then every ",", "'" and
// character 160 goes. Changes `text` and returns it.
QString &CleanNumber(QString &text, const QString &decimalSeparator = QStringLiteral("."));
QString CleanNumberCopy(QString text, const QString &decimalSeparator = QStringLiteral("."));

// The leading-number rule: blanks, tabs and line feeds are skipped wherever they stand, then an
// optional sign, digits, at most one point and an optional exponent in "E" or "D" are read up to
// the first character that cannot continue the number. Nothing read gives 0. An exponent beyond
// the range of a double gives an infinite value, which callers treat as an overflow.
double Val(const QString &text);

// The default conversion of a number to text: up to 15 significant digits as "%.15G" gives them,
// with the locale's decimal separator in place of the point. A negative zero reads "0".
QString NumberToText(double value, const QString &decimalSeparator = QStringLiteral("."));

// Rounds half to even at `decimals` places, working on the value's 15-significant-digit decimal
// form, so that 2.675 (stored as 2.67499999...) rounds to 2.68 at 2 places.
double RoundHalfEven(double value, int decimals);
// The same with halves away from zero: how the system's number and currency formats round.
double RoundHalfAway(double value, int decimals);

// A value rounded at `decimals` places as the two above round it, as whole digits:
// (negative ? -1 : 1) x digits x 10^-decimals. No value where the 15 significant digits reach below
// 10^-decimals (nothing is rounded then) or the value is not finite. A value that rounds to zero
// has digits 0 and is not negative.
struct DecimalDigits {
    bool negative = false;
    long long digits = 0;
};
std::optional<DecimalDigits> RoundedDigits(double value, int decimals, bool halfEven);

// A text that is a number as a whole (blanks around it allowed), as a conversion to a number would
// accept it; no value for anything else, the empty text included.
std::optional<double> ParseNumericText(const QString &text);

} // namespace ff
