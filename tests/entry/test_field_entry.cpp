// Typing into text fields, combos, check fields and notes, and leaving them, through FieldEntry
// with a recording host. The locale is pinned to en_US.

#include "support/RecordingEntryHost.h"

#include "core/FixedClock.h"
#include "entry/FieldEntry.h"
#include "formula/DateNumber.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ff;
using ff::testsupport::RecordingEntryHost;

namespace {

class FieldEntryTest : public ::testing::Test {
protected:
    // Fields: 1 text with proper case, 2 money, 3 whole number, 4 long date, 5 short date shown
    // 30 days on, 6 "hh:nn:ss" time, 7 short time, 8 plain number, 9 general date, 10 medium time.
    void SetUp() override
    {
        const int types[] = {0, 0, 2, 5, 9, 7, 12, 10, 1, 6, 11};
        design.Fields.resize(11);
        for (int i = 1; i <= 10; ++i)
            design.Fields[static_cast<size_t>(i)].FieldType = static_cast<uint8_t>(types[i]);
        design.FieldCount = 10;
        design.Fields[1].FieldCase = 2;
        design.Fields[1].FieldHint = QStringLiteral("Customer name");
        design.Fields[5].FieldDisplay = 30;
        design.Combos.resize(3);
        design.Combos[2].ComboFormat = 2;
        design.Combos[2].ComboHint = QStringLiteral("Amount");
        design.ComboCount = 2;
        design.Checks.resize(2);
        design.CheckCount = 1;
        design.Notes.resize(2);
        design.NoteCount = 1;
        design.Titles.resize(6);
        design.TitleCount = 5;
        design.SelectiveText[1] = QStringLiteral("2");
        design.SelectiveText[2] = QStringLiteral("*yyyy-mm-dd hh:nn");
        design.SelectiveText[3] = QStringLiteral("Paid");
        design.SelectiveText[4] = QStringLiteral("0");
        design.SelectiveText[5] = QStringLiteral("99");
        page = std::make_unique<Page>(design);
        entry = std::make_unique<FieldEntry>(*page, host, QLocale(QLocale::English, QLocale::UnitedStates), clock);
    }

    QString typed(int index, const QString &keys)
    {
        ff::testsupport::typeInto(*entry, *page, index, keys);
        return page->FieldText[index];
    }

    Design design;
    std::unique_ptr<Page> page;
    RecordingEntryHost host;
    std::unique_ptr<FieldEntry> entry;
    FixedClock clock{QDateTime(QDate(2023, 3, 15), QTime(14, 5))};
};

TEST_F(FieldEntryTest, NumberFieldsEvaluateWhatWasTypedOnLeaving)
{
    EXPECT_EQ(typed(2, QStringLiteral("2*(3+4)")), QStringLiteral("14.00"));
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 1);
    EXPECT_FALSE(entry->state().changed);
    // The user's minus subtracts; a leading one gives a negative number.
    EXPECT_EQ(typed(2, QStringLiteral("100-5")), QStringLiteral("95.00"));
    EXPECT_EQ(typed(2, QStringLiteral("-5")), QStringLiteral("-5.00"));
    EXPECT_EQ(typed(2, QStringLiteral("1,234.5")), QStringLiteral("1,234.50"));
    // A stray ")" abandons the expression, which then reads 0.
    EXPECT_EQ(typed(2, QStringLiteral(")5")), QStringLiteral("0.00"));
    // Whole numbers drop the typed point and round the result.
    EXPECT_EQ(typed(3, QStringLiteral("2.6")), QStringLiteral("26"));
    EXPECT_EQ(typed(3, QStringLiteral("7/2")), QStringLiteral("4"));
    EXPECT_EQ(typed(3, QStringLiteral("1000*3")), QStringLiteral("3,000"));
    EXPECT_EQ(typed(8, QStringLiteral("1/4")), QStringLiteral("0.25"));
}

