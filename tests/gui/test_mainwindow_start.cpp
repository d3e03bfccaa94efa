// Opening the main window over the contacts example as a user starts it: the auto-run button,
// file errors while opening the data, a read-only data file, and the stop watch of a time field
// whose time is saved with its record.

#include "WindowDriver.h"
#include "store/Database.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr int kName = 1;     // first name, a text field
constexpr int kCompany = 3;  // a text field
constexpr int kDuration = 12; // a long time field: its action is the stop watch

void typeInto(gui::MainWindow &w, int i, const QString &keys)
{
    field(w, i)->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(QApplication::focusWidget(), keys);
    field(w, kCompany == i ? kName : kCompany)->setFocus(Qt::TabFocusReason);
}

// A data file beside the image whose record 1 has the name "Stored" and the company "acme".
QString imageWithOneRecord(const QTemporaryDir &dir)
{
    const QString image = testsupport::buildExample(QStringLiteral("contacts"), dir.path()).path;
    auto w = openActive(image);
    typeInto(*w, kName, QStringLiteral("stored"));
    typeInto(*w, kCompany, QStringLiteral("acme"));
    w->close();
    return image;
}

} // namespace

class MainWindowStartTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void autoRunButtonFiresBeforeTheFirstRecordShows()
    {
        QTemporaryDir dir;
        imageWithOneRecord(dir);
        // The same design with AutoRunButton 1 and a first button whose script fills the company.
        const QString image = testsupport::buildExample(QStringLiteral("contacts"), dir.path(), [](Design &d) {
            d.AutoRunButton = 1;
            d.Buttons[0].Tag.clear();
            d.Buttons[0].ButtonScript = QStringLiteral("f3=7");
        }).path;
        auto w = openActive(image);
        // The button ran ahead of the record: record 1 then showed as stored, unchanged.
        QCOMPARE(w->database().store().CurrentRecord(), 1);
        QCOMPARE(field(*w, kName)->text(), QStringLiteral("Stored"));
        QCOMPARE(field(*w, kCompany)->text(), QStringLiteral("acme"));
        QVERIFY(!w->database().store().RecordDirty());
        // A press by the user runs the same script on the record shown.
        qobject_cast<QPushButton *>(w->canvas()->buttonWidget(0))->click();
        QCOMPARE(field(*w, kCompany)->text(), QStringLiteral("7"));
    }

    void fileErrorsShowTheMessageAndTheOpeningGoesOn()
    {
        QTemporaryDir dir;
        const QString image = imageWithOneRecord(dir);
        // A further part that cannot be opened (a folder of that name): error 75 on counting.
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Contacts0001")));
        MessageCatcher messages;
        auto w = openActive(image);
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts[0].startsWith(QStringLiteral("The file ")) && messages.texts[0].endsWith(QStringLiteral(" could not be found.")),
                 qPrintable(messages.texts[0]));
        QVERIFY2(messages.captions[0].contains(w->design().MainCap), qPrintable(messages.captions[0]));
        // The opening went on: the first record shows.
        QCOMPARE(field(*w, kName)->text(), QStringLiteral("Stored"));
        QCOMPARE(field(*w, kCompany)->text(), QStringLiteral("acme"));
    }

    void readOnlyFileDisablesCreateWithTheWritingCommands()
    {
        QTemporaryDir dir;
        const QString image = imageWithOneRecord(dir);
        const QString data = dir.filePath(QStringLiteral("Contacts.dat"));
        QVERIFY(QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther));
        auto w = openActive(image);
        QVERIFY(!w->database().store().writingAllowed());
        QVERIFY(!w->newButton()->isEnabled());
        QVERIFY(w->createCommand() && !w->createCommand()->isEnabled());
        QCOMPARE(field(*w, kName)->text(), QStringLiteral("Stored"));

        // A writable file gives them back.
        w->close();
        QVERIFY(QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        auto again = openActive(image);
        QVERIFY(again->newButton()->isEnabled());
        QVERIFY(again->createCommand()->isEnabled());
    }

    void stopWatchTimeIsSavedWithItsRecord()
    {
        QTemporaryDir dir;
        const QString image = imageWithOneRecord(dir);
        auto w = openActive(image);
        w->resize(1600, w->height()); // room for the whole toolbar, the action button included
        w->newButton()->click();
        QCOMPARE(w->database().store().CurrentRecord(), 2);
        typeInto(*w, kName, QStringLiteral("timed"));
        field(*w, kDuration)->setFocus(Qt::TabFocusReason);
        QCOMPARE(w->actionButton()->toolTip(), QStringLiteral("Stop Watch..."));
        QTRY_VERIFY(w->actionButton()->isVisible());
        QTest::mouseClick(w->actionButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(field(*w, kDuration)->text(), QStringLiteral("00:00:01"), 3000);
        QVERIFY(w->database().store().RecordDirty());

        // Moving away saves the timed value and stops the watch.
        w->navigationButton(0)->click();
        QCOMPARE(w->database().store().CurrentRecord(), 1);
        const QString untimed = field(*w, kDuration)->text();
        QTest::qWait(1300);
        QCOMPARE(field(*w, kDuration)->text(), untimed); // the watch does not run on record 1
        QVERIFY(!w->database().store().RecordDirty());
        w->navigationButton(5)->click();
        QCOMPARE(field(*w, kName)->text(), QStringLiteral("Timed"));
        const QString kept = field(*w, kDuration)->text();
        QVERIFY2(kept == QStringLiteral("00:00:01") || kept == QStringLiteral("00:00:02"), qPrintable(kept));
        QCOMPARE(w->database().page().FieldDate[kDuration] * 86400.0, double(kept.right(2).toInt()));
    }
};

QTEST_MAIN(MainWindowStartTest)
#include "test_mainwindow_start.moc"
