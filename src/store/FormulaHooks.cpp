#include "store/FormulaHooks.h"

#include <QLocale>
#include <QTimeZone>

#include <cmath>

namespace ff {

static const QDate kDayZero(1899, 12, 30);

QDateTime FormulaHooks::ToDateTime(double dayNumber)
{
    // The fraction is the time of day also for negative numbers: -1.25 is 29 Dec 1899, 06:00.
    const double days = std::trunc(dayNumber);
    const double fraction = std::fabs(dayNumber - days);
    qint64 ms = std::llround(fraction * 86400000.0);
    QDate date = kDayZero.addDays(static_cast<qint64>(days));
    if (ms >= 86400000) {
        ms -= 86400000;
        date = date.addDays(1);
    }
    return QDateTime(date, QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)));
}

double FormulaHooks::FromDateTime(const QDateTime &when)
{
    const double days = static_cast<double>(kDayZero.daysTo(when.date()));
    const double fraction = when.time().msecsSinceStartOfDay() / 86400000.0;
    return days >= 0 ? days + fraction : days - fraction;
}

double FormulaHooks::Today(const Clock &clock) { return static_cast<double>(kDayZero.daysTo(clock.today())); }

double FormulaHooks::Now(const Clock &clock) { return FromDateTime(clock.now()); }

QChar FormulaHooks::SystemDecimalSeparator()
{
    const QString text = QLocale().toString(1.1);
    return text.size() > 1 ? text.at(1) : QLatin1Char('.');
}

static QString longTimeFormat()
{
    QString f = QLocale().timeFormat(QLocale::LongFormat);
    f.remove(QLatin1Char('t'));
    return f.trimmed();
}

QString FormulaHooks::FormatDate(double dayNumber, int fieldType)
{
    const QLocale locale;
    const QDateTime when = ToDateTime(dayNumber);
    switch (fieldType) {
    case 7: return locale.toString(when.date(), QLocale::ShortFormat);
    case 8: return locale.toString(when.date(), QStringLiteral("dd-MMM-yy"));
    case 9: return locale.toString(when.date(), QLocale::LongFormat);
    default: break;
    }
    // The general date: the date alone at midnight, the time alone on day 0.
    const bool hasTime = when.time().msecsSinceStartOfDay() != 0;
    const bool hasDate = std::trunc(dayNumber) != 0;
    QString out;
    if (hasDate || !hasTime)
        out = locale.toString(when.date(), QLocale::ShortFormat);
    if (hasTime) {
        if (!out.isEmpty())
            out += QLatin1Char(' ');
        out += locale.toString(when.time(), longTimeFormat());
    }
    return out;
}

QString FormulaHooks::FormatFieldValue(const Design &design, int index, double value) const
{
    const QLocale locale;
    const int type = design.Fields[index].FieldType;
    switch (type) {
    case 1: {
        QString text = QString::number(value, 'g', 15);
        const QChar sep = SystemDecimalSeparator();
        if (sep != QLatin1Char('.'))
            text.replace(QLatin1Char('.'), sep);
        return text;
    }
    case 2: case 3: case 4:
        return locale.toString(value, 'f', type);
    case 5:
        return locale.toString(value, 'f', 0);
    case 6: case 7: case 8: case 9:
        return FormatDate(value, type);
    default:
        return QString::number(value, 'g', 15);
    }
}

double FormulaHooks::NumberValue(const QString &text, QChar decimalSeparator) const
{
    QString t = text;
    if (decimalSeparator != QLatin1Char('.')) {
        t.remove(QLatin1Char('.'));
        t.replace(decimalSeparator, QLatin1Char('.'), Qt::CaseInsensitive);
    }
    t.remove(QLatin1Char(','));
    t.remove(QLatin1Char('\''));
    t.remove(QChar(0xA0));
    // Val: blanks are skipped, the leading number is read, the rest ignored.
    t.remove(QLatin1Char(' '));
    qsizetype end = 0;
    if (end < t.size() && (t[end] == QLatin1Char('-') || t[end] == QLatin1Char('+')))
        ++end;
    bool digits = false, point = false;
    while (end < t.size()) {
        if (t[end].isDigit())
            digits = true;
        else if (t[end] == QLatin1Char('.') && !point)
            point = true;
        else
            break;
        ++end;
    }
    if (digits && end < t.size() && (t[end] == QLatin1Char('e') || t[end] == QLatin1Char('E'))) {
        qsizetype e = end + 1;
        if (e < t.size() && (t[e] == QLatin1Char('-') || t[e] == QLatin1Char('+')))
            ++e;
        if (e < t.size() && t[e].isDigit()) {
            while (e < t.size() && t[e].isDigit())
                ++e;
            end = e;
        }
    }
    if (!digits)
        return 0;
    return t.left(end).toDouble();
}

void FormulaHooks::SetFieldDefault(Page &page, int index, bool showZeros) const
{
    const Design &design = page.design();
    const FieldElement &f = design.Fields[index];
    const QLocale locale;
    const int type = f.FieldType;
    switch (type) {
    case 1:
        if (showZeros)
            page.FieldText[index] = QStringLiteral("0");
        break;
    case 2: case 3: case 4:
        if (showZeros)
            page.FieldText[index] = locale.toString(0.0, 'f', type);
        break;
    case 5:
        if (showZeros)
            page.FieldText[index] = QStringLiteral("0");
        break;
    case 6: case 7: case 8: case 9: {
        const double when = Now(*clock_) + f.FieldDisplay;
        page.FieldDate[index] = when;
        if (when != 0)
            page.FieldText[index] = FormatDate(when, type);
        break;
    }
    case 10:
        page.FieldDate[index] = 0;
        page.FieldText[index] = locale.toString(QTime(0, 0), QLocale::ShortFormat);
        break;
    case 11:
        page.FieldDate[index] = 0;
        page.FieldText[index].clear();
        break;
    case 12:
        page.FieldDate[index] = 0;
        page.FieldText[index] = QStringLiteral("00:00:00");
        break;
    default:
        if (type >= 13 && type <= 22) {
            static const char *patterns[] = {"yy", "yyyy", "MM", "MMM", "MMMM", "dd", "ddd", "dddd", "w", "ww"};
            const QDate date = ToDateTime(Today(*clock_) + f.FieldDisplay).date();
            const QString pattern = QString::fromLatin1(patterns[type - 13]);
            if (pattern == QLatin1String("w"))
                page.FieldText[index] = QString::number(date.dayOfWeek() % 7 + 1); // Sunday is day 1
            else if (pattern == QLatin1String("ww"))
                page.FieldText[index] = QString::number(date.weekNumber());
            else
                page.FieldText[index] = locale.toString(date, pattern);
        }
        break;
    }
}

void FormulaHooks::RunFormulas(Page &, int) {}
void FormulaHooks::RunFormulas(Page &, int, PendingRecord &) {}

} // namespace ff
