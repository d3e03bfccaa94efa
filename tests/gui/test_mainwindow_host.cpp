// The main window as a person uses it: typing into fields of each format, F-keys, moving through
// records, new records with their defaults, formulas following the typing, a record another
// process holds, and closing with and without saving.

#include "ExampleImage.h"
#include "gui/MainWindowHost.h"
#include "gui/MainWindow.h"
#include "gui/PageCanvas.h"
#include "store/Database.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;

namespace {

struct Opened {
    QTemporaryDir dir;
    std::unique_ptr<gui::MainWindow> window;
};

std::unique_ptr<Opened> openExample(const QString &name)
{
    auto o = std::make_unique<Opened>();
    const auto built = fftest::buildExample(name, o->dir.path());
    o->window = std::make_unique<gui::MainWindow>(ParseCommandLine(built.path, {}), fftest::loadImage(built.path));
    o->window->show();
    o->window->activateWindow();
    if (!QTest::qWaitForWindowActive(o->window.get()))
        qWarning("window not active");
    return o;
}

QLineEdit *field(gui::MainWindow &w, int i) { return qobject_cast<QLineEdit *>(w.canvas()->fieldWidget(i)); }

// Gives the field the focus, types, and leaves it for `next`.
void typeInto(gui::MainWindow &w, int i, const QString &keys, int next)
{
    QLineEdit *edit = field(w, i);
    edit->setFocus(Qt::TabFocusReason);
    QVERIFY(edit->hasFocus());
    QTest::keyClicks(edit, keys);
    field(w, next)->setFocus(Qt::TabFocusReason);
}

QString binary(const QString &name)
{
    return QDir(QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR"))).filePath(QStringLiteral("bin/") + name);
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
        // F1 fills the focused field with the design's first selective text.
        field(w, 3)->setFocus();
        QTest::keyClick(field(w, 3), Qt::Key_F1);
        QCOMPARE(field(w, 3)->text(), QStringLiteral("Yes")); // the example's text for F1
        // Ctrl+Q types a cent sign (no shortcut of the window takes it); Escape a division sign.
        QTest::keyClick(field(w, 3), Qt::Key_Q, Qt::ControlModifier);
        QTest::keyClick(field(w, 3), Qt::Key_Escape);
        QCOMPARE(field(w, 3)->text(), QStringLiteral("Yes¢÷"));
        QVERIFY(w.isVisible());
    }

    void navigationAndNewRecords()
    {
        auto o = openExample(QStringLiteral("contacts"));
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        QCOMPARE(s.RecordCount, 1);
        typeInto(w, 2, QStringLiteral("first"), 1);
        w.newButton()->click();
        w.newButton()->click();
        QCOMPARE(s.RecordCount, 3);
        QCOMPARE(w.recordBox()->text(), QStringLiteral("3"));
        // A new record starts with its defaults: today in the short-date field, the birthday empty
        // (it asks to start empty), the newsletter box ticked.
        QCOMPARE(field(w, 13)->text(), QDate::currentDate().toString(QStringLiteral("M/d/yyyy")));
        QVERIFY(field(w, 7)->text().isEmpty());
        QVERIFY(qobject_cast<QAbstractButton *>(w.canvas()->checkWidget(0))->isChecked());

        w.navigationButton(3)->click(); // one on, at the last: stays
        QCOMPARE(s.CurrentRecord, 3);
        w.navigationButton(0)->click(); // first
        QCOMPARE(s.CurrentRecord, 1);
        QCOMPARE(field(w, 2)->text(), QStringLiteral("First"));
        w.navigationButton(2)->click(); // one back, at the first: stays
        QCOMPARE(s.CurrentRecord, 1);
        w.navigationButton(4)->click(); // ten on: not within the count, stays
        QCOMPARE(s.CurrentRecord, 1);
        w.navigationButton(5)->click(); // last
        QCOMPARE(s.CurrentRecord, 3);
        w.recordBox()->setText(QStringLiteral("2"));
        QTest::keyClick(w.recordBox(), Qt::Key_Return);
        QCOMPARE(s.CurrentRecord, 2);
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

        QProcess holder;
        holder.start(binary(QStringLiteral("ff_lock_holder")),
                     {o->dir.filePath(QStringLiteral("contacts.exe")), data, QStringLiteral("2")});
        QVERIFY(holder.waitForReadyRead(10000));
        QCOMPARE(holder.readLine().trimmed(), QByteArray("locked"));

        w.navigationButton(5)->click();
        QCOMPARE(w.database().store().CurrentRecord, 2);
        field(w, 1)->setFocus();
        QTest::keyClicks(field(w, 1), QStringLiteral("XYZ"));
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Two")); // every key snapped back
        QVERIFY(!w.database().store().RecordDirty);
        // Record 1 has no lock: both may change it.
        w.navigationButton(0)->click();
        typeInto(w, 1, QStringLiteral("!"), 2);
        QCOMPARE(field(w, 1)->text(), QStringLiteral("One!"));

        holder.write("\n");
        QVERIFY(holder.waitForFinished(10000));
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
            const QString data = o->dir.filePath(QStringLiteral("Contacts.dat"));
            QVERIFY(QFile::exists(o->dir.filePath(QStringLiteral("contacts.cfg"))));
            Database db(fftest::loadImage(o->dir.filePath(QStringLiteral("contacts.exe"))).design,
                        ParseCommandLine(o->dir.filePath(QStringLiteral("contacts.exe")), {}));
            db.DataFileName = data;
            QVERIFY(db.OpenDatabase(0).ok());
            QCOMPARE(db.page().FieldText[1], QStringLiteral("Kept"));
            QCOMPARE(db.page().FieldText[3], QStringLiteral("typed, focus still here"));
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
            Database db(fftest::loadImage(o->dir.filePath(QStringLiteral("contacts.exe"))).design,
                        ParseCommandLine(o->dir.filePath(QStringLiteral("contacts.exe")), {}));
            db.DataFileName = o->dir.filePath(QStringLiteral("Contacts.dat"));
            QVERIFY(db.OpenDatabase(0).ok());
            QCOMPARE(db.page().FieldText[1], QString());
        }
    }
};

QTEST_MAIN(MainWindowHostTest)
#include "test_mainwindow_host.moc"
