#pragma once
// Dates written by a free pattern of the design, in the notation the design's authors use:
// "d" "dd" "ddd" "dddd" day, "w" weekday (Sunday 1), "ww" week of the year, "m" "mm" "mmm" "mmmm"
// month (or minutes right after an hour), "q" quarter, "y" day of the year, "yy" "yyyy" year,
// "h" "hh" hours, "n" "nn" minutes, "s" "ss" seconds, "AM/PM" "am/pm" "A/P" "a/p" a twelve-hour
// clock with its mark, "c" the general date. Texts in double quotes and a character after "\"
// stand as they are, as does every other character. Used by the F-key date patterns and the clock.

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ff {

class DatePatternText {
public:
    static QString format(const QDateTime &when, const QString &pattern, const QLocale &locale);
    // The same for a day number (days since 30 December 1899).
    static QString formatNumber(double date, const QString &pattern, const QLocale &locale);
};

} // namespace ff