TEST_F(FieldEntryTest, LeavingAnUnchangedFieldDoesNothing)
{
    page->FieldText[2] = QStringLiteral("3+4");
    entry->fieldGotFocus(2);
    EXPECT_FALSE(entry->fieldLostFocus(2));
    EXPECT_EQ(page->FieldText[2], QStringLiteral("3+4"));
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 0);
    // An emptied number field stays empty but still runs the formulas.
    entry->fieldGotFocus(2);
    page->FieldText[2].clear();
    EXPECT_TRUE(entry->fieldLostFocus(2));
    EXPECT_EQ(page->FieldText[2], QString());
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 1);
}

TEST_F(FieldEntryTest, DatesAreReadAndShownInTheFieldsForm)
{
    EXPECT_EQ(typed(4, QStringLiteral("1/2/03")), QStringLiteral("Thursday, January 2, 2003"));
    EXPECT_EQ(page->FieldDate[4], NumberFromDate(QDate(2003, 1, 2)));
    // FieldDisplay days are added to what was typed.
    EXPECT_EQ(typed(5, QStringLiteral("1/2/03")), QStringLiteral("2/1/2003"));
    EXPECT_EQ(page->FieldDate[5], NumberFromDate(QDate(2003, 2, 1)));
    // A text that is no date stays as typed and the date is kept.
    EXPECT_EQ(typed(4, QStringLiteral("soon")), QStringLiteral("soon"));
    EXPECT_EQ(page->FieldDate[4], NumberFromDate(QDate(2003, 1, 2)));
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 3);
    // An empty text clears the date.
    EXPECT_EQ(typed(4, QString()), QString());
    EXPECT_EQ(page->FieldDate[4], 0.0);
    // The general date keeps a typed time.
    EXPECT_EQ(typed(9, QStringLiteral("3/15/2023 14:30")), QStringLiteral("3/15/2023 2:30:00 PM"));
    // The medium time follows the date rules, not the fixed digit places.
    EXPECT_EQ(typed(10, QStringLiteral("23:05")), QStringLiteral("11:05 PM"));
    // Midnight reads as 0, which leaves the field's earlier time in place.
    EXPECT_EQ(typed(10, QStringLiteral("0:00")), QStringLiteral("11:05 PM"));
}

TEST_F(FieldEntryTest, DatesAreReadInTheOrderOfTheEntrysLocale)
{
    const struct {
        QLocale locale;
        const char *typed;
        QDate date;
    } rows[] = {
        // The C locale of servers and minimal installs reads as en_US: month first.
        {QLocale::c(), "12/10/1815", QDate(1815, 12, 10)},
        {QLocale(QLocale::German, QLocale::Germany), "1.2.03", QDate(2003, 2, 1)},
        {QLocale(QLocale::English, QLocale::UnitedKingdom), "12/10/1815", QDate(1815, 10, 12)},
    };
    for (const auto &row : rows) {
        FieldEntry local(*page, host, row.locale, clock);
        ff::testsupport::typeInto(local, *page, 4, QString::fromUtf8(row.typed));
        EXPECT_EQ(page->FieldDate[4], NumberFromDate(row.date)) << row.typed;
        // Shown again as the locale's long date.
        EXPECT_EQ(page->FieldText[4], row.locale.toString(row.date, QLocale::LongFormat)) << row.typed;
    }
}

