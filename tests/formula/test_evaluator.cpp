// The evaluator's rules on cases worked out by hand from them: no precedence, "-" inside numbers,
// "~" subtraction, unary letters applied late, silent failures, the bracket pass with its fixed
// bound and stale start, and the rounding letters looked up in the whole expression.

#include "formula/Evaluator.h"
#include "formula/NumberText.h"

#include "QtPrinters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>
#include <initializer_list>

using namespace ff;

namespace {

QString eval(const QString &expression)
{
    QString e = expression;
    return EvaluateToText(e);
}

struct Row {
    const char *expression;
    const char *expected;
};

void expectEval(std::initializer_list<Row> rows)
{
    for (const Row &row : rows)
        EXPECT_EQ(eval(QLatin1String(row.expression)), QLatin1String(row.expected)) << '"' << row.expression << '"';
}

QString rewritten(const QString &expression)
{
    QString e = expression;
    (void)EvaluateExpression(e);
    return e;
}

} // namespace

TEST(Evaluator, ScansLeftToRightWithoutPrecedence)
{
    expectEval({{"2+3*4", "20"}, {"1+1^3", "8"}, {"10/4*2", "5"}, {"", "0"}, {"   ", "0"}});
}

TEST(Evaluator, MinusBelongsToTheNumberAndTildeSubtracts)
{
    expectEval({{"10-2", "10"}, {"5-3+1", "6"}, {"10~2~3", "5"}, {"10~-2", "12"}, {"3*-2", "-6"}, {"-0", "0"}});
}

TEST(Evaluator, UnknownCharactersClearOnlyThePendingOperator)
{
    expectEval({
        {"2+ 3", "3"}, // the blank drops the "+", the 3 then replaces the accumulator
        {"2 3", "23"}, // the number text survives a blank
        {"4*Q5", "5"},
    });
}

TEST(Evaluator, UnaryLettersActAtTheNextOperatorAndDiscardTheirOperand)
{
    expectEval({{"16S+2", "6"}, {"16S9", "4"}, {"16s", "4"}, {"A5", "0"}, {"-5A", "5"}, {"3A+1", "4"}, {"abc", "1"},
                {"0C", "1"}, {"1E", "2.71828182845905"}, {"1L", "0"}, {"1.5X", "720"}, {"0.75x", "1080"},
                {"-1.25X", "360"}}); // 29 December 1899, 06:00
}

TEST(Evaluator, RoundingGoesHalfToEvenOnFifteenDigits)
{
    expectEval({{"2.5R", "2"}, {"3.5R", "4"}, {"-2.5R", "-2"}, {"0.125U", "0.12"}, {"0.135U", "0.14"},
                {"2.675U", "2.68"}, // 2.67499999... as a double
                {"1.005U", "1"},    // 1.00500000000000 is a half: to even
                {"0.05O", "0"}, {"1.23456789D", "1.2346"}, {"1.0005N", "1"}, {"2.567U", "2.57"}});
}

TEST(Evaluator, RemainderRoundsBothSidesAndKeepsTheLeftSign)
{
    expectEval({{"7M3", "1"}, {"7m3", "1"}, {"-7M3", "-1"}, {"7M-3", "1"},
                {"7.5M2", "0"}, // 8 mod 2
                {"6.5M4", "2"}}); // 6 mod 4
}

TEST(Evaluator, FailingOperationsLeaveTheAccumulator)
{
    expectEval({{"9/0", "9"}, {"0/5", "0"}, {"0/0", "0"}, {"-4S", "-4"}, {"0L", "0"}, {"1000E", "1000"},
                {"-8^0.5", "-8"}, {"0^-1", "0"}, {"7M0", "7"}, {"2958466X", "2958466"},
                {"9/0+1", "10"}}); // a failure does not stop the scan: the next operator works again
}

TEST(Evaluator, BracketsAreReplacedByTheirValuesWithTheirOddRules)
{
    expectEval({{"2*(3+4)", "14"}, {"(2+3)*(4+5)", "45"},
                {"(0~5)*2", "-10"}, // a negative result puts a "-", a number character again, in place
                {"(2+3", "5"},      // "(" without ")" is an unknown character of the final scan
                // The walk resumes at the second character with the old start: the outer bracket goes wrong.
                {"((1+2)*3)", "0"},
                // The bound is fixed at entry: a long result pushes the next bracket past it.
                {"(1/3)+(2/3)", "3"}, {"(2/3)*(9)", "9"},
                {"(1)+2)", "2"}}); // a ")" after a bracket uses the stale start instead of abandoning the call
    EXPECT_EQ(rewritten("2*(3+4)"), "2*7");
    // Every occurrence of the bracket's text goes, in any case.
    EXPECT_EQ(rewritten("(1+2)+(1+2)"), "3+3");
    EXPECT_EQ(rewritten("(2A)*(2a)"), "2*2");
    EXPECT_EQ(rewritten("((1+2)*3)"), "(0");
}

