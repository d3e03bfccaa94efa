#include "formula/FieldFormat.h"

#include "formula/DateNumber.h"
#include "formula/FixedNumberText.h"
#include "formula/NumberText.h"

#include <optional>

namespace ff {

QString FormatFixed(double value, int decimals, const QLocale &locale, bool grouping)
{
    // The notation of the last locale asked for is kept, one for each grouping and thread: this
    // runs for every number a formula shows.
    thread_local std::optional<FixedNumberText> last[2];
    std::optional<FixedNumberText> &notation = last[grouping ? 1 : 0];
    if (!notation || !notation->isFor(locale, grouping))
        notation.emplace(locale, grouping);
    return notation->text(value, decimals);
}

QString FormatCurrency(double value, int decimals, const QLocale &locale)
{
    return locale.toCurrencyString(RoundHalfAway(value, decimals), locale.currencySymbol(), decimals);
}

QString FormatShortTime(double date)
{
    const QDateTime dt = DateFromNumber(date);
    return dt.isValid() ? dt.time().toString(QStringLiteral("HH:mm")) : QString();
}

QString FormatLongTime(double date)
{
    const QDateTime dt = DateFromNumber(date);
    return dt.isValid() ? dt.time().toString(QStringLiteral("HH:mm:ss")) : QString();
}

namespace {

QString shortDateFormat(const QLocale &locale)
{
    // Show the year in full: a two-digit year would not read back as the same date.
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return format;
}

QString longTimeFormat(const QLocale &locale)
{
    // The locale's long time without the time zone.
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(QLatin1Char('t'));
    return format.simplified();
}

int weekdaySundayFirst(const QDate &date) { return date.dayOfWeek() % 7 + 1; }

} // namespace

QString FormatGeneralDate(double date, const QLocale &locale)
{
    const QDateTime dt = DateFromNumber(date);
    if (!dt.isValid())
        return QString();
    const bool hasDay = dt.date() != QDate(1899, 12, 30);
    const bool hasTime = dt.time() != QTime(0, 0);
    QString text;
    if (hasDay || !hasTime)
        text = locale.toString(dt.date(), shortDateFormat(locale));
    if (hasTime) {
        if (!text.isEmpty())
            text += QLatin1Char(' ');
        text += locale.toString(dt.time(), longTimeFormat(locale));
    }
    return text;
}

QString DatePattern(int fieldType, const QLocale &locale)
{
    switch (fieldType) {
    case kFormatGeneralDate:
    case kFormatShortDate: return shortDateFormat(locale);
    case kFormatMediumDate: return QStringLiteral("dd-MMM-yy");
    case kFormatLongDate: return locale.dateFormat(QLocale::LongFormat);
    default: return QString();
    }
}

QString FormatDateByType(double date, int fieldType, const QLocale &locale)
{
    const QDateTime dt = DateFromNumber(date);
    if (!dt.isValid())
        return QString();
    const QDate d = dt.date();
    switch (fieldType) {
    case kFormatGeneralDate: return FormatGeneralDate(date, locale);
    case kFormatShortDate:
    case kFormatMediumDate:
    case kFormatLongDate: return locale.toString(d, DatePattern(fieldType, locale));
    case kFormatShortTime: return FormatShortTime(date);
    case kFormatMediumTime: return locale.toString(dt.time(), QStringLiteral("hh:mm AP"));
    case kFormatLongTime: return FormatLongTime(date);
    case 13: return locale.toString(d, QStringLiteral("yy"));
    case 14: return locale.toString(d, QStringLiteral("yyyy"));
    case 15: return locale.toString(d, QStringLiteral("MM"));
    case 16: return locale.toString(d, QStringLiteral("MMM"));
    case 17: return locale.toString(d, QStringLiteral("MMMM"));
    case 18: return locale.toString(d, QStringLiteral("dd"));
    case 19: return locale.toString(d, QStringLiteral("ddd"));
    case 20: return locale.toString(d, QStringLiteral("dddd"));
    case 21: return QString::number(weekdaySundayFirst(d));
    case 22: {
        const QDate first(d.year(), 1, 1);
        const int offset = weekdaySundayFirst(first) - 1;
        return QString::number((d.dayOfYear() - 1 + offset) / 7 + 1);
    }
    default: return QString();
    }
}

QString FormatStoredValue(double value, int fieldType, const QLocale &locale)
{
    const QString separator = locale.decimalPoint();
    switch (fieldType) {
    case kFormatNumber: return NumberToText(value, separator);
    case kFormatMoney2:
    case kFormatMoney3:
    case kFormatMoney4: return FormatFixed(value, fieldType, locale);
    case kFormatWhole: return FormatFixed(value, 0, locale);
    default: break;
    }
    if (isDateFormat(fieldType))
        return value == 0.0 ? QString() : FormatDateByType(value, fieldType, locale);
    if (fieldType >= kFormatShortTime && fieldType <= kFormatLastDatePart)
        return FormatDateByType(value, fieldType, locale);
    return NumberToText(value, separator);
}

} // namespace ff
