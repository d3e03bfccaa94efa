// RunFormulas over pages built in code: an invoice (line totals, tax, total, amount in words), and
// the reference, target and function-form rules one by one.

#include "core/FixedClock.h"
#include "formula/DateNumber.h"
#include "formula/FormulaEngine.h"
#include "formula/SubstituteTags.h"

#include "QtPrinters.h"
#include "support/RecordingMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace ff;

namespace {

// A design with `fields` text fields (1..n), 2 combos, 2 notes, checks 0..1 and labels 0..5.
Design makeDesign(int fields)
{
    Design d;
    d.Fields.resize(static_cast<size_t>(fields) + 1);
    d.FieldCount = static_cast<int16_t>(fields);
    d.Combos.resize(3);
    d.ComboCount = 2;
    d.Notes.resize(3);
    d.NoteCount = 2;
    d.Checks.resize(2);
    d.CheckCount = 1;
    d.Titles.resize(6);
    d.TitleCount = 5;
    d.ShowZeros = 1;
    return d;
}

void setField(Design &d, int n, int type, const QString &formula = QString())
{
    d.Fields[static_cast<size_t>(n)].FieldType = static_cast<uint8_t>(type);
    d.Fields[static_cast<size_t>(n)].FieldFormula = formula;
}

struct Fixture {
    explicit Fixture(Design d) : design(std::move(d)), page(design), engine(page, context)
    {
        context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
        context.host = &host;
        context.AppTitle = QStringLiteral("Invoices");
        context.clock = &clock;
    }
    QString run(const QString &token)
    {
        QString t = token;
        last = engine.RunStatement(t);
        return t;
    }
    Design design;
    Page page;
    FixedClock clock{QDateTime(QDate(2024, 1, 15), QTime(12, 0))}; // day number 45306.5
    FormulaContext context;
    testsupport::RecordingMessages host;
    FormulaEngine engine;
    Status last;
};

// The values of a typed page served as a pending record, as an import serves its rows.
class TypedRecord : public PendingRecord {
public:
    explicit TypedRecord(const Page &typed) : typed_(typed) {}
    QString fieldText(int n) const override { return typed_.FieldText[n]; }
    QString comboText(int n) const override { return typed_.ComboText[n]; }
    int checkValue(int n) const override { return typed_.CheckValue[n]; }
    void putOnPage(ElementKind kind, int n, Page &page) override
    {
        touched.emplace_back(kind, n);
        switch (kind) {
        case ElementKind::Field:
            page.FieldText[n] = typed_.FieldText[n];
            page.FieldDate[n] = typed_.FieldDate[n];
            break;
        case ElementKind::Combo: page.ComboText[n] = typed_.ComboText[n]; break;
        case ElementKind::Check: page.CheckValue[n] = typed_.CheckValue[n]; break;
        default: page.NoteText[n] = typed_.NoteText[n]; break;
        }
    }
    std::vector<std::pair<ElementKind, int>> touched;

private:
    const Page &typed_;
};

// Runs the formulas of `f`'s typed page once more with the page as a pending record over a page
// of other values, and expects the record that comes of it (the touched elements from that page,
// the rest as typed) to be the page the ordinary run left. Call before the ordinary run.
void expectPendingRunAgrees(Fixture &f, const char *rule)
{
    Page typed(f.design);
    typed.FieldText = f.page.FieldText;
    typed.FieldDate = f.page.FieldDate;
    typed.ComboText = f.page.ComboText;
    typed.CheckValue = f.page.CheckValue;
    typed.NoteText = f.page.NoteText;
    Page other(f.design);
    other.FieldText.fill(QStringLiteral("junk"));
    other.ComboText.fill(QStringLiteral("junk"));
    other.NoteText.fill(QStringLiteral("junk"));
    other.CheckValue.fill(2);
    FormulaEngine engine(other, f.context);
    TypedRecord pending(typed);
    engine.RunFormulas(pending);
    for (const auto &[kind, n] : pending.touched) {
        switch (kind) {
        case ElementKind::Field: typed.FieldText[n] = other.FieldText[n]; break;
        case ElementKind::Combo: typed.ComboText[n] = other.ComboText[n]; break;
        case ElementKind::Check: typed.CheckValue[n] = other.CheckValue[n]; break;
        default: typed.NoteText[n] = other.NoteText[n]; break;
        }
    }
    f.engine.RunFormulas();
    EXPECT_EQ(typed.FieldText, f.page.FieldText) << rule;
    EXPECT_EQ(typed.ComboText, f.page.ComboText) << rule;
    EXPECT_EQ(typed.CheckValue, f.page.CheckValue) << rule;
    EXPECT_EQ(typed.NoteText, f.page.NoteText) << rule;
}

} // namespace

