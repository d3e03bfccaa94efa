#pragma once
// The format codes of text fields (FieldType 0 to 23) and the number, currency and date texts
// they produce, through the locale the caller passes (the working locale in the program, en_US in
// tests).
//
//   0 text; 1 number as it converts to text; 2, 3, 4 number with that many decimals; 5 no decimals;
//   6 general date; 7 short date; 8 medium date; 9 long date; 10 short time (24 hours);
//   11 medium time; 12 "hh:nn:ss"; 13 to 22 a part of the date: "yy", "yyyy", "mm", "mmm",
//   "mmmm", "dd", "ddd", "dddd", "w" (day of the week, Sunday 1), "ww" (week of the year, the week
//   of 1 January being 1); 23 text of 10 characters.

#include <QLocale>
#include <QString>

namespace ff {

enum FieldFormat : int {
    kFormatText = 0,
    kFormatNumber = 1,
    kFormatMoney2 = 2,
    kFormatMoney3 = 3,
    kFormatMoney4 = 4,
    kFormatWhole = 5,
    kFormatGeneralDate = 6,
    kFormatShortDate = 7,
    kFormatMediumDate = 8,
    kFormatLongDate = 9,
    kFormatShortTime = 10,
    kFormatMediumTime = 11,
    kFormatLongTime = 12,
    kFormatFirstDatePart = 13,
    kFormatLastDatePart = 22,
    kFormatText10 = 23,
};

inline bool isNumberFormat(int type) { return type >= 1 && type <= 5; }
inline bool isDateFormat(int type) { return type >= 6 && type <= 9; }

// The system's number format with `decimals` places, halves rounded away from zero.
QString FormatFixed(double value, int decimals, const QLocale &locale, bool grouping = true);
// The system's currency format with `decimals` places.
QString FormatCurrency(double value, int decimals, const QLocale &locale);

// The QLocale date pattern of a date format (6 to 9; 6 for a date at midnight); empty for others.
QString DatePattern(int fieldType, const QLocale &locale);
// A day number shown by a date or time format (6 to 22). Zero is not blanked here.
QString FormatDateByType(double date, int fieldType, const QLocale &locale);
// The time of day of a day number as the short time "HH:mm" and as "hh:nn:ss".
QString FormatShortTime(double date);
QString FormatLongTime(double date);
// The system's general date: the short date, the time, or both, as the value has them.
QString FormatGeneralDate(double date, const QLocale &locale);

// A stored number or date of a field as the page shows it, by the field's format: 1 to 5 numbers
// (1 as the default conversion gives it, with the locale's decimal point), 6 to 9 dates with a zero
// date empty, 10 to 22 the format's own form; 0 and 23 the default conversion.
QString FormatStoredValue(double value, int fieldType, const QLocale &locale);

} // namespace ff
