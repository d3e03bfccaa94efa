// The action button, the stop watch, and labels, buttons and pictures that act, with a recording
// host standing in for the record store, the formula language, the search and the desktop.

#include "support/RecordingEntryHost.h"

#include "core/FixedClock.h"
#include "entry/FieldEntry.h"
#include "entry/PageActions.h"
#include "entry/TagRules.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ff;
using ff::testsupport::RecordingEntryHost;

namespace {

TEST(FieldActionChoice, FirstFittingTestWins)
{
    using K = FieldAction::Kind;
    const struct {
        const char *text;
        int type;
        K kind;
        const char *tip;
    } cases[] = {
        {"www.example.org", 0, K::Internet, "Internet..."},
        {"WwW.Example.ORG", 0, K::Internet, "Internet..."},
        {"site/index.html", 0, K::Internet, "Internet..."},
        {"me@www.example.org", 0, K::Internet, "Internet..."}, // the web test comes first
        {"anne@example.org", 0, K::Mail, "E-mail..."},
        {"@", 0, K::Mail, "E-mail..."},
        {"report.doc", 0, K::Document, "View Doc..."},
        {"notes.txt", 0, K::Document, "View Doc..."},
        {"letter.RTF", 0, K::Document, "View Doc..."},
        {"manual.pdf", 0, K::Pdf, "View PDF..."},
        {"song.mp3", 0, K::Sound, "Play Wave..."},
        {"tune.mid", 0, K::Sound, "Play Wave..."},
        {"photo.jpg", 0, K::Picture, "Show Picture..."},
        {"backup.zip", 0, K::Zip, "View Zip..."},
        {"a.zip.pdf", 0, K::Pdf, "View PDF..."},
        {".doc", 0, K::None, ""}, // an extension at the start is no file name
        {".zip", 12, K::StopWatch, "Stop Watch..."},
        {"00:00:00", 12, K::StopWatch, "Stop Watch..."},
        {"12:00", 10, K::StopWatch, "Stop Watch..."},
        {"notes.txt", 12, K::Document, "View Doc..."},
        {"plain text", 0, K::None, ""},
        {"12:00", 9, K::None, ""},
    };
    for (const auto &c : cases) {
        const FieldAction action = FieldAction::choose(QLatin1String(c.text), c.type);
        EXPECT_EQ(action.kind, c.kind) << c.text;
        EXPECT_EQ(action.tip, QLatin1String(c.tip)) << c.text;
        EXPECT_EQ(action.visible(), c.kind != K::None) << c.text;
    }
    EXPECT_EQ(FieldAction::choose(QStringLiteral("www.a.b"), 0).prefix, QStringLiteral("http://"));
    EXPECT_EQ(FieldAction::choose(QStringLiteral("a@b"), 0).prefix, QStringLiteral("mailto:"));
    EXPECT_EQ(FieldAction::choose(QStringLiteral("a.pdf"), 0).prefix, QString());
}

TEST(TagRulesTest, SearchCommandsAreRecognisedLikeTheSearchWindowDoes)
{
    const struct {
        const char *line;
        bool search;
    } rows[] = {
        {"select * where price>10", true}, {"  SELECT name WHERE city='x'  ", true}, {"replace a=1 where b=2", true},
        {"sum price", true},               {"Count price>100", true},
        {"select where x=1", false}, // " where " must stand at the ninth character or later
        {"select a where x=1", true},      {"select name", false},  {"summary=1", false}, {"f1=f2+1", false},
    };
    for (const auto &row : rows)
        EXPECT_EQ(TagRules::isSearchCommand(QLatin1String(row.line)), row.search) << row.line;

    EXPECT_EQ(TagRules::scriptLines(QStringLiteral("a=1\r\nb=2\n\r\nc=3\rd=4")),
              (QStringList{QStringLiteral("a=1"), QStringLiteral("b=2"), QStringLiteral("c=3"), QStringLiteral("d=4")}));
    const TagRules::OpenTarget program = TagRules::splitProgram(QStringLiteral("other.exe -paste data.dat"));
    EXPECT_EQ(program.file, QStringLiteral("other.exe"));
    EXPECT_EQ(program.parameters, QStringLiteral("-paste data.dat"));
    EXPECT_EQ(TagRules::splitProgram(QStringLiteral("other.exe")).file, QStringLiteral("other.exe"));
    EXPECT_EQ(TagRules::splitProgram(QStringLiteral("other.exe")).parameters, QString());
}

TEST(StopWatchTest, CountsFromTheClickOnAFakeClock)
{
    FixedClock clock{QDateTime(QDate(2024, 1, 1), QTime(23, 59, 50))}; // the watch runs past midnight
    StopWatch watch(clock);
    EXPECT_FALSE(watch.running());
    EXPECT_EQ(watch.tick(), QString());
    EXPECT_TRUE(watch.click(6));
    EXPECT_EQ(watch.field(), 6);
    EXPECT_EQ(watch.tick(), QStringLiteral("00:00:00"));
    clock.advance(3723900); // 1 h 2 min 3.9 s
    EXPECT_EQ(watch.tick(), QStringLiteral("01:02:03"));
    EXPECT_FALSE(watch.click(6));
    EXPECT_FALSE(watch.running());
    EXPECT_EQ(StopWatch::elapsedText(100 * 3600 + 59), QStringLiteral("100:00:59"));
    // A new start counts from the new click.
    clock.advance(50000);
    watch.click(7);
    clock.advance(5000);
    EXPECT_EQ(watch.tick(), QStringLiteral("00:00:05"));
}

class PageActionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        design.Fields.resize(3);
        design.Fields[2].FieldType = 12;
        design.FieldCount = 2;
        design.Titles.resize(10);
        design.TitleCount = 9;
        const char *tags[] = {"<", "<", "", "", "", "", "<", "<>", "notepad.exe F1: and more", ""};
        for (int i = 0; i < 10; ++i)
            design.Titles[static_cast<size_t>(i)].Tag = QLatin1String(tags[i]);
        design.Pictures.resize(2);
        design.Pictures[0].PictureHint = QStringLiteral("Our shop");
        design.Pictures[0].PictureLink = QStringLiteral("www.shop.example/ID:");
        design.Pictures[1].Stretch = true;
        page = std::make_unique<Page>(design);
        entry = std::make_unique<FieldEntry>(*page, host, QLocale(QLocale::English, QLocale::UnitedStates));
        actions = std::make_unique<PageActions>(*page, host, entry->state(), clock);
        host.tagFiller = [](QString text) {
            return text.replace(QLatin1String("F1:"), QLatin1String("Smith")).replace(QLatin1String("ID:"), QLatin1String("7"));
        };
    }

    void addButton(const QString &tag, const QString &script = QString())
    {
        ButtonElement button;
        button.Tag = tag;
        button.ButtonScript = script;
        design.Buttons.push_back(button);
    }
    void press(const QString &tag, const QString &script = QString())
    {
        design.Buttons.clear();
        addButton(tag, script);
        host.calls.clear();
        actions->buttonPressed(0);
    }

    Design design;
    std::unique_ptr<Page> page;
    RecordingEntryHost host;
    std::unique_ptr<FieldEntry> entry;
    std::unique_ptr<PageActions> actions;
    FixedClock clock{QDateTime(QDate(2024, 1, 1), QTime(12, 0))};
};