TEST(RunFormulas, InvoicePage)
{
    Design d = makeDesign(12);
    setField(d, 1, 1);                    // quantity
    setField(d, 2, 2);                    // price
    setField(d, 3, 2, "F1*F2");           // line total
    setField(d, 4, 5);                    // quantity
    setField(d, 5, 2);                    // price
    setField(d, 6, 2, "F4*F5");           // line total
    setField(d, 7, 2, "F3+F6");           // subtotal
    setField(d, 8, 2, "F7*0.08U");        // tax, rounded to cents
    setField(d, 9, 2, "F7+F8");           // total
    setField(d, 10, 0, "f10=CUR(F9)");    // amount in words, from the shown total
    setField(d, 11, 1, "IF F9>1000 THEN f11=1 k1=1 ELSE f11=0");
    setField(d, 12, 0, "Invoice for F1 items");
    Fixture f(std::move(d));
    f.page.FieldText[1] = "3";
    f.page.FieldText[2] = "19.99";
    f.page.FieldText[4] = "2";
    f.page.FieldText[5] = "1,250.00";
    expectPendingRunAgrees(f, "invoice"); // and the ordinary run
    EXPECT_EQ(f.page.FieldText[3], "59.97");
    EXPECT_EQ(f.page.FieldText[6], "2,500.00");
    EXPECT_EQ(f.page.FieldText[7], "2,559.97");
    EXPECT_EQ(f.page.FieldText[8], "204.80");
    EXPECT_EQ(f.page.FieldText[9], "2,764.77");
    EXPECT_EQ(f.engine.FieldValue(9), "2764.77");
    EXPECT_EQ(f.page.FieldText[10], "Two Thousand Seven Hundred Sixty-Four Dollars and Seventy-Seven Cents");
    EXPECT_EQ(f.page.FieldText[11], "1");
    EXPECT_EQ(f.page.CheckValue[1], 1);
    EXPECT_EQ(f.page.FieldText[12], "Invoice for 3 items");

    // Fewer items: the ELSE branch, and a zero quantity blanks nothing with ShowZeros 1.
    f.page.FieldText[4] = "0";
    f.engine.RunFormulas();
    EXPECT_EQ(f.page.FieldText[6], "0.00");
    EXPECT_EQ(f.page.FieldText[9], "64.77");
    EXPECT_EQ(f.page.FieldText[11], "0");
    EXPECT_EQ(f.page.FieldText[10], "Sixty-Four Dollars and Seventy-Seven Cents");
}

TEST(RunFormulas, SmallPagesOneRuleEach)
{
    struct FieldSpec {
        int n, type;
        const char *formula;
    };
    struct Text {
        int n;
        const char *text;
    };
    const struct {
        const char *rule;
        std::vector<FieldSpec> fields;
        uint8_t showZeros;
        std::vector<Text> typed, expected;
    } rows[] = {
        {"higher field numbers are replaced first", {{13, 1, "F12+F1"}}, 1, {{1, "7"}, {12, "100"}}, {{13, "107"}}},
        {"variables work in statement lines, not in bare formulas (the V is an unknown character)",
         {{1, 1, ""}, {2, 1, "v1=F1*2"}, {3, 1, "x=1\r\nf3=V1+1"}, {4, 1, "V1+1"}}, 1, {{1, "5"}}, {{3, "11"}, {4, "2"}}},
        {"formulas of time and date-part formats never run", {{1, 1, ""}, {2, 12, "f1=5"}, {3, 14, "f1=6"}}, 1,
         {{1, "1"}}, {{1, "1"}}},
        {"bare formulas on date fields add FieldDisplay; a zero date shows nothing",
         {{1, 7, ""}, {2, 7, "F1"}, {3, 7, "0"}}, 1, {{1, "1/15/2024"}}, {{2, "2/14/2024"}, {3, ""}}},
        {"ShowZeros 0 blanks zero results", {{1, 2, "5~5"}, {2, 10, "0.75"}}, 0, {}, {{1, ""}, {2, "18:00"}}},
    };
    for (const auto &row : rows) {
        int count = 0;
        for (const FieldSpec &spec : row.fields)
            count = std::max(count, spec.n);
        Design d = makeDesign(count);
        d.ShowZeros = row.showZeros;
        for (const FieldSpec &spec : row.fields)
            setField(d, spec.n, spec.type, QString::fromLatin1(spec.formula));
        if (d.Fields[2].FieldType == 7)
            d.Fields[2].FieldDisplay = 30; // days added to a date
        Fixture f(std::move(d));
        for (const Text &t : row.typed)
            f.page.FieldText[t.n] = QLatin1String(t.text);
        expectPendingRunAgrees(f, row.rule); // and the ordinary run
        for (const Text &t : row.expected)
            EXPECT_EQ(f.page.FieldText[t.n], QLatin1String(t.text)) << row.rule << ", field " << t.n;
    }
}

