#include "formula/DateNumber.h"

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


} // namespace ff
