// Format codes, dates, field defaults and amounts in words, with the locale pinned to en_US.

#include "formula/CMoney.h"
#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/FieldFormat.h"
#include "formula/FixedNumberText.h"
#include "formula/NumberText.h"
#include "formula/SetFieldDefault.h"

#include "QtPrinters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <random>
#include <vector>

using namespace ff;

namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);
constexpr double kJan15 = 45306; // Monday 15 January 2024

} // namespace

TEST(FieldFormat, NumbersRoundHalfAwayWithGrouping)
{
    const struct {
        double value;
        int type;
        const char *text;
    } rows[] = {{1234.5, 2, "1,234.50"}, {2.675, 2, "2.68"}, {-0.004, 2, "0.00"}, {1234.5, 5, "1,235"}, {-2.5, 5, "-3"},
                {1.23456, 4, "1.2346"},  {0.1, 1, "0.1"},     {1e20, 1, "1E+20"}};
    for (const auto &row : rows)
        EXPECT_EQ(FormatStoredValue(row.value, row.type, kUs), QLatin1String(row.text)) << row.text;
    EXPECT_EQ(FormatFixed(1234567, 0, kUs, false), "1234567");
    EXPECT_EQ(FormatCurrency(1234.5, 2, kUs), "$1,234.50");
}

// The rounding the formats and the rounding operators use, worked out here from printf's
// "%.14e" text: the 15 significant digits, then halves at `places` away from zero or to even.
double referenceRound(double value, int places, bool halfEven)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.14e", std::fabs(value));
    std::string digits;
    const char *p = text;
    for (; *p != 'e'; ++p)
        if (*p != '.')
            digits += *p;
    const int exponent = std::atoi(p + 1);
    const int keep = exponent + 1 + places; // digits that stay
    if (keep >= 15)
        return std::strtod(text, nullptr) * (value < 0 ? -1 : 1);
    if (keep < 0)
        return 0.0;
    long long kept = keep == 0 ? 0 : std::stoll(digits.substr(0, size_t(keep)));
    const std::string rest = digits.substr(size_t(keep));
    std::string half(rest.size(), '0');
    half[0] = '5';
    if (rest > half || (rest == half && (!halfEven || kept % 2 != 0)))
        ++kept;
    if (kept == 0)
        return 0.0;
    return std::strtod((std::to_string(kept) + "e" + std::to_string(-places)).c_str(), nullptr) * (value < 0 ? -1 : 1);
}

TEST(FieldFormat, RoundingWorksOnFifteenDigitsAtEveryMagnitude)
{
    std::mt19937_64 random(2024);
    std::vector<double> values = {2.675, 1.005, 0.125, 0.375, 1e15, 999999999999999.5, 0.9999999999999995, 5e-5, 4.9999e-5,
                                  123456.785, 1e-13, 3e-14, 7.0000000000000005, 0.30000000000000004};
    for (int k = 0; k < 20000; ++k) {
        const double magnitude = std::pow(10.0, double(random() % 31) - 15.0);
        values.push_back((double(random() % 2000000001) / 1e9 - 1.0) * magnitude);
        // Decimal halves at a few places, which sit next to a tie in binary.
        values.push_back((double(int64_t(random() % 20000001) - 10000000) + 0.5) / std::pow(10.0, double(random() % 6)));
    }
    for (const double value : values) {
        for (int places = 0; places <= 4; ++places) {
            ASSERT_EQ(RoundHalfAway(value, places), referenceRound(value, places, false)) << value << " at " << places;
            ASSERT_EQ(RoundHalfEven(value, places), referenceRound(value, places, true)) << value << " at " << places;
        }
    }
}