TEST(RunFormulas, NoFormulaMeansNoWorkAtAll)
{
    Design d = makeDesign(2);
    Fixture f(std::move(d));
    f.context.FormulaVars[5] = "kept";
    f.engine.RunFormulas();
    EXPECT_EQ(f.context.FormulaVars[5], "kept");

    Design d2 = makeDesign(2);
    setField(d2, 2, 1, "1+1");
    Fixture g(std::move(d2));
    g.context.FormulaVars[5] = "cleared";
    g.engine.RunFormulas();
    EXPECT_EQ(g.context.FormulaVars[5], "");
}

TEST(RunFormulas, CombosGoInQuotedWithTildesInNumberModeAndLiveInTextMode)
{
    Design d = makeDesign(2);
    setField(d, 1, 1, "IF C1=\"Net-30\" THEN f1=30 ELSE f1=0");
    setField(d, 2, 0, "IF C1=\"Net-30\" THEN m1=Due_in_30_days");
    d.Combos[2].ComboFormat = 1;
    Fixture f(std::move(d));
    f.page.ComboText[1] = "Net-30";
    expectPendingRunAgrees(f, "combos and notes"); // and the ordinary run
    EXPECT_EQ(f.page.FieldText[1], "0"); // "Net~30" is not "Net-30"
    EXPECT_EQ(f.page.NoteText[1], "Due in 30 days");

    QString line = QStringLiteral("C1+C2");
    f.page.ComboText[2] = "1,5";
    f.engine.RunFormulas();
    f.engine.SubstituteFields(line, 0);
    EXPECT_EQ(line, "\"Net~30\"+15");
}

TEST(SubstituteFields, SystemVariablesKnowNoWordLimits)
{
    Design d = makeDesign(1);
    setField(d, 1, 1, "1");
    Fixture f(std::move(d));
    f.context.CurrentRecord = 42;
    f.context.SearchDate = 45306.5;
    f.context.SumTotal = 12.5;
    f.context.CountTotal = 3;
    f.engine.RunFormulas();
    QString line = QStringLiteral("idea SDATE Date$ SumTotal$ SumAdv$ CountTotal$");
    f.engine.SubstituteFields(line, 0);
    EXPECT_EQ(line, "42ea 45306 1/15/2024 12.5 0 3");
    // Text mode has no system variables; live texts go in with blanks as "_".
    f.page.FieldText[1] = "two words";
    line = QStringLiteral("id F1");
    f.engine.SubstituteFields(line, 1);
    EXPECT_EQ(line, "id two_words");
}

TEST(RunStatement, FieldTargetsByFormat)
{
    Design d = makeDesign(5);
    setField(d, 1, 0);
    setField(d, 2, 2);
    setField(d, 3, 10);
    setField(d, 4, 7);
    setField(d, 5, 12);
    Fixture f(std::move(d));
    f.engine.RunFormulas();
    const struct {
        const char *statement;
        int field;
        const char *expected;
    } rows[] = {
        {"f1=two_words", 1, "two words"}, {"F2=1,000+1", 2, "1001"}, {"f3=0.5", 3, "12:00"},
        {"f4=45306", 4, "1/15/2024"},     {"f5=0.25", 5, "06:00:00"},
        {"f2", 2, "1001"}, // no "=": nothing
    };
    for (const auto &row : rows) {
        f.run(QLatin1String(row.statement));
        EXPECT_EQ(f.page.FieldText[row.field], QLatin1String(row.expected)) << row.statement;
    }
    EXPECT_DOUBLE_EQ(f.page.FieldDate[4], 45306);
    f.run("f4=soon");
    EXPECT_FALSE(f.last.ok());
}

