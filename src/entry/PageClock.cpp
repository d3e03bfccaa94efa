#include "entry/PageClock.h"

#include "entry/DatePatternText.h"

namespace ff {

QString PageClock::datePattern(int clockFormat)
{
    switch (clockFormat) {
    case 1: return QStringLiteral("dddd dd-mmm-yyyy");
    case 2: return QStringLiteral("dd-mmmm-yyyy");
    case 3: return QStringLiteral("dd-mm-yyyy");
    case 4: return QStringLiteral("mm-dd-yyyy");
    case 5: return QStringLiteral("yyyy-mm-dd");
    default: return QString();
    }
}

QString PageClock::text(const QDateTime &now, int clockFormat, const QLocale &locale)
{
    QString text = DatePatternText::format(now, QStringLiteral("h:mmam/pm"), locale);
    const QString pattern = datePattern(clockFormat);
    if (!pattern.isEmpty())
        text += QStringLiteral("  ") + DatePatternText::format(now, pattern, locale);
    return text;
}

} // namespace ff