TEST(FieldFormat, FixedPlacesAreTheLocalesOwnTexts)
{
    // The fixed-place texts are made from a notation learned once per locale; they must be the
    // locale's own formatting of the rounded value for every locale, grouping, size and sign,
    // including locales whose group marks are not every three digits or whose digits are not ASCII.
    const QLocale locales[] = {kUs,
                               QLocale(QLocale::German, QLocale::Germany),
                               QLocale(QLocale::French, QLocale::France),
                               QLocale(QLocale::German, QLocale::Switzerland),
                               QLocale(QLocale::Hindi, QLocale::India),
                               QLocale(QLocale::Spanish, QLocale::Spain),
                               QLocale(QLocale::Arabic, QLocale::Egypt),
                               QLocale(QLocale::Persian, QLocale::Iran),
                               QLocale::c()};
    std::mt19937_64 random(7);
    std::vector<double> values = {0.0, 0.005, -0.005, 0.125, 2.675, -2.675, 1e15, 123456789012345.6, -9.99995e14};
    for (int k = 0; k < 400; ++k) {
        const double magnitude = std::pow(10.0, double(random() % 19) - 4.0);
        const double value = double(int64_t(random() % 2000001) - 1000000) / 1000000.0 * magnitude;
        values.push_back(value);
        values.push_back(std::round(value * 1000.0) / 1000.0 + 0.0005); // a half at three places
    }
    // The common notations are learned, so their texts above come from the learned notation.
    for (const QLocale &locale : {locales[0], locales[1], locales[2], locales[3], locales[4], locales[8]})
        EXPECT_TRUE(FixedNumberText(locale, true).learned()) << locale.name().toStdString();
    for (const QLocale &locale : locales) {
        for (const bool grouping : {true, false}) {
            QLocale reference = locale;
            reference.setNumberOptions(grouping ? QLocale::NumberOptions() : QLocale::OmitGroupSeparator);
            for (const double value : values) {
                for (int places = 0; places <= 4; ++places) {
                    const QString expected = reference.toString(RoundHalfAway(value, places), 'f', places);
                    ASSERT_EQ(FormatFixed(value, places, locale, grouping), expected)
                        << locale.name().toStdString() << " " << value << " at " << places << (grouping ? " grouped" : "");
                }
            }
        }
    }
}

TEST(FieldFormat, DateAndTimeFormatsByCode)
{
    const double evening = kJan15 + 0.75;
    EXPECT_EQ(FormatStoredValue(evening, 6, kUs), "1/15/2024 6:00:00 PM");
    EXPECT_EQ(FormatStoredValue(kJan15, 6, kUs), "1/15/2024");
    EXPECT_EQ(FormatStoredValue(0.75, 6, kUs), "6:00:00 PM");
    EXPECT_EQ(FormatStoredValue(0, 6, kUs), "");
    const char *byCode[] = {"1/15/2024", "15-Jan-24", "Monday, January 15, 2024", "18:00", "06:00 PM", "18:00:00"};
    for (int type = 7; type <= 12; ++type)
        EXPECT_EQ(FormatStoredValue(evening, type, kUs), byCode[type - 7]) << type;
    const char *parts[] = {"24", "2024", "01", "Jan", "January", "15", "Mon", "Monday", "2", "3"};
    for (int type = 13; type <= 22; ++type)
        EXPECT_EQ(FormatStoredValue(kJan15, type, kUs), parts[type - 13]) << type;
    // 1 January 2023 is a Sunday: week 1 starts with it, the 8th begins week 2.
    EXPECT_EQ(FormatDateByType(NumberFromDate(QDate(2023, 1, 7)), 22, kUs), "1");
    EXPECT_EQ(FormatDateByType(NumberFromDate(QDate(2023, 1, 8)), 22, kUs), "2");
}

TEST(DateNumber, DayNumbersAndTheirTexts)
{
    EXPECT_DOUBLE_EQ(NumberFromDate(QDate(1899, 12, 30)), 0);
    EXPECT_DOUBLE_EQ(NumberFromDate(QDate(2024, 1, 15), QTime(18, 0)), kJan15 + 0.75);
    EXPECT_EQ(DateFromNumber(-1.25), QDateTime(QDate(1899, 12, 29), QTime(6, 0)));
    EXPECT_DOUBLE_EQ(NumberFromDate(QDate(1899, 12, 29), QTime(6, 0)), -1.25);
    EXPECT_FALSE(DateFromNumber(2958466).isValid());

    EXPECT_DOUBLE_EQ(*ReadDate(" 45306.5 ", kUs), 45306.5);
}