TEST(RunStatement, VariablesComparisonsAndFunctionForms)
{
    Fixture f(makeDesign(1));
    f.run("v2=CUR2(5*2)");
    EXPECT_FALSE(f.last.ok());
    EXPECT_EQ(f.context.FormulaVars[2], "");
    const struct {
        const char *statement;
        int var;
        const char *expected;
    } rows[] = {
        // Text is kept unless the right side is a positive expression.
        {"v1=2+3", 1, "5"}, {"v2=(5+1)", 2, "(5+1)"}, {"v3=0+3", 3, "0+3"}, {"V99=\"quoted\"", 99, "quoted"},
        {"v4=6m4", 4, "6m4"}, // only an upper-case M counts here
        // Comparisons on the right side.
        {"v1=5>=10", 1, "True"}, // cut at "=": "5>" against nothing
        {"v1=12>10", 1, "True"}, {"v1=-3>=10", 1, "False"}, {"v1=NOT(5>3)", 1, "False"}, {"v1=2+2<5", 1, "True"},
        // Function forms.
        {"v1=CUR2(5)", 1, "$5.00"}, {"v1=CUR1(1234.5)", 1, "$1,234.5"}, {"v1=num0(1234.5)", 1, "1,235"},
        {"v1=NUM2(1,234.567)", 1, "1,234.57"},
        {"v1=CUR(2.5)", 1, "Two_Dollars_and_Fifty_Cents"},
    };
    for (const auto &row : rows) {
        f.run(QLatin1String(row.statement));
        EXPECT_EQ(f.context.FormulaVars[row.var], QLatin1String(row.expected)) << row.statement;
    }
}

TEST(RunStatement, MessagesNotesCombosAndChecks)
{
    Fixture f(makeDesign(1));
    f.run("msg=MSGBOX(1,000)");
    f.run("MsgBox=Hello_there,_you");
    QStringList shown;
    for (const auto &m : f.host.shown)
        shown << m.caption + QLatin1Char('|') + m.text + QLatin1Char('|') + QString::number(m.colour);
    EXPECT_EQ(shown, (QStringList{"Invoices|1000|16744576", "Invoices|Hello_there,_you|16744576"}));
    f.engine.RunFormulas();
    f.run("M2=a_b");
    EXPECT_EQ(f.page.NoteText[2], "a b");
    f.run("c1=x_y");
    EXPECT_EQ(f.page.ComboText[1], "x_y");
    f.run("k0=1");
    EXPECT_EQ(f.page.CheckValue[0], 1);
    f.run("k0=-5");
    EXPECT_EQ(f.page.CheckValue[0], 0);
    f.run("k1=True"); // "True" converts to -1, which a check field refuses
    EXPECT_FALSE(f.last.ok());
    f.run("k1=maybe");
    EXPECT_FALSE(f.last.ok());
}

TEST(ButtonLines, InsertVUsesExactCaseAndLiveValues)
{
    Fixture f(makeDesign(2));
    f.context.CurrentRecord = 9;
    f.page.FieldText[1] = "1,234.5 kg";
    f.page.ComboText[1] = "2,000";
    f.page.CheckValue[1] = 1;
    QString line = QStringLiteral("F1+C1+K1 id ID");
    f.engine.InsertV(line);
    EXPECT_EQ(line, "1234.5+2000+1 id 9");
}

TEST(ButtonLines, SubstituteTagsFillsFreeText)
{
    Design d = makeDesign(1);
    d.Titles[1].Tag = "tip";
    Fixture f(std::move(d));
    f.context.CurrentRecord = 4;
    f.context.AppPath = "/apps";
    f.page.FieldText[1] = "Ann";
    f.page.ComboText[2] = "Blue";
    f.page.NoteText[1] = "Note";
    f.page.TitleCaption[1] = "Status";
    f.page.CheckValue[0] = 1;
    QString text = QStringLiteral("id: apath: f1: C2: m1: l1: L1$ k0:LF$end");
    SubstituteTags(text, f.page, f.context);
    EXPECT_EQ(text, "4 /apps Ann Blue Note Status tip 1\r\nend");
}
