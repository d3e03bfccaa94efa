#pragma once
// Dates as the formula language and the record store see them: a double counting days since
// 30 December 1899, the fraction being the time of day. A negative day number keeps its time of
// day as a positive fraction: -1.25 is 29 December 1899 at 06:00.

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ff {

// 1 January 100 to 31 December 9999.
constexpr double kFirstDateNumber = -657434.0;
constexpr double kLastDateNumber = 2958465.0;

bool IsDateNumber(double value);
// The date and time of a day number (to the nearest second); invalid outside the date range.
QDateTime DateFromNumber(double value);
double NumberFromDate(const QDate &date, const QTime &time = QTime(0, 0));
double NumberFromDateTime(const QDateTime &dateTime);

} // namespace ff