namespace {

struct DefaultsPage {
    explicit DefaultsPage(uint8_t showZeros)
    {
        design.ShowZeros = showZeros;
        design.Fields.resize(24);
        design.FieldCount = 23;
        for (int i = 1; i <= 23; ++i)
            design.Fields[static_cast<size_t>(i)].FieldType = static_cast<uint8_t>(i);
        page = std::make_unique<Page>(design);
        for (int i = 1; i <= 23; ++i) {
            page->FieldText[i] = QStringLiteral("old");
            page->FieldDate[i] = 99;
        }
    }
    Design design;
    std::unique_ptr<Page> page;
};

} // namespace

TEST(SetFieldDefault, NumberFormatsFollowShowZeros)
{
    DefaultsPage shown(1), hidden(0);
    const char *zeros[] = {"0", "0.00", "0.000", "0.0000", "0"};
    for (int i = 1; i <= 5; ++i) {
        SetFieldDefault(*shown.page, i, kJan15, kUs);
        SetFieldDefault(*hidden.page, i, kJan15, kUs);
        EXPECT_EQ(shown.page->FieldText[i], zeros[i - 1]) << i;
        EXPECT_EQ(hidden.page->FieldText[i], "old") << i;
    }
}

TEST(SetFieldDefault, DatesTimesAndStamps)
{
    DefaultsPage p(0);
    p.design.Fields[7].FieldDisplay = 10;
    const double now = kJan15 + 0.5;
    for (int i = 6; i <= 23; ++i)
        SetFieldDefault(*p.page, i, now, kUs);
    EXPECT_EQ(p.page->FieldText[6], "1/15/2024 12:00:00 PM");
    EXPECT_DOUBLE_EQ(p.page->FieldDate[7], now + 10);
    EXPECT_EQ(p.page->FieldText[7], "1/25/2024");
    EXPECT_EQ(p.page->FieldText[9], "Monday, January 15, 2024");
    EXPECT_EQ(p.page->FieldText[10], "00:00");
    EXPECT_DOUBLE_EQ(p.page->FieldDate[10], 0);
    EXPECT_EQ(p.page->FieldText[11], "");
    EXPECT_DOUBLE_EQ(p.page->FieldDate[11], 0);
    EXPECT_EQ(p.page->FieldText[12], "00:00:00");
    EXPECT_EQ(p.page->FieldText[14], "2024");
    EXPECT_EQ(p.page->FieldText[20], "Monday");
    EXPECT_EQ(p.page->FieldText[23], "old");

    // A default date of 0 writes no text.
    p.design.Fields[8].FieldDisplay = 5;
    p.page->FieldText[8] = QStringLiteral("old");
    SetFieldDefault(*p.page, 8, -5, kUs);
    EXPECT_DOUBLE_EQ(p.page->FieldDate[8], 0);
    EXPECT_EQ(p.page->FieldText[8], "old");
}

TEST(CMoney, DollarWords)
{
    const CMoney money(kUs);
    EXPECT_EQ(money.MonetaryToWords("0.01"), "Zero Dollars and One Cent");
    EXPECT_EQ(money.MonetaryToWords("1"), "One Dollars and No Cents");
    EXPECT_EQ(money.MonetaryToWords("2.5"), "Two Dollars and Fifty Cents");
    EXPECT_EQ(money.MonetaryToWords("2.567"), "Two Dollars and Fifty-Six Cents");
    EXPECT_EQ(money.MonetaryToWords("1234.50"), "One Thousand Two Hundred Thirty-Four Dollars and Fifty Cents");
    EXPECT_EQ(money.MonetaryToWords("1000001"), "One Million One Dollars and No Cents");
    EXPECT_EQ(money.MonetaryToWords("200000"), "Two Hundred Thousand Dollars and No Cents");
    EXPECT_EQ(money.MonetaryToWords("90019"), "Ninety Thousand Nineteen Dollars and No Cents");
    EXPECT_EQ(money.MonetaryToWords("-1"), "Invalid Dollar Amount.");
    EXPECT_EQ(money.MonetaryToWords("abc"), "");
    EXPECT_EQ(money.MonetaryToWords(QString(30, QLatin1Char('9'))).left(38), "Nine Hundred Ninety-Nine Octillion Nin");
    EXPECT_EQ(money.MonetaryToWords("1" + QString(30, QLatin1Char('0'))), "");
}

