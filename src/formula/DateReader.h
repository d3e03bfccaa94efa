#pragma once
// Reads dates as people type them. Every date text of the program passes here: what is typed
// into a date field, the date values of formulas and conditions, the values of search lines, the
// stored texts of date combos and the command line's record values.
//
// Accepted, with or without a time of day behind them:
// - numeric dates in the locale's own order of day, month and year (1/2/2003 is 2 January in
//   en_US, 1 February in en_GB and de_DE), with "/", "-" or "." between the parts;
// - dates with the year first (2003-01-02, 2003/1/2), whatever the locale;
// - dates with a month name, full or shortened, in the locale's language or in English, day
//   before year, with an optional day name: "Thursday, January 2, 2003", "2 Jan 2003",
//   "02-Jan-03", "Donnerstag, 2. Januar 2003";
// - a time alone ("10:30", "6:00:00 PM", "3 pm"): a day number below 1;
// - a plain number: that day number.
// Two-digit years 00 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999. The C locale reads as
// en_US. Anything else is no date: an unknown word, a day or month out of range, parts missing.

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

namespace ff {

class DateReader {
public:
    explicit DateReader(const QLocale &locale);

    // The day number of the text (days since 30 December 1899, the time of day as the fraction).
    std::optional<double> read(const QString &text) const;

private:
    enum class Order { MonthDayYear, DayMonthYear, YearMonthDay };
    struct Name {
        QString text; // lower case, without a trailing point
        int value;
    };
    struct Token {
        enum Kind { Number, Word, Separator } kind;
        QString text;
    };

    std::optional<double> readTime(const QString &text) const;
    std::optional<double> readDatePart(const QString &text) const;
    std::optional<int> monthOf(const QString &word) const;
    bool isNoise(const QString &word) const;
    static QList<Token> tokens(const QString &text);
    static std::optional<int> year(const QString &digits);
    static std::optional<double> dayNumber(int year, int month, int day);

    Order order_ = Order::MonthDayYear;
    QList<Name> months_;   // the locale's names first, then the English ones
    QStringList noise_;    // day names and the literal words of the locale's date forms
    QStringList amTexts_;  // lower case
    QStringList pmTexts_;
};

// A DateReader for `locale`, kept per thread while the locale stays the same.
std::optional<double> ReadDate(const QString &text, const QLocale &locale);

} // namespace ff