TEST_F(FieldEntryTest, TimesAreDigitsInFixedPlaces)
{
    const auto seconds = [](int h, int m, int s) { return (h * 3600 + m * 60 + s) / 86400.0; };
    EXPECT_EQ(typed(6, QStringLiteral("12:34:56")), QStringLiteral("12:34:56"));
    EXPECT_DOUBLE_EQ(page->FieldDate[6], seconds(12, 34, 56));
    // The places are those of "hh:nn:ss": without the colons the minutes start one digit late.
    EXPECT_EQ(typed(6, QStringLiteral("123456")), QStringLiteral("12:45:56"));
    EXPECT_EQ(typed(6, QStringLiteral("9:5:7")), QStringLiteral("00:09:00")); // ":7" reads 0, "9:" is 9 minutes
    // Three to five characters: minutes and seconds.
    EXPECT_EQ(typed(6, QStringLiteral("1234")), QStringLiteral("00:12:34"));
    EXPECT_EQ(typed(6, QStringLiteral("5")), QStringLiteral("00:00:05"));
    // The short time field shows minutes and seconds: hours are kept in the date but not shown.
    EXPECT_EQ(typed(7, QStringLiteral("12:34")), QStringLiteral("12:34"));
    EXPECT_EQ(typed(7, QStringLiteral("12:34:56")), QStringLiteral("34:56"));
    EXPECT_DOUBLE_EQ(page->FieldDate[7], seconds(12, 34, 56));
}

TEST_F(FieldEntryTest, ReadOnlyLockedAndHeldRecordsDropKeys)
{
    host.readOnlyFlag = true;
    EXPECT_TRUE(entry->fieldKeyPress(1, QLatin1Char('a')).isNull());
    EXPECT_TRUE(entry->fieldKeyPress(1, QChar(17)).isNull()); // Ctrl+Q too
    EXPECT_TRUE(entry->noteKeyPress(1, QLatin1Char('a')).isNull());
    EXPECT_TRUE(entry->comboKeyPress(1, QLatin1Char('a')).isNull());
    EXPECT_FALSE(entry->state().changed);
    EXPECT_EQ(host.count(QStringLiteral("lock")), 0);

    host.readOnlyFlag = false;
    page->FieldLocked[1] = true; // a write-once field of a stored record
    EXPECT_TRUE(entry->fieldKeyPress(1, QLatin1Char('a')).isNull());
    page->FieldLocked[1] = false;

    // The first key locks the record and raises the change flag.
    EXPECT_EQ(entry->fieldKeyPress(1, QLatin1Char('a')), QLatin1Char('a'));
    EXPECT_TRUE(entry->state().changed);
    EXPECT_EQ(host.count(QStringLiteral("lock")), 1);

    // Another user holds the record: the store shows it again and the key is lost.
    host.lockResult = makeError(ErrorCode::PermissionDenied, QStringLiteral("held"));
    host.onLockFailure = [this] { page->FieldText[1] = QStringLiteral("stored"); };
    EXPECT_TRUE(entry->fieldKeyPress(1, QLatin1Char('b')).isNull());
    EXPECT_EQ(page->FieldText[1], QStringLiteral("stored"));
    // Any other failure of the lock lets the key through.
    host.lockResult = makeError(ErrorCode::PathError, QStringLiteral("disk"));
    EXPECT_EQ(entry->fieldKeyPress(1, QLatin1Char('b')), QLatin1Char('b'));
}

TEST_F(FieldEntryTest, KeyUpPutsPlainTextInItsCase)
{
    const auto result = entry->fieldKeyUp(1, QStringLiteral("john smith"), 4);
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->text, QStringLiteral("John Smith"));
    EXPECT_EQ(result->caret, 4);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("John Smith"));
    // Only format 0 has a case rule.
    design.Fields[2].FieldCase = 1;
    EXPECT_FALSE(entry->fieldKeyUp(2, QStringLiteral("abc"), 0).has_value());
}

