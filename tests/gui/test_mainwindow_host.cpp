// The main window as a person uses it: typing into fields of each format, moving through
// records, new records with their defaults, formulas following the typing, a record another
// process holds, and closing with and without saving.

#include "core/FixedClock.h"
#include "gui/MainWindowHost.h"
#include "store/Database.h"
#include "WindowDriver.h"
#include "support/LockProbe.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;
using namespace ff::testsupport;

namespace {

struct Opened {
    QTemporaryDir dir;
    FixedClock clock{QDateTime(QDate(2024, 2, 29), QTime(9, 15))};
    std::unique_ptr<gui::MainWindow> window;
};

std::unique_ptr<Opened> openExample(const QString &name)
{
    auto o = std::make_unique<Opened>();
    o->window = openActive(buildExample(name, o->dir.path()).path, {}, o->clock);
    return o;
}

// The contacts data file in `dir` as the next start reads it; null when it does not open.
std::unique_ptr<Database> reopened(const QTemporaryDir &dir)
{
    const QString image = dir.filePath(QStringLiteral("contacts.exe"));
    auto db = std::make_unique<Database>(loadImage(image).design, ParseCommandLine(image, {}));
    db->DataFileName = dir.filePath(QStringLiteral("Contacts.dat"));
    return db->OpenDatabase(OpenMode::Open).ok() ? std::move(db) : nullptr;
}

// Gives the field the focus, types, and leaves it for `next`.
void typeInto(gui::MainWindow &w, int i, const QString &keys, int next)
{
    QLineEdit *edit = field(w, i);
    edit->setFocus(Qt::TabFocusReason);
    QVERIFY(edit->hasFocus());
    QTest::keyClicks(edit, keys);
    field(w, next)->setFocus(Qt::TabFocusReason);
}

} // namespace

class MainWindowHostTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void typedTextIsConvertedOnLeaving()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        typeInto(w, 8, QStringLiteral("2*(3+4)"), 1); // money
        QCOMPARE(field(w, 8)->text(), QStringLiteral("14.00"));
        typeInto(w, 9, QStringLiteral("1.5"), 1); // whole number: "." never gets in
        QCOMPARE(field(w, 9)->text(), QStringLiteral("15"));
        typeInto(w, 7, QStringLiteral("1/2/03"), 1); // long date
        QCOMPARE(field(w, 7)->text(), QStringLiteral("Thursday, January 2, 2003"));
        typeInto(w, 1, QStringLiteral("ada lovelace"), 2); // proper case as typed
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Ada Lovelace"));
        // Select all and type over it: the record changes like any typing.
        field(w, 1)->setFocus();
        QTest::keyClick(field(w, 1), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field(w, 1), QStringLiteral("grace"));
        field(w, 2)->setFocus();
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Grace"));
        // The formula of "Available" follows: credit less balance.
        QCOMPARE(field(w, 11)->text(), QStringLiteral("14.00"));
        typeInto(w, 10, QStringLiteral("4.5"), 1);
        QCOMPARE(field(w, 11)->text(), QStringLiteral("9.50"));
        // Ctrl+Q types a cent sign (no shortcut of the window takes it); Escape a division sign.
        field(w, 3)->setFocus();
        QTest::keyClick(field(w, 3), Qt::Key_Q, Qt::ControlModifier);
        QTest::keyClick(field(w, 3), Qt::Key_Escape);
        QCOMPARE(field(w, 3)->text(), QStringLiteral("¢÷"));
        QVERIFY(w.isVisible());
    }

    // The status line's clock shows the window's clock and follows it on the next tick; the date
    // the calendar opens on is the clock's today.
    // The contacts example shows the clock with ClockFormat 2: the date as dd-mm-yyyy.
    void theClockIsTheWindowsClock()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        QLabel *clock = nullptr;
        for (QLabel *label : w.findChildren<QLabel *>())
            if (label->accessibleName() == QLatin1String("Clock"))
                clock = label;
        QVERIFY(clock);
        QVERIFY2(clock->text().contains(QLatin1String("29-02-2024")), qPrintable(clock->text()));
        QVERIFY2(clock->text().contains(QLatin1String("9:15")), qPrintable(clock->text()));
        o->clock.advance(qint64(15) * 3600 * 1000); // past midnight
        QTRY_VERIFY2(clock->text().contains(QLatin1String("01-03-2024")), qPrintable(clock->text()));
        QVERIFY2(clock->text().contains(QLatin1String("12:15")), qPrintable(clock->text()));
    }

    void navigationAndNewRecords()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        QCOMPARE(s.RecordCount(), 1);
        typeInto(w, 2, QStringLiteral("first"), 1);
        w.newButton()->click();
        w.newButton()->click();
        QCOMPARE(s.RecordCount(), 3);
        QCOMPARE(w.recordBox()->text(), QStringLiteral("3"));
        // A new record starts with its defaults: today in the short-date field, the birthday empty
        // (it asks to start empty), the newsletter box ticked.
        QCOMPARE(field(w, 13)->text(), QStringLiteral("2/29/2024"));
        QVERIFY(field(w, 7)->text().isEmpty());
        QVERIFY(qobject_cast<QAbstractButton *>(w.canvas()->checkWidget(0))->isChecked());

        w.navigationButton(3)->click(); // one on, at the last: stays
        QCOMPARE(s.CurrentRecord(), 3);
        w.navigationButton(0)->click(); // first
        QCOMPARE(s.CurrentRecord(), 1);
        QCOMPARE(field(w, 2)->text(), QStringLiteral("First"));
        w.navigationButton(2)->click(); // one back, at the first: stays
        QCOMPARE(s.CurrentRecord(), 1);
        w.navigationButton(4)->click(); // ten on: not within the count, stays
        QCOMPARE(s.CurrentRecord(), 1);
        w.navigationButton(5)->click(); // last
        QCOMPARE(s.CurrentRecord(), 3);
        w.recordBox()->setText(QStringLiteral("2"));
        QTest::keyClick(w.recordBox(), Qt::Key_Return);
        QCOMPARE(s.CurrentRecord(), 2);
        QVERIFY(w.statusText().contains(QStringLiteral("record 2 of 3")));
    }

    void invoiceTotalsFollowTheTyping()
    {
        auto o = openExample(QStringLiteral("invoice"));
        gui::MainWindow &w = *o->window;
        typeInto(w, 6, QStringLiteral("2"), 7);
        typeInto(w, 7, QStringLiteral("3.5"), 10);
        QCOMPARE(field(w, 8)->text(), QStringLiteral("7.00"));
        typeInto(w, 10, QStringLiteral("1"), 11);
        typeInto(w, 11, QStringLiteral("1000"), 22);
        QCOMPARE(field(w, 12)->text(), QStringLiteral("1,000.00"));
        typeInto(w, 22, QStringLiteral("10"), 1);
        QCOMPARE(field(w, 21)->text(), QStringLiteral("1,007.00"));
        QCOMPARE(field(w, 23)->text(), QStringLiteral("100.70"));
        QCOMPARE(field(w, 24)->text(), QStringLiteral("1,107.70"));
        QCOMPARE(field(w, 25)->text(), QStringLiteral("One Thousand One Hundred Seven Dollars and Seventy Cents"));
    }

    void aRecordHeldByAnotherProcessSnapsBack()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        typeInto(w, 1, QStringLiteral("one"), 2);
        w.newButton()->click();
        typeInto(w, 1, QStringLiteral("two"), 2);
        w.navigationButton(0)->click(); // saves record 2, unlocks it
        const QString data = o->dir.filePath(QStringLiteral("Contacts.dat"));

        const int length = w.database().store().layout().RecordLength;
        LockProbe holder;
        QVERIFY(holder.hold(recordPlace(data, 2, length, defaultRecordsPerPart(length))));

        w.navigationButton(5)->click();
        QCOMPARE(w.database().store().CurrentRecord(), 2);
        field(w, 1)->setFocus();
        QTest::keyClicks(field(w, 1), QStringLiteral("XYZ"));
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Two")); // every key snapped back
        QVERIFY(!w.database().store().RecordDirty());
        // Record 1 has no lock: both may change it.
        w.navigationButton(0)->click();
        typeInto(w, 1, QStringLiteral("!"), 2);
        QCOMPARE(field(w, 1)->text(), QStringLiteral("One!"));

        QVERIFY(holder.release());
        w.navigationButton(5)->click();
        typeInto(w, 3, QStringLiteral("acme"), 2);
        QCOMPARE(field(w, 3)->text(), QStringLiteral("acme"));
    }

    void closingSavesAndEndDoesNot()
    {
        QTemporaryDir keep;
        QString image;
        {
            auto o = openExample(QStringLiteral("contacts"));
            gui::MainWindow &w = *o->window;
            typeInto(w, 1, QStringLiteral("kept"), 2);
            field(w, 3)->setFocus();
            QTest::keyClicks(field(w, 3), QStringLiteral("typed, focus still here"));
            w.close(); // saves the dirty record, the field being typed in included
            QVERIFY(QFile::exists(o->dir.filePath(QStringLiteral("contacts.cfg"))));
            const auto db = reopened(o->dir);
            QVERIFY(db);
            QCOMPARE(db->page().FieldText[1], QStringLiteral("Kept"));
            QCOMPARE(db->page().FieldText[3], QStringLiteral("typed, focus still here"));
        }
        {
            auto o = openExample(QStringLiteral("contacts"));
            gui::MainWindow &w = *o->window;
            typeInto(w, 1, QStringLiteral("lost"), 2);
            // The "END" button on the second page ends at once: nothing saved, no per-user file.
            w.pageTabs()->setCurrentIndex(1);
            QPushButton *end = nullptr;
            for (int i = 0; i < int(w.design().Buttons.size()); ++i)
                if (w.design().Buttons[size_t(i)].Tag == QLatin1String("END"))
                    end = qobject_cast<QPushButton *>(w.canvas()->buttonWidget(i));
            QVERIFY(end && end->isVisible());
            end->click();
            QVERIFY(!w.isVisible());
            QVERIFY(!QFile::exists(o->dir.filePath(QStringLiteral("contacts.cfg"))));
            w.database().store().close();
            const auto db = reopened(o->dir);
            QVERIFY(db);
            QCOMPARE(db->page().FieldText[1], QString());
        }
    }

    void aRecordThatCannotBeSavedKeepsTheWindowOpen()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        typeInto(w, 1, QStringLiteral("kept"), 2);
        // Visits beyond a whole number's range: the record cannot be packed, so not saved.
        typeInto(w, 9, QStringLiteral("9999999999"), 1);
        MessageCatcher messages;
        w.close();
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts.first().contains(QStringLiteral("could not be saved")), qPrintable(messages.texts.first()));
        QVERIFY(w.isVisible());
        QVERIFY(w.database().store().RecordDirty());
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Kept"));
        QVERIFY(!QFile::exists(o->dir.filePath(QStringLiteral("contacts.cfg"))));

        // Corrected, the record is saved and the window closes.
        field(w, 9)->setFocus();
        QTest::keyClick(field(w, 9), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field(w, 9), QStringLiteral("12"));
        w.close();
        QVERIFY(!w.isVisible());
        QCOMPARE(messages.texts.size(), 1);
        const auto db = reopened(o->dir);
        QVERIFY(db);
        QCOMPARE(db->page().FieldText[1], QStringLiteral("Kept"));
        QCOMPARE(db->page().FieldText[9], QStringLiteral("12"));
    }
};

QTEST_MAIN(MainWindowHostTest)
#include "test_mainwindow_host.moc"
