#pragma once
// The clock of the page's status area: the time as "h:mmam/pm" and, by the design's clock format
// code, the date: 1 "dddd dd-mmm-yyyy", 2 "dd-mmmm-yyyy", 3 "dd-mm-yyyy", 4 "mm-dd-yyyy",
// 5 "yyyy-mm-dd"; any other code shows the time alone.

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ff {

class PageClock {
public:
    static QString datePattern(int clockFormat);
    static QString text(const QDateTime &now, int clockFormat, const QLocale &locale);
};

} // namespace ff
