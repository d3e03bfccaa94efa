#include "entry/PageClock.h"

#include "entry/DatePatternText.h"

namespace ff {

QString PageClock::datePattern(int clockFormat)
{
    // The same list, in the same order, as the record stamp's StampFormat.
    switch (clockFormat) {
    case 0: return QStringLiteral("dddd dd-mmm-yyyy");
    case 1: return QStringLiteral("dd-mmmm-yyyy");
    case 2: return QStringLiteral("dd-mm-yyyy");
    case 3: return QStringLiteral("mm-dd-yyyy");
    case 4: return QStringLiteral("yyyy-mm-dd");
    default: return QString();
    }
}

QString PageClock::text(const QDateTime &now, int clockFormat, const QLocale &locale)
{
    const QString pattern = datePattern(clockFormat);
    const QString date = pattern.isEmpty() ? locale.toString(now.date(), QLocale::ShortFormat)
                                           : DatePatternText::format(now, pattern, locale);
    return DatePatternText::format(now, QStringLiteral("h:mmam/pm"), locale) + QStringLiteral("  ") + date;
}

} // namespace ff
