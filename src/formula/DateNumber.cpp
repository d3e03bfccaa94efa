#include "formula/DateNumber.h"

#include "formula/NumberText.h"

#include <cmath>

namespace ff {

namespace {
const QDate kBase(1899, 12, 30);
}

bool IsDateNumber(double value)
{
    return std::isfinite(value) && value > kFirstDateNumber - 1.0 && value < kLastDateNumber + 1.0;
}

QDateTime DateFromNumber(double value)
{
    if (!IsDateNumber(value))
        return QDateTime();
    const double days = std::trunc(value);
    long long seconds = std::llround((std::fabs(value) - std::fabs(days)) * 86400.0);
    QDate date = kBase.addDays(static_cast<qint64>(days));
    if (seconds >= 86400) {
        seconds -= 86400;
        date = date.addDays(value < 0 ? -1 : 1);
    }
    return QDateTime(date, QTime(0, 0).addSecs(static_cast<int>(seconds)));
}

double NumberFromDate(const QDate &date, const QTime &time)
{
    const double days = static_cast<double>(kBase.daysTo(date));
    const double fraction = time.isValid() ? time.msecsSinceStartOfDay() / 86400000.0 : 0.0;
    return days < 0 ? days - fraction : days + fraction;
}

double NumberFromDateTime(const QDateTime &dateTime)
{
    return NumberFromDate(dateTime.date(), dateTime.time());
}

namespace {

QStringList dateFormats(const QLocale &locale)
{
    QStringList formats;
    QString shortFormat = locale.dateFormat(QLocale::ShortFormat);
    formats << shortFormat;
    if (shortFormat.contains(QLatin1String("yy")) && !shortFormat.contains(QLatin1String("yyyy"))) {
        QString fourDigit = shortFormat;
        fourDigit.replace(QLatin1String("yy"), QLatin1String("yyyy"));
        formats.prepend(fourDigit);
    }
    formats << locale.dateFormat(QLocale::LongFormat) << locale.dateFormat(QLocale::NarrowFormat)
            << QStringLiteral("dd-MMM-yy") << QStringLiteral("d-MMM-yyyy") << QStringLiteral("yyyy-MM-dd")
            << QStringLiteral("MMM d, yyyy") << QStringLiteral("MMMM d, yyyy") << QStringLiteral("d MMMM yyyy")
            << QStringLiteral("d MMM yyyy");
    formats.removeDuplicates();
    return formats;
}

QStringList timeFormats()
{
    return {QStringLiteral("H:mm"), QStringLiteral("H:mm:ss"), QStringLiteral("h:mm AP"),
            QStringLiteral("h:mm:ss AP"), QStringLiteral("h:mmAP"), QStringLiteral("h:mm:ssAP"),
            QStringLiteral("h AP")};
}

// Qt reads "yy" as 1900 to 1999; the system's rule puts 00 to 29 in this century.
QDate fixTwoDigitYear(QDate date, const QString &format)
{
    if (date.isValid() && format.contains(QLatin1String("yy")) && !format.contains(QLatin1String("yyyy"))
        && date.year() < 1930)
        date = date.addYears(100);
    return date;
}

std::optional<QDate> readDatePart(const QString &text, const QLocale &locale)
{
    for (const QString &format : dateFormats(locale)) {
        QDate date = locale.toDate(text, format);
        if (!date.isValid())
            date = QLocale::c().toDate(text, format);
        if (date.isValid())
            return fixTwoDigitYear(date, format);
    }
    return std::nullopt;
}

std::optional<QTime> readTimePart(const QString &text, const QLocale &locale)
{
    for (const QString &format : timeFormats()) {
        QTime time = locale.toTime(text, format);
        if (!time.isValid())
            time = QLocale::c().toTime(text, format);
        if (time.isValid())
            return time;
    }
    return std::nullopt;
}

} // namespace

std::optional<double> ReadDate(const QString &input, const QLocale &locale)
{
    const QString text = input.simplified();
    if (text.isEmpty())
        return std::nullopt;
    if (const std::optional<double> number = ParseNumericText(text)) {
        if (IsDateNumber(*number))
            return *number;
        return std::nullopt;
    }
    if (const auto date = readDatePart(text, locale))
        return NumberFromDate(*date);
    if (const auto time = readTimePart(text, locale))
        return NumberFromDate(kBase, *time);
    // A date followed by a time: try each blank as the place where the time begins.
    for (int i = text.indexOf(QLatin1Char(' ')); i > 0; i = text.indexOf(QLatin1Char(' '), i + 1)) {
        const auto date = readDatePart(text.left(i), locale);
        if (!date)
            continue;
        if (const auto time = readTimePart(text.mid(i + 1), locale))
            return NumberFromDate(*date, *time);
    }
    return std::nullopt;
}

} // namespace ff