TEST(Evaluator, RoundingLettersInsideABracketAreReadFromTheWholeExpression)
{
    EXPECT_EQ(eval("(2.567U)"), "2.567");
    // The blank at index 4 of the contents meets the "R" at index 4 of the expression.
    EXPECT_EQ(rewritten("abcR(2.5 )"), "abcR2");
    EXPECT_EQ(rewritten("abcQ(2.5 )"), "abcQ2.5");
    // A digit of the contents wins over a letter of the expression.
    EXPECT_EQ(rewritten("U(2.567)"), "U2.567");
}

TEST(Evaluator, AClosingBracketBeforeAnyOpeningAbandonsTheCall)
{
    QString e = QStringLiteral(")5");
    EXPECT_FALSE(EvaluateExpression(e).has_value());
    e = QStringLiteral("5+1)");
    EXPECT_FALSE(EvaluateExpression(e).has_value());
    e = QStringLiteral("5+1)");
    EXPECT_EQ(EvaluateToText(e), "");
}

TEST(Evaluator, ResultsOfBracketsUseTheLocaleSeparatorThroughCleanNumber)
{
    QString e = QStringLiteral("(1/2)+1");
    EXPECT_EQ(EvaluateToText(e, QStringLiteral(",")), "1.5");
    EXPECT_EQ(e, "0.5+1");
}

TEST(NumberText, ValReadsTheLeadingNumber)
{
    const struct {
        const char *text;
        double value;
    } rows[] = {{"12-5", 12}, {"1.2.3", 1.2}, {"abc", 0}, {" 1 2", 12}, {"1e3", 1000}, {"1D2x", 100}, {"-.5", -0.5},
                {"+7", 7},    {"1e", 1},      {"1e+", 1}, {"--5", 0},   {".", 0}};
    for (const auto &row : rows)
        EXPECT_EQ(Val(QLatin1String(row.text)), row.value) << row.text;
    EXPECT_TRUE(std::isinf(Val("1e400")));
}

TEST(NumberText, CleanNumberDropsGroupMarksAndMovesTheSeparator)
{
    EXPECT_EQ(CleanNumberCopy("1,234.50"), "1234.50");
    EXPECT_EQ(CleanNumberCopy("1.234,50", ","), "1234.50");
    EXPECT_EQ(CleanNumberCopy("1'000"), "1000");
    EXPECT_EQ(CleanNumberCopy(QString::fromUtf8("1\u00a0000")), "1000");
    EXPECT_EQ(CleanNumberCopy("a.b", ","), "ab");
}

TEST(NumberText, CleanNumberIsItsStepsOneAfterTheOther)
{
    // The steps as they are told: with another separator every "." goes and the separator
    // (in any case) becomes "."; then every ",", "'" and character 160 goes.
    const auto steps = [](QString t, const QString &separator) {
        if (separator.compare(QLatin1String("."), Qt::CaseInsensitive) != 0 && !separator.isEmpty()) {
            t.remove(QLatin1Char('.'));
            t.replace(separator, QLatin1String("."), Qt::CaseInsensitive);
        }
        t.remove(QLatin1Char(','));
        t.remove(QLatin1Char('\''));
        t.remove(QChar(0xA0));
        return t;
    };
    const QString alphabet = QString::fromUtf8("0123456789.,'\u00a0 -+eEx\u00e4;");
    const QString separators[] = {".", ",", "", "'", ";", "x", "X", "\u00a0", ",,", "\u00e4"};
    uint32_t state = 7;
    for (int k = 0; k < 4000; ++k) {
        QString text;
        for (int n = 0; n < k % 12; ++n) {
            state = state * 1103515245u + 12345u;
            text += alphabet[int((state >> 16) % uint32_t(alphabet.size()))];
        }
        for (const QString &separator : separators)
            ASSERT_EQ(CleanNumberCopy(text, separator), steps(text, separator)) << text.toStdString() << " | "
                                                                               << separator.toStdString();
    }
}

TEST(NumberText, DefaultConversionGivesFifteenDigits)
{
    const struct {
        double value;
        const char *text;
    } rows[] = {{1.0 / 3, "0.333333333333333"}, {1e20, "1E+20"}, {1.5e20, "1.5E+20"}, {-0.0, "0"}, {0.1 + 0.2, "0.3"},
                {123456789012345678.0, "1.23456789012346E+17"}, {1e-5, "1E-05"}, {100, "100"}};
    for (const auto &row : rows)
        EXPECT_EQ(NumberToText(row.value), QLatin1String(row.text)) << row.text;
    EXPECT_EQ(NumberToText(2.5, ","), "2,5");
    // Every size and sign, the switch to the exponent at both ends and values that round up to
    // one more digit: as printf's "%.15G" writes them.
    std::vector<double> values = {9.999999999999995, 999999999999999.5, 1e15, 1e14, 0.0001, 0.00009999999999999999,
                                  123456.7890123456, 5e-324, 1.7976931348623157e308};
    uint64_t state = 99;
    for (int k = 0; k < 20000; ++k) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        const double mantissa = double(state >> 11) / double(1ull << 53);
        values.push_back((state & 1 ? -1 : 1) * mantissa * std::pow(10.0, int((state >> 3) % 41) - 20));
    }
    for (const double value : values) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "%.15G", value);
        ASSERT_EQ(NumberToText(value), QLatin1String(expected)) << expected;
    }
}
