#include "entry/DatePatternText.h"

#include "formula/DateNumber.h"
#include "formula/FieldFormat.h"

namespace ff {

namespace {

int runLength(const QString &pattern, int at, QChar c)
{
    int n = 0;
    while (at + n < pattern.size() && pattern.at(at + n).toLower() == c)
        ++n;
    return n;
}

bool startsWithNoCase(const QString &pattern, int at, const char *word)
{
    return pattern.mid(at, static_cast<int>(qstrlen(word))).compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

QString twoDigits(int value) { return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0')); }

int weekdaySundayFirst(const QDate &date) { return date.dayOfWeek() % 7 + 1; }

int weekOfYear(const QDate &date)
{
    const int offset = weekdaySundayFirst(QDate(date.year(), 1, 1)) - 1;
    return (date.dayOfYear() - 1 + offset) / 7 + 1;
}

// Whether the pattern asks for a twelve-hour clock anywhere.
bool hasTwelveHourMark(const QString &pattern)
{
    const QString lower = pattern.toLower();
    return lower.contains(QLatin1String("am/pm")) || lower.contains(QLatin1String("a/p"))
           || lower.contains(QLatin1String("ampm"));
}

} // namespace

QString DatePatternText::format(const QDateTime &when, const QString &pattern, const QLocale &locale)
{
    const QDate d = when.date();
    const QTime t = when.time();
    const bool twelve = hasTwelveHourMark(pattern);
    int hour = t.hour();
    if (twelve) {
        hour %= 12;
        if (hour == 0)
            hour = 12;
    }
    const bool pm = t.hour() >= 12;

    QString out;
    bool afterHour = false; // "m" right after an hour means minutes
    int i = 0;
    while (i < pattern.size()) {
        const QChar c = pattern.at(i);
        const QChar lc = c.toLower();
        if (c == QLatin1Char('"')) {
            const int end = pattern.indexOf(QLatin1Char('"'), i + 1);
            const int stop = end < 0 ? static_cast<int>(pattern.size()) : end;
            out += pattern.mid(i + 1, stop - i - 1);
            i = stop + 1;
            continue;
        }
        if (c == QLatin1Char('\\')) {
            if (i + 1 < pattern.size())
                out += pattern.at(i + 1);
            i += 2;
            continue;
        }
        if (startsWithNoCase(pattern, i, "am/pm")) {
            const QString mark = pm ? QStringLiteral("pm") : QStringLiteral("am");
            out += c.isUpper() ? mark.toUpper() : mark;
            i += 5;
            continue;
        }
        if (startsWithNoCase(pattern, i, "a/p")) {
            const QString mark = pm ? QStringLiteral("p") : QStringLiteral("a");
            out += c.isUpper() ? mark.toUpper() : mark;
            i += 3;
            continue;
        }
        if (startsWithNoCase(pattern, i, "ampm")) {
            out += pm ? locale.pmText() : locale.amText();
            i += 4;
            continue;
        }
        const int n = runLength(pattern, i, lc);
        if (lc == QLatin1Char('d')) {
            if (n == 1)
                out += QString::number(d.day());
            else if (n == 2)
                out += twoDigits(d.day());
            else if (n == 3)
                out += locale.dayName(d.dayOfWeek(), QLocale::ShortFormat);
            else if (n == 4)
                out += locale.dayName(d.dayOfWeek(), QLocale::LongFormat);
            else if (n == 5)
                out += FormatDateByType(NumberFromDate(d), kFormatShortDate, locale);
            else
                out += FormatDateByType(NumberFromDate(d), kFormatLongDate, locale);
            afterHour = false;
        } else if (lc == QLatin1Char('w')) {
            out += QString::number(n >= 2 ? weekOfYear(d) : weekdaySundayFirst(d));
            afterHour = false;
        } else if (lc == QLatin1Char('m')) {
            if (afterHour && n <= 2)
                out += n == 1 ? QString::number(t.minute()) : twoDigits(t.minute());
            else if (n == 1)
                out += QString::number(d.month());
            else if (n == 2)
                out += twoDigits(d.month());
            else if (n == 3)
                out += locale.monthName(d.month(), QLocale::ShortFormat);
            else
                out += locale.monthName(d.month(), QLocale::LongFormat);
            afterHour = false;
        } else if (lc == QLatin1Char('n')) {
            out += n == 1 ? QString::number(t.minute()) : twoDigits(t.minute());
            afterHour = false;
        } else if (lc == QLatin1Char('q')) {
            out += QString::number((d.month() - 1) / 3 + 1);
        } else if (lc == QLatin1Char('y')) {
            if (n == 1)
                out += QString::number(d.dayOfYear());
            else if (n <= 3)
                out += twoDigits(d.year() % 100);
            else
                out += QString::number(d.year());
            afterHour = false;
        } else if (lc == QLatin1Char('h')) {
            out += n == 1 ? QString::number(hour) : twoDigits(hour);
            afterHour = true;
        } else if (lc == QLatin1Char('s')) {
            out += n == 1 ? QString::number(t.second()) : twoDigits(t.second());
            afterHour = false;
        } else if (lc == QLatin1Char('c')) {
            out += FormatGeneralDate(NumberFromDateTime(when), locale);
        } else {
            out += c; // separators and any other character stand as they are
            i += 1;
            continue;
        }
        i += n;
    }
    return out;
}

QString DatePatternText::formatNumber(double date, const QString &pattern, const QLocale &locale)
{
    const QDateTime when = DateFromNumber(date);
    return when.isValid() ? format(when, pattern, locale) : QString();
}

} // namespace ff