TEST(CMoney, EveryWordOfTheTablesAgainstAListWrittenHere)
{
    // The English words written out here, apart from the code's tables: each unit and teen, each
    // ten, "Hundred" and each group word is spelt once in a sum of its own.
    const CMoney money(kUs);
    const char *small[] = {"Zero",    "One",     "Two",       "Three",    "Four",     "Five",    "Six",
                           "Seven",   "Eight",   "Nine",      "Ten",      "Eleven",   "Twelve",  "Thirteen",
                           "Fourteen", "Fifteen", "Sixteen",  "Seventeen", "Eighteen", "Nineteen"};
    for (int n = 0; n < 20; ++n) {
        EXPECT_EQ(money.MonetaryToWords(QString::number(n)), QString::fromLatin1(small[n]) + " Dollars and No Cents") << n;
        if (n >= 2) { // as cents, too
            EXPECT_EQ(money.MonetaryToWords(QStringLiteral("0.%1").arg(n, 2, 10, QLatin1Char('0'))),
                      QStringLiteral("Zero Dollars and %1 Cents").arg(QLatin1String(small[n]))) << n;
        }
    }
    const char *tens[] = {"Twenty", "Thirty", "Forty", "Fifty", "Sixty", "Seventy", "Eighty", "Ninety"};
    for (int t = 2; t <= 9; ++t) {
        const QString word = QLatin1String(tens[t - 2]);
        EXPECT_EQ(money.MonetaryToWords(QString::number(t * 10)), word + " Dollars and No Cents") << t;
        EXPECT_EQ(money.MonetaryToWords(QStringLiteral("%1.%2").arg(t).arg(t * 10 + t)),
                  QStringLiteral("%1 Dollars and %2-%1 Cents").arg(QLatin1String(small[t]), word)) << t;
    }
    EXPECT_EQ(money.MonetaryToWords("913"), "Nine Hundred Thirteen Dollars and No Cents");
    const char *groups[] = {"Thousand", "Million", "Billion", "Trillion", "Quadrillion", "Quintillion", "Sextillion",
                            "Septillion", "Octillion"};
    for (int g = 1; g <= 9; ++g) {
        const QString zeros(3 * g, QLatin1Char('0'));
        const QString word = QLatin1String(groups[g - 1]);
        EXPECT_EQ(money.MonetaryToWords("1" + zeros), "One " + word + " Dollars and No Cents") << g;
        EXPECT_EQ(money.MonetaryToWords("40" + zeros.chopped(3) + "017"), "Forty " + word + " Seventeen Dollars and No Cents") << g;
    }
}

TEST(CMoney, CurrencyWordsFollowTheLocaleSign)
{
    const CMoney pounds(QLocale(QLocale::English, QLocale::UnitedKingdom));
    EXPECT_EQ(pounds.MonetaryToWords("3.10"), "Three Pounds and Ten Pence");
    EXPECT_EQ(pounds.MonetaryToWords("0.01"), "Zero Pounds and One Pence");
    const CMoney euros(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(euros.MonetaryToWords("0"), "Zero Euros and No Euros");
    EXPECT_EQ(euros.MonetaryToWords("21.99"), "Twenty-One Euros and Ninety-Nine Cents");
}
