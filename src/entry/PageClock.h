#pragma once
// The clock of the page's status area: the time as "h:mmam/pm" and the date in the format that the
// design's ClockFormat picks from the stamp formats: 0 "dddd dd-mmm-yyyy", 1 "dd-mmmm-yyyy",
// 2 "dd-mm-yyyy", 3 "mm-dd-yyyy", 4 "yyyy-mm-dd", any other the system's short date.

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ff {

class PageClock {
public:
    // The free date pattern of a format code; empty for a code outside the list.
    static QString datePattern(int clockFormat);
    static QString text(const QDateTime &now, int clockFormat, const QLocale &locale);
};

} // namespace ff
