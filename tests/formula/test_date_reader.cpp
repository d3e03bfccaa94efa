// Dates as people type them, read under en_US, en_GB, de_DE and the C locale: one table of texts
// with what each locale makes of them, and every date the program writes read back as itself.

#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/FieldFormat.h"

#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace ff;

namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);
const QLocale kGb(QLocale::English, QLocale::UnitedKingdom);
const QLocale kDe(QLocale::German, QLocale::Germany);
const QLocale kC = QLocale::c();

// "2003-01-02", "2003-01-02 10:30" (seconds when there are any), or "-" for no date.
QString described(const std::optional<double> &value)
{
    if (!value)
        return QStringLiteral("-");
    const QDateTime when = DateFromNumber(*value);
    QString text = when.date().toString(Qt::ISODate);
    if (when.time() != QTime(0, 0))
        text += when.time().toString(when.time().second() ? QStringLiteral(" HH:mm:ss") : QStringLiteral(" HH:mm"));
    return text;
}

} // namespace

TEST(DateReader, TextsAsEachLocaleReadsThem)
{
    const struct {
        const char *text;
        const char *us, *gb, *de, *c;
    } rows[] = {
        // Numeric dates follow the locale's order; C reads as en_US.
        {"1/2/2003", "2003-01-02", "2003-02-01", "2003-02-01", "2003-01-02"},
        {"1-2-2003", "2003-01-02", "2003-02-01", "2003-02-01", "2003-01-02"},
        {"1.2.03", "2003-01-02", "2003-02-01", "2003-02-01", "2003-01-02"},
        {"01.02.2003", "2003-01-02", "2003-02-01", "2003-02-01", "2003-01-02"},
        {"12/10/1815", "1815-12-10", "1815-10-12", "1815-10-12", "1815-12-10"},
        {"13/1/2003", "-", "2003-01-13", "2003-01-13", "-"},
        {"29/2/2004", "-", "2004-02-29", "2004-02-29", "-"},
        {"29/2/2003", "-", "-", "-", "-"},
        {"2/29/2003", "-", "-", "-", "-"},
        {"0/1/2003", "-", "-", "-", "-"},
        // Two-digit years: 00 to 29 this century, 30 to 99 the last.
        {"1/2/29", "2029-01-02", "2029-02-01", "2029-02-01", "2029-01-02"},
        {"1/2/30", "1930-01-02", "1930-02-01", "1930-02-01", "1930-01-02"},
        {"1/2/0", "2000-01-02", "2000-02-01", "2000-02-01", "2000-01-02"},
        // The year first, in any locale.
        {"2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"2003/1/2", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"2003.01.02", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        // Month names in English everywhere, in the locale's language where it has its own.
        {"Thursday, January 2, 2003", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"January 2, 2003", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"2 Jan 2003", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"2 january 2003", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"02-Jan-03", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"Sept 5, 1999", "1999-09-05", "1999-09-05", "1999-09-05", "1999-09-05"},
        {"2003 Jan 2", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"Thu, 2 Jan 2003", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"Donnerstag, 2. Januar 2003", "-", "-", "2003-01-02", "-"},
        {"2. Mai 2003", "-", "-", "2003-05-02", "-"},
        {"02-März-03", "-", "-", "2003-03-02", "-"},
        {"2. Okt. 1815", "-", "-", "1815-10-02", "-"},
        // With a time of day behind the date, or a time alone.
        {"1/2/2003 10:30", "2003-01-02 10:30", "2003-02-01 10:30", "2003-02-01 10:30", "2003-01-02 10:30"},
        {"1/2/2003 6:00:05 PM", "2003-01-02 18:00:05", "2003-02-01 18:00:05", "2003-02-01 18:00:05", "2003-01-02 18:00:05"},
        {"2003-01-02T10:30", "2003-01-02 10:30", "2003-01-02 10:30", "2003-01-02 10:30", "2003-01-02 10:30"},
        {"January 2, 2003 12:15 am", "2003-01-02 00:15", "2003-01-02 00:15", "2003-01-02 00:15", "2003-01-02 00:15"},
        {"10:30", "1899-12-30 10:30", "1899-12-30 10:30", "1899-12-30 10:30", "1899-12-30 10:30"},
        {"3 pm", "1899-12-30 15:00", "1899-12-30 15:00", "1899-12-30 15:00", "1899-12-30 15:00"},
        {"25:00", "-", "-", "-", "-"},
        {"13:00 PM", "-", "-", "-", "-"},
        // A number is a day number.
        {"37623", "2003-01-02", "2003-01-02", "2003-01-02", "2003-01-02"},
        {"37623.25", "2003-01-02 06:00", "2003-01-02 06:00", "2003-01-02 06:00", "2003-01-02 06:00"},
        // Not dates: parts missing or left over, marks mixed, unknown words, years out of range.
        {"", "-", "-", "-", "-"},
        {"soon", "-", "-", "-", "-"},
        {"1/2", "-", "-", "-", "-"},
        {"1/2/3/4", "-", "-", "-", "-"},
        {"1/2-2003", "-", "-", "-", "-"},
        {"1//2/2003", "-", "-", "-", "-"},
        {"-1/2/2003", "-", "-", "-", "-"},
        {"1/2/2003 soon", "-", "-", "-", "-"},
        {"2 Foo 2003", "-", "-", "-", "-"},
        {"January 2003", "-", "-", "-", "-"},
        {"2 January 5 2003", "-", "-", "-", "-"},
        {"January February 2, 2003", "-", "-", "-", "-"},
        {"1/2/99999", "-", "-", "-", "-"},
        {"1/2/099", "-", "-", "-", "-"},
        {"123/2/2003", "-", "-", "-", "-"},
        {"1e9", "-", "-", "-", "-"},
    };
    const QLocale *locales[] = {&kUs, &kGb, &kDe, &kC};
    for (const auto &row : rows) {
        const char *expected[] = {row.us, row.gb, row.de, row.c};
        for (int l = 0; l < 4; ++l) {
            const QString text = QString::fromUtf8(row.text);
            EXPECT_EQ(described(DateReader(*locales[l]).read(text)), QString::fromUtf8(expected[l]))
                << row.text << " in " << locales[l]->name().toStdString();
            // The shared per-thread reader gives the same, whichever locale came before.
            EXPECT_EQ(described(ReadDate(text, *locales[l])), QString::fromUtf8(expected[l])) << row.text;
        }
    }
}

TEST(DateReader, EveryDateTheProgramWritesReadsBackAsItself)
{
    const QDateTime moments[] = {
        {QDate(2003, 1, 2), QTime(0, 0)},   {QDate(1815, 12, 10), QTime(0, 0)}, {QDate(2029, 12, 31), QTime(0, 0)},
        {QDate(1930, 5, 1), QTime(0, 0)},   {QDate(2024, 2, 29), QTime(18, 5, 9)}, {QDate(2024, 3, 9), QTime(0, 0)},
        {QDate(2024, 10, 10), QTime(9, 30)}, {QDate(1999, 9, 5), QTime(0, 0)},
    };
    for (const QLocale *locale : {&kUs, &kGb, &kDe, &kC}) {
        for (const QDateTime &moment : moments) {
            const double value = NumberFromDateTime(moment);
            const double day = NumberFromDate(moment.date());
            // General date (with its time), short, medium (two-digit year) and long date.
            for (int type : {6, 7, 8, 9}) {
                const bool twoDigitYear = type == 8;
                if (twoDigitYear && (moment.date().year() < 1930 || moment.date().year() > 2029))
                    continue;
                const QString text = FormatStoredValue(value, type, *locale);
                const std::optional<double> back = ReadDate(text, *locale);
                ASSERT_TRUE(back.has_value()) << text.toStdString() << " in " << locale->name().toStdString();
                EXPECT_NEAR(*back, type == 6 ? value : day, 1e-6) << text.toStdString();
            }
        }
    }
}