TEST_F(PageActionsTest, ActionButtonOpensAddressesAndExistingFiles)
{
    host.existingFiles.insert(QStringLiteral("/tmp/there.pdf"));
    const struct {
        const char *text;
        QStringList calls;
    } rows[] = {
        {"www.example.org", {QStringLiteral("open http://www.example.org|")}},
        {"anne@example.org", {QStringLiteral("open mailto:anne@example.org|")}},
        {"/tmp/missing.pdf", {QStringLiteral("message /tmp/missing.pdf file not found")}},
        {"/tmp/there.pdf", {QStringLiteral("open /tmp/there.pdf|")}},
        {"plain", {}}, // a field with no action: the hidden button does nothing
    };
    for (const auto &row : rows) {
        page->FieldText[1] = QLatin1String(row.text);
        entry->fieldGotFocus(1);
        host.calls.clear();
        EXPECT_FALSE(actions->actionButtonClicked()) << row.text;
        EXPECT_EQ(host.calls, row.calls) << row.text;
    }
}

TEST_F(PageActionsTest, StopWatchWritesIntoTheFieldThatStartedIt)
{
    entry->fieldGotFocus(2);
    clock.advance(10000);
    EXPECT_TRUE(actions->actionButtonClicked());
    clock.advance(65000);
    entry->fieldGotFocus(1); // the focus moves on; the watch keeps its field
    host.calls.clear();
    actions->stopWatchTick();
    EXPECT_EQ(page->FieldText[2], QStringLiteral("00:01:05"));
    EXPECT_DOUBLE_EQ(page->FieldDate[2] * 86400.0, 65.0); // the stored value, saved with the record
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("lock")}); // an edit: the record is changed
    EXPECT_EQ(page->FieldText[1], QString());
    entry->fieldGotFocus(2);
    EXPECT_FALSE(actions->actionButtonClicked());
    clock.advance(125000);
    actions->stopWatchTick();
    EXPECT_EQ(page->FieldText[2], QStringLiteral("00:01:05"));
}

TEST_F(PageActionsTest, StopWatchStopsOnARecordAnotherUserHolds)
{
    entry->fieldGotFocus(2);
    EXPECT_TRUE(actions->actionButtonClicked());
    clock.advance(3000);
    host.lockResult = Status(makeError(ErrorCode::PermissionDenied, QStringLiteral("held")));
    actions->stopWatchTick();
    EXPECT_FALSE(actions->stopWatch().running());
    EXPECT_EQ(page->FieldText[2], QString()); // nothing written into the other user's record
}

