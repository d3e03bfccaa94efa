// Formula lines: cutting at blanks, quoted text, the flat IF walk and single comparisons.

#include "formula/Conditions.h"

#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace ff;

namespace {

struct Recorder {
    QStringList ran;
    StatementRunner runner()
    {
        return [this](QString &token) {
            ran << token;
            if (token == QLatin1String("fail"))
                return Status(makeError(ErrorCode::Invalid, QStringLiteral("fail")));
            return Status();
        };
    }
};

FormulaContext englishContext()
{
    FormulaContext context;
    context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
    return context;
}

QStringList runIf(const QString &text, uint8_t mode = 0, Status *status = nullptr)
{
    Recorder recorder;
    QString line = text;
    const FormulaContext context = englishContext();
    const Status s = RunIf(line, mode, recorder.runner(), context);
    if (status)
        *status = s;
    return recorder.ran;
}

QStringList assign(const QString &text, bool *ok = nullptr)
{
    Recorder recorder;
    uint8_t mode = 0;
    QString line = text;
    const bool done = RunAssignments(line, mode, recorder.runner()).ok();
    if (ok)
        *ok = done;
    return recorder.ran;
}

bool test(const QString &token, uint8_t mode = 0)
{
    QString t = token;
    const FormulaContext context = englishContext();
    const Result<bool> r = TestCondition(t, mode, context);
    EXPECT_TRUE(r.ok()) << token.toStdString();
    return r.ok() && *r;
}

} // namespace

TEST(RunAssignments, CutsAtBlanksReplacesTrueAndFalseAndStopsAtAFailure)
{
    bool ok = false;
    EXPECT_EQ(assign("v1=\"a b\" v2=3  v3=4", &ok), (QStringList{"v1=\"a_b\"", "v2=3", "", "v3=4"}));
    EXPECT_TRUE(ok);
    // TRUE and FALSE are replaced even inside words and quotes.
    EXPECT_EQ(assign("v1=TRUETIME v2=false v3=\"Falsehood\""), (QStringList{"v1=1TIME", "v2=0", "v3=\"0hood\""}));
    EXPECT_EQ(assign("a=1 fail b=2", &ok), (QStringList{"a=1", "fail"}));
    EXPECT_FALSE(ok);
}

TEST(RunIf, ThenAndElseBranches)
{
    EXPECT_EQ(runIf("IF 5>3 THEN v1=1 ELSE v1=2"), (QStringList{"v1=1", "ELSE"}));
    EXPECT_EQ(runIf("IF 3>3 THEN v1=1 ELSE v1=2"), (QStringList{"v1=2"}));
    EXPECT_EQ(runIf("IF 3>3 THEN v1=1"), QStringList());
    EXPECT_EQ(runIf("if 5>3 then v1=1 v2=2 else v3=3"), (QStringList{"v1=1", "v2=2", "else"}));
    // The first token is never looked at.
    EXPECT_EQ(runIf("5>3 THEN v1=1"), QStringList());
    // Underscores become blanks; quotes survive the cut.
    EXPECT_EQ(runIf("IF \"New York\"=\"new york\" THEN m1=a_b"), (QStringList{"m1=a b"}));
}

TEST(RunIf, AndOnFalseAndOrOnTrueSkipTheRestOfTheTests)
{
    // In date mode the right operand would fail if it were tested.
    Status status;
    EXPECT_EQ(runIf("IF 1>3 AND x<y THEN v1=1 ELSE v1=2", 2, &status), (QStringList{"v1=2"}));
    EXPECT_TRUE(status.ok());
    EXPECT_EQ(runIf("IF 1>3 AND x<y THEN v1=1", 2, &status), QStringList());
    EXPECT_TRUE(status.ok());
    // With the test made, the failure stops the line.
    EXPECT_EQ(runIf("IF 5>3 AND x<y THEN v1=1", 2, &status), QStringList());
    EXPECT_FALSE(status.ok());
    EXPECT_EQ(runIf("IF 5>3 OR x<y THEN v1=1", 2, &status), (QStringList{"v1=1"}));
    EXPECT_TRUE(status.ok());
}

TEST(RunIf, FlatWalkLetsALaterTestOverwriteAFalseAnd)
{
    EXPECT_EQ(runIf("IF 1>3 AND 5>3 OR 1>9 THEN v1=1 ELSE v1=2"), (QStringList{"v1=1", "ELSE"}));
    EXPECT_EQ(runIf("IF 5>3 AND 1>3 THEN v1=1 ELSE v1=2"), (QStringList{"v1=2"}));
    EXPECT_EQ(runIf("IF 5>3 AND 4>3 THEN v1=1 ELSE v1=2"), (QStringList{"v1=1", "ELSE"}));
    EXPECT_EQ(runIf("IF 1>3 OR 4>3 THEN v1=1"), (QStringList{"v1=1"}));
}

TEST(TestCondition, SingleComparisonsByMode)
{
    const struct {
        const char *token;
        uint8_t mode;
        bool expected;
    } rows[] = {
        // NOT is numeric, knows no "=" and does not evaluate: "1+4" reads 1.
        {"NOT(3>2)", 0, false}, {"NOT(3<2)", 0, true}, {"NOT(3=3)", 0, false}, {"NOT(3=2)", 0, false},
        {"not(2>=3)", 0, true}, {"NOT(1+4>3)", 0, true},
        // Operators in order; the sides are evaluated except for "=": Val("2+3") is 2.
        {"5<>3", 0, true}, {"3<=3", 0, true}, {"2+3=5", 0, false}, {"2+3>=5", 0, true}, {"10~4<7", 0, true},
        {"AND", 0, false}, {"5", 0, false}, {"0=Smith", 0, true}, // no quotes: mode 0, Smith reads 0
        // Text sides holding an "m" are evaluated first: "ham" is 0.
        {"abc=ABC", 1, true}, {"apple<Banana", 1, true}, {"ham<>0", 1, false}, {"hat<>0", 1, true},
        {"15-Jan-24<01-Feb-24", 2, true}, {"1/15/2024=45306", 2, true}, {"1<2", 3, false},
    };
    for (const auto &row : rows)
        EXPECT_EQ(test(QLatin1String(row.token), row.mode), row.expected) << row.token;
}

TEST(TestCondition, QuotesSwitchTheLineToTextMode)
{
    uint8_t mode = 0;
    const FormulaContext context = englishContext();
    QString token = QStringLiteral("\"Smith\"=smith");
    EXPECT_TRUE(*TestCondition(token, mode, context));
    EXPECT_EQ(mode, 1);
    // The mode stays raised: a later numeric-looking test compares text.
    token = QStringLiteral("10>9");
    EXPECT_FALSE(*TestCondition(token, mode, context));
    // In date mode a side that is no date is an error, not a false test.
    mode = 2;
    token = QStringLiteral("soon<later");
    EXPECT_FALSE(TestCondition(token, mode, context).ok());
}