TEST_F(FieldEntryTest, FunctionKeysFillTheFocusedFieldOrCombo)
{
    page->FieldText[2] = QStringLiteral("12.50");
    using A = FieldEntry::KeyDown::Action;
    const auto press = [this](int field, int key) { return entry->fieldKeyDown(field, key, Qt::NoModifier).action; };
    EXPECT_EQ(press(1, Qt::Key_F1), A::Filled);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("12.50")); // "2" names field 2
    press(1, Qt::Key_F2);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("2023-03-15 14:05"));
    press(1, Qt::Key_F3);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("Paid"));
    press(1, Qt::Key_F4);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("0")); // reads as 0: no field, the text itself
    press(1, Qt::Key_F5);
    EXPECT_EQ(page->FieldText[1], QString()); // a field the design has not got
    EXPECT_GE(host.count(QStringLiteral("lock")), 1);

    // A key with a shift state is left to the system.
    page->FieldText[1] = QStringLiteral("x");
    EXPECT_EQ(entry->fieldKeyDown(1, Qt::Key_F3, Qt::ShiftModifier).action, A::LeaveToSystem);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("x"));
    // Read-only: nothing is filled.
    host.readOnlyFlag = true;
    EXPECT_EQ(press(1, Qt::Key_F3), A::None);
    EXPECT_EQ(page->FieldText[1], QStringLiteral("x"));
    host.readOnlyFlag = false;

    EXPECT_EQ(entry->comboKeyDown(1, Qt::Key_F3, Qt::NoModifier).action, A::Filled);
    EXPECT_EQ(page->ComboText[1], QStringLiteral("Paid"));

    const FieldEntry::KeyDown up = entry->fieldKeyDown(1, Qt::Key_Up, Qt::NoModifier);
    EXPECT_EQ(up.action, A::Scroll);
    EXPECT_EQ(up.scrollBy, -10);
    EXPECT_EQ(entry->fieldKeyDown(1, Qt::Key_Down, Qt::NoModifier).scrollBy, 10);
    EXPECT_EQ(press(1, Qt::Key_A), A::None);
}

TEST_F(FieldEntryTest, GettingTheFocusNotesTheFieldAndSetsUpTheAction)
{
    // Before any element had the focus, the first field stands noted; a design without fields
    // notes none.
    EXPECT_EQ(entry->state().focusKind, FocusKind::Field);
    EXPECT_EQ(entry->state().focusIndex, 1);
    Design empty;
    Page emptyPage(empty);
    EXPECT_EQ(FieldEntry(emptyPage, host).state().focusIndex, 0);

    page->FieldText[1] = QStringLiteral("www.example.org");
    const FieldAction action = entry->fieldGotFocus(1);
    EXPECT_EQ(action.kind, FieldAction::Kind::Internet);
    EXPECT_EQ(entry->state().focusKind, FocusKind::Field);
    EXPECT_EQ(entry->state().focusIndex, 1);
    EXPECT_EQ(page->TitleCaption[FieldEntry::kStatusLabel], QStringLiteral("Customer name"));
    EXPECT_EQ(entry->fieldGotFocus(6).kind, FieldAction::Kind::StopWatch);
    EXPECT_FALSE(entry->fieldGotFocus(2).visible());

    EXPECT_TRUE(entry->fieldWantsDatePicker(4));
    EXPECT_TRUE(entry->fieldWantsDatePicker(6));
    EXPECT_FALSE(entry->fieldWantsDatePicker(2));
    EXPECT_FALSE(entry->fieldWantsDatePicker(1));
}

TEST_F(FieldEntryTest, CombosEvaluateByTheirFormatOnLeaving)
{
    entry->comboGotFocus(2);
    EXPECT_EQ(entry->state().focusKind, FocusKind::Combo);
    EXPECT_EQ(page->TitleCaption[FieldEntry::kStatusLabel], QStringLiteral("Amount"));
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 1);
    // The number mask holds for a number combo only.
    EXPECT_TRUE(entry->comboKeyPress(2, QLatin1Char('x')).isNull());
    EXPECT_EQ(entry->comboKeyPress(1, QLatin1Char('x')), QLatin1Char('x'));

    page->ComboText[2] = QStringLiteral("100-5");
    page->ComboText[1] = QStringLiteral("100-5");
    entry->comboLostFocus(2);
    entry->comboLostFocus(1);
    EXPECT_EQ(page->ComboText[2], QStringLiteral("95.00"));
    EXPECT_EQ(page->ComboText[1], QStringLiteral("100-5"));
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 3);

    EXPECT_TRUE(entry->comboChosen(1, QStringLiteral("Blue")));
    EXPECT_EQ(page->ComboText[1], QStringLiteral("Blue"));
    page->ComboLocked[1] = true;
    EXPECT_FALSE(entry->comboChosen(1, QStringLiteral("Red")));
    EXPECT_EQ(page->ComboText[1], QStringLiteral("Blue"));
}

