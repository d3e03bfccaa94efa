#pragma once
// The system's number format with a fixed number of places (QLocale::toString(value, 'f', places)
// of the value rounded half away from zero), made without the locale's formatting for every value:
// a formula that shows a money value runs for every record of an import.
//
// The notation (sign, decimal point, group mark and where group marks stand for each number of
// integer digits) is learned from the locale's own texts, then checked against them over values of
// every size, sign and number of places; a locale whose texts differ in any of them, and every
// value beyond 15 significant digits, takes the locale's own formatting.

#include <QLocale>
#include <QString>

#include <array>
#include <cstdint>

namespace ff {

class FixedNumberText {
public:
    FixedNumberText(const QLocale &locale, bool grouping);

    // True when made for this locale and grouping.
    bool isFor(const QLocale &locale, bool grouping) const;
    // True when the notation was learned; false when every text is the locale's formatting.
    bool learned() const { return fast_; }
    // `value` rounded half away from zero at `places` (0 to 4) and written with them.
    QString text(double value, int places) const;

private:
    bool learn();
    bool fastText(double value, int places, QString &out) const;

    QLocale of_;
    QLocale::NumberOptions options_;
    bool grouping_;
    QLocale locale_; // of_ with the group separator on or off
    bool fast_ = false;
    QString minus_, point_, group_;
    // For n integer digits (1..15), bit p set: a group mark between the p-th and (p+1)-th digit
    // counted from the right.
    std::array<uint32_t, 16> marks_{};
};

} // namespace ff
