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

TEST(TestCondition, NotIsNumericAndKnowsNoEquals)
{
    EXPECT_FALSE(test("NOT(3>2)"));
    EXPECT_TRUE(test("NOT(3<2)"));
    EXPECT_FALSE(test("NOT(3=3)"));
    EXPECT_FALSE(test("NOT(3=2)"));
    EXPECT_TRUE(test("not(2>=3)"));
    // Not evaluated: "1+4" reads 1.
    EXPECT_TRUE(test("NOT(1+4>3)"));
}

TEST(TestCondition, OperatorsInOrderAndSidesEvaluatedExceptForEquals)
{
    EXPECT_TRUE(test("5<>3"));
    EXPECT_TRUE(test("3<=3"));
    EXPECT_FALSE(test("2+3=5")); // "=" keeps its sides: Val("2+3") is 2
    EXPECT_TRUE(test("2+3>=5"));
    EXPECT_TRUE(test("10~4<7"));
    EXPECT_FALSE(test("AND"));
    EXPECT_FALSE(test("5"));
    EXPECT_TRUE(test("0=Smith")); // no quotes: mode 0, Smith reads 0
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
}

TEST(TestCondition, TextSidesWithAnMAreEvaluated)
{
    EXPECT_TRUE(test("abc=ABC", 1));
    EXPECT_TRUE(test("apple<Banana", 1));
    // "ham" holds an "m": it is evaluated to 0 before the text comparison.
    EXPECT_FALSE(test("ham<>0", 1));
    EXPECT_TRUE(test("hat<>0", 1));
}

TEST(TestCondition, DateModeAndUnknownModes)
{
    EXPECT_TRUE(test("15-Jan-24<01-Feb-24", 2));
    EXPECT_TRUE(test("1/15/2024=45306", 2));
    uint8_t mode = 2;
    const FormulaContext context = englishContext();
    QString token = QStringLiteral("soon<later");
    EXPECT_FALSE(TestCondition(token, mode, context).ok());
    EXPECT_FALSE(test("1<2", 3));
}