TEST_F(FieldEntryTest, CheckFieldsToggleWithTheLeftButtonOnly)
{
    page->CheckValue[1] = 0;
    EXPECT_FALSE(entry->checkMouseDown(1, Qt::RightButton));
    EXPECT_EQ(page->CheckValue[1], 0);
    EXPECT_EQ(entry->state().focusKind, FocusKind::Check);
    EXPECT_EQ(host.count(QStringLiteral("formulas")), 0);
    EXPECT_TRUE(entry->selection().active()); // the right button picked it for a find

    // The pick does not hold the check fields: the left button toggles them all the same.
    EXPECT_TRUE(entry->checkMouseDown(1, Qt::LeftButton));
    EXPECT_EQ(page->CheckValue[1], 1);
    EXPECT_EQ(host.calls, (QStringList{QStringLiteral("lock"), QStringLiteral("formulas")}));
    EXPECT_TRUE(entry->checkKeyDown(1, Qt::Key_Space));
    EXPECT_EQ(page->CheckValue[1], 0);
    EXPECT_FALSE(entry->checkKeyDown(1, Qt::Key_A));

    page->CheckLocked[0] = true;
    EXPECT_FALSE(entry->checkMouseDown(0, Qt::LeftButton));
    page->CheckLocked[0] = false;
    host.readOnlyFlag = true;
    EXPECT_FALSE(entry->checkMouseDown(0, Qt::LeftButton));
    EXPECT_EQ(page->CheckValue[0], 0);
}

TEST_F(FieldEntryTest, NotesTakeLineBreaksAndSpecialCharacters)
{
    entry->noteGotFocus(1);
    EXPECT_EQ(entry->state().focusKind, FocusKind::Note);
    EXPECT_EQ(entry->noteKeyPress(1, QChar(13)), QChar(13));
    page->NoteLocked[1] = true;
    EXPECT_TRUE(entry->noteKeyPress(1, QLatin1Char('a')).isNull());
}

TEST_F(FieldEntryTest, RightButtonPicksFieldsForAFindOverSeveral)
{
    page->FieldText[1] = QStringLiteral("Smith");
    page->ComboText[1] = QStringLiteral("Boston");
    page->CheckValue[0] = 1;
    entry->pickForSearch(FocusKind::Field, 1);
    entry->checkMouseDown(0, Qt::RightButton);
    entry->comboGotFocus(1); // a combo that gets the focus during a selection joins it
    const MultiFieldSelection &selection = entry->selection();
    EXPECT_EQ(selection.count(), 3);
    EXPECT_EQ(selection.searchText(), QStringLiteral("Smith+1+Boston"));
    ASSERT_EQ(selection.fields().size(), 3);
    EXPECT_EQ(selection.fields()[1].kind, FocusKind::Check);
    EXPECT_EQ(selection.fields()[2].kind, FocusKind::Combo);
    EXPECT_EQ(selection.fields()[2].index, 1);
    // A left press while the right button is still down, building the selection, does not toggle;
    // one after it does, and the picks stay for the search.
    EXPECT_FALSE(entry->checkMouseDown(0, Qt::LeftButton, Qt::LeftButton | Qt::RightButton));
    EXPECT_EQ(page->CheckValue[0], 1);
    EXPECT_TRUE(entry->checkMouseDown(0, Qt::LeftButton, Qt::LeftButton));
    EXPECT_EQ(page->CheckValue[0], 0);
    EXPECT_EQ(selection.count(), 3);
    entry->selection().clear();
    EXPECT_FALSE(entry->selection().active());
    EXPECT_TRUE(entry->selection().searchText().isEmpty());
}

} // namespace