TEST_F(PageActionsTest, LabelsActByTheirTag)
{
    actions->labelPressed(1); // labels 0 to 5 never act, whatever their tag
    actions->labelPressed(3);
    EXPECT_TRUE(host.calls.isEmpty());
    actions->labelPressed(7);
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("new")});
    host.calls.clear();
    actions->labelPressed(8);
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("open notepad.exe|Smith and more")});
    host.calls.clear();
    actions->labelPressed(9); // an empty tag
    actions->labelPressed(42);
    EXPECT_TRUE(host.calls.isEmpty());

    const char *tags[] = {"<<<", "<<", "<", ">", ">>", ">>>"};
    for (int i = 0; i < 6; ++i) {
        design.Titles[6].Tag = QLatin1String(tags[i]);
        host.calls.clear();
        actions->labelPressed(6);
        EXPECT_EQ(host.calls, QStringList{QStringLiteral("navigate %1").arg(i)}) << tags[i];
    }
    // Compared exactly: a tag with a blank is a text to open.
    design.Titles[6].Tag = QStringLiteral("< ");
    host.calls.clear();
    actions->labelPressed(6);
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("open < |")});
}

TEST_F(PageActionsTest, ButtonsActByTheirTagWhenTheyHaveNoScript)
{
    // With a record that cannot be saved the record stays on the page: no new record, no program
    // that would take it, no script. The navigation saves, and stops, by itself.
    const Status saveFails = makeError(ErrorCode::Overflow, QStringLiteral("whole number out of range"));
    const struct {
        const char *tag, *script;
        QStringList calls, callsWhenTheSaveFails;
    } rows[] = {
        {">>", "", {QStringLiteral("navigate 4")}, {QStringLiteral("navigate 4")}},
        {"end", "", {QStringLiteral("end")}, {QStringLiteral("end")}}, // nothing saved
        {"<>", "", {QStringLiteral("save"), QStringLiteral("new")}, {QStringLiteral("save")}},
        {"other.exe -PASTE", "", {QStringLiteral("save"), QStringLiteral("copy"), QStringLiteral("open other.exe|-PASTE")},
         {QStringLiteral("save")}},
        {"www.shop.example/ID:", "", {QStringLiteral("save"), QStringLiteral("open www.shop.example/7|")}, {QStringLiteral("save")}},
        {"", "", {}, {}},
        {"", "a=1", {QStringLiteral("save"), QStringLiteral("assign a=1"), QStringLiteral("formulas"), QStringLiteral("lock")},
         {QStringLiteral("save")}},
    };
    for (const bool fails : {false, true}) {
        host.saveResult = fails ? saveFails : Status();
        for (const auto &row : rows) {
            press(QLatin1String(row.tag), QLatin1String(row.script));
            EXPECT_EQ(host.calls, fails ? row.callsWhenTheSaveFails : row.calls) << row.tag << row.script << fails;
        }
    }
    host.calls.clear();
    actions->buttonPressed(5); // no such button
    EXPECT_TRUE(host.calls.isEmpty());
}

TEST_F(PageActionsTest, ButtonScriptsRunLineByLine)
{
    host.vFiller = [](QString line) { return line.replace(QLatin1String("V1"), QLatin1String("42")); };
    press(QStringLiteral("END"), QStringLiteral("f1=V1\r\nIF F2>1 THEN f3=1\r\nselect * where total>V1\nif1=2"));
    EXPECT_EQ(host.calls, (QStringList{QStringLiteral("save"), QStringLiteral("assign f1=42"),
                                       QStringLiteral("if IF F2>1 THEN f3=1"), QStringLiteral("search select * where total>42"),
                                       QStringLiteral("if if1=2"), QStringLiteral("formulas"), QStringLiteral("lock")}));

    // A failing line shows "Error" and stops the script.
    host.failingLines << QStringLiteral("bad=");
    press(QString(), QStringLiteral("a=1\r\nbad=\r\nc=3"));
    EXPECT_EQ(host.calls, (QStringList{QStringLiteral("save"), QStringLiteral("assign a=1"), QStringLiteral("assign bad="),
                                       QStringLiteral("message Error")}));
}

TEST_F(PageActionsTest, PicturesShowTheirHintAndOpenTheirLink)
{
    EXPECT_FALSE(actions->picturePressed(0));
    EXPECT_EQ(page->TitleCaption[1], QStringLiteral("Our shop"));
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("open www.shop.example/7|")});
    host.calls.clear();
    // A per-record picture locks the record for the picture editor.
    EXPECT_TRUE(actions->picturePressed(1));
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("lock")});
    EXPECT_FALSE(actions->picturePressed(9));
    // Another user's lock keeps the editor closed; a lock that failed otherwise does not.
    host.lockResult = makeError(ErrorCode::PermissionDenied, QStringLiteral("held"));
    EXPECT_FALSE(actions->picturePressed(1));
    host.lockResult = makeError(ErrorCode::PathError, QStringLiteral("disk"));
    EXPECT_TRUE(actions->picturePressed(1));
}

} // namespace
