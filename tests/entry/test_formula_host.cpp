// The entry rules over the real formula library: typing, leaving and page buttons recalculate the
// page through FormulaEntryHost. The locale is pinned to en_US.

#include "support/RecordingEntryHost.h"

#include "entry/FieldEntry.h"
#include "entry/FormulaEntryHost.h"
#include "entry/PageActions.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <memory>

using namespace ff;

namespace {

class PageHost : public FormulaEntryHost, public testsupport::RecordingMessages {
public:
    using FormulaEntryHost::FormulaEntryHost;
    QStringList calls;
    bool readOnly() const override { return false; }
    Status lockRecord() override
    {
        calls << QStringLiteral("lock");
        return {};
    }
    Status saveIfDirty() override
    {
        calls << QStringLiteral("save");
        return {};
    }
    void navigate(int button) override { calls << QStringLiteral("navigate %1").arg(button); }
    void newRecord() override { calls << QStringLiteral("new"); }
    void endProgram() override { calls << QStringLiteral("end"); }
    void copyRecordToClipboard() override { calls << QStringLiteral("copy"); }
    void runSearchLine(const QString &line) override { calls << QStringLiteral("search ") + line; }
    bool fileExists(const QString &) override { return false; }
    void openWithDesktop(const QString &target, const QString &parameters) override
    {
        calls << QStringLiteral("open ") + target + QLatin1Char('|') + parameters;
    }
};

class FormulaHostTest : public ::testing::Test {
protected:
    // Fields 1 and 2 money, 3 money with the formula F1+F2, 4 text.
    void SetUp() override
    {
        design.Fields.resize(5);
        for (int i = 1; i <= 3; ++i)
            design.Fields[static_cast<size_t>(i)].FieldType = 2;
        design.Fields[3].FieldFormula = QStringLiteral("F1+F2");
        design.FieldCount = 4;
        design.ShowZeros = 1;
        design.Titles.resize(7);
        design.TitleCount = 6;
        design.Titles[6].Tag = QStringLiteral("viewer.exe --name F4: --id ID:");
        context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
        context.CurrentRecord = 12;
        page = std::make_unique<Page>(design);
        host = std::make_unique<PageHost>(*page, context);
        entry = std::make_unique<FieldEntry>(*page, *host, context.locale);
        actions = std::make_unique<PageActions>(*page, *host, entry->state());
    }

    void type(int index, const QString &keys) { ff::testsupport::typeInto(*entry, *page, index, keys); }

    Design design;
    FormulaContext context;
    std::unique_ptr<Page> page;
    std::unique_ptr<PageHost> host;
    std::unique_ptr<FieldEntry> entry;
    std::unique_ptr<PageActions> actions;
};

TEST_F(FormulaHostTest, LeavingAFieldRecalculatesThePage)
{
    type(1, QStringLiteral("2*(3+4)"));
    type(2, QStringLiteral("100-5"));
    EXPECT_EQ(page->FieldText[1], QStringLiteral("14.00"));
    EXPECT_EQ(page->FieldText[2], QStringLiteral("95.00"));
    EXPECT_EQ(page->FieldText[3], QStringLiteral("109.00"));
}

TEST_F(FormulaHostTest, ButtonLinesSeeTheValuesOfTheLinesBefore)
{
    ButtonElement button;
    button.ButtonScript = QStringLiteral("v1=5\r\nf1=V1*2\r\nIF F1>4 THEN f2=V1\r\nselect * where total>F1");
    design.Buttons.push_back(button);
    actions->buttonPressed(0);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("10"));
    EXPECT_EQ(page->FieldText[3], QStringLiteral("15.00"));
    EXPECT_EQ(host->calls, (QStringList{QStringLiteral("save"), QStringLiteral("search select * where total>10"),
                                        QStringLiteral("lock")}));

    // A line takes its values before it runs: V1 set on the same line is still empty there.
    design.Buttons[0].ButtonScript = QStringLiteral("v1=5 f1=V1*2");
    actions->buttonPressed(0);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("0"));
}

TEST_F(FormulaHostTest, LabelTagsAreFilledFromThePage)
{
    page->FieldText[4] = QStringLiteral("Ann");
    actions->labelPressed(6);
    EXPECT_EQ(host->calls, QStringList{QStringLiteral("open viewer.exe|--name Ann --id 12")});
}

} // namespace
