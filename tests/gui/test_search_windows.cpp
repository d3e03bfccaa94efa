// The search windows as a person uses them over the contacts example with a few typed records:
// stored search lines, the results window and its row choice, the messages of count, sum and
// replace, find and replace on one field, the sort commands, a page button's silent line and a
// stop during a long search.

#include "WindowDriver.h"

#include "core/SettingsStore.h"
#include "entry/FieldEntry.h"
#include "formula/DateNumber.h"
#include "gui/SearchLineWindow.h"
#include "gui/MainWindowHost.h"
#include "gui/ResultsWindow.h"
#include "gui/FindReplaceWindow.h"
#include "store/Database.h"
#include "toolkit/SortableList.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;
using namespace ff::testsupport;

namespace {

// The contacts design with names for its fields, a find-and-replace caption and a page button
// whose lines are a select and a count.
QString writeNamedContacts(const QString &folder, const std::function<void(Design &)> &more = {})
{
    return testsupport::buildExample(QStringLiteral("contacts"), folder, [&more](Design &d) {
               d.Fields[1].Tag = QStringLiteral("first");
               d.Fields[2].Tag = QStringLiteral("last");
               d.Fields[3].Tag = QStringLiteral("company");
               d.Fields[8].Tag = QStringLiteral("credit");
               d.Fields[9].Tag = QStringLiteral("visits");
               d.Finden3Caption = QStringLiteral("Find and &replace");
               d.Buttons[1].ButtonScript = QStringLiteral("select first last where vip=1\r\ncount vip=1");
               if (more)
                   more(d);
           }).path;
}

struct Opened {
    QTemporaryDir dir;
    QString image;
    std::unique_ptr<gui::MainWindow> window;
};

void typeInto(gui::MainWindow &w, int i, const QString &keys)
{
    field(w, i)->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(field(w, i), keys);
    field(w, i == 1 ? 2 : 1)->setFocus(Qt::TabFocusReason);
}

void typeContact(gui::MainWindow &w, const QString &first, const QString &last, const QString &company,
                 const QString &credit, const QString &visits, bool vip)
{
    typeInto(w, 1, first);
    typeInto(w, 2, last);
    typeInto(w, 3, company);
    typeInto(w, 8, credit);
    typeInto(w, 9, visits);
    if (vip)
        QTest::mouseClick(w.canvas()->checkWidget(1), Qt::LeftButton);
}

// Records 1 to 3: Ada Lovelace (VIP), Alan Turing, Grace Hopper (VIP).
std::unique_ptr<Opened> openContacts(const std::function<void(Design &)> &more = {})
{
    auto o = std::make_unique<Opened>();
    o->image = writeNamedContacts(o->dir.path(), more);
    o->window = openActive(o->image);
    gui::MainWindow &w = *o->window;
    typeContact(w, QStringLiteral("Ada"), QStringLiteral("Lovelace"), QStringLiteral("Analytical"), QStringLiteral("100"),
                QStringLiteral("3"), true);
    w.newButton()->click();
    typeContact(w, QStringLiteral("Alan"), QStringLiteral("Turing"), QStringLiteral("Bletchley"), QStringLiteral("250"),
                QStringLiteral("7"), false);
    w.newButton()->click();
    typeContact(w, QStringLiteral("Grace"), QStringLiteral("Hopper"), QStringLiteral("Navy"), QStringLiteral("50"),
                QStringLiteral("1"), true);
    w.navigationButton(0)->click(); // saves record 3
    return o;
}

gui::SearchLineWindow *searchFor(gui::MainWindow &w, const QString &line, bool forward = false)
{
    w.findenAction(0)->trigger();
    gui::SearchLineWindow *f = w.searchWindow();
    f->forwardBox()->setChecked(forward);
    f->lineBox()->setEditText(line);
    // Enter goes where a person's key goes: to the focused widget of the active window.
    QTest::keyClick(focusedWidgetOf(f), Qt::Key_Return);
    return f;
}

// The records the navigation buttons walk through: first, then one on at a time.
QVector<int> walkedRecords(gui::MainWindow &w, int count)
{
    w.navigationButton(0)->click();
    QVector<int> seen{w.database().store().CurrentRecord()};
    while (seen.size() < count) {
        w.navigationButton(3)->click();
        seen << w.database().store().CurrentRecord();
    }
    return seen;
}

QList<gui::ResultsWindow *> resultWindows(gui::MainWindow &w) { return w.findChildren<gui::ResultsWindow *>(); }

QString recordText(gui::MainWindow &w, int record, int fieldIndex)
{
    if (!w.database().store().JumpToRecord(record))
        return QStringLiteral("(record %1 not shown)").arg(record);
    w.host().announceRecordShown();
    return field(w, fieldIndex)->text();
}

} // namespace

class SearchWindowsTest : public QObject {
    Q_OBJECT
    QTemporaryDir settings_;

private Q_SLOTS:
    void initTestCase() { SettingsStore::setFolder(settings_.path()); }

    void settingsKeepTextsAndIgnoreCase()
    {
        const QString value = QStringLiteral("{select a, b where c='x y'}{sum \"q\"}");
        SettingsStore::SaveSetting(QStringLiteral("My App"), QStringLiteral("Settings"), QStringLiteral("SQLcommands"), value);
        QCOMPARE(SettingsStore::GetSetting(QStringLiteral("My App"), QStringLiteral("SETTINGS"), QStringLiteral("sqlcommands")),
                 value);
        QCOMPARE(SettingsStore::GetSetting(QStringLiteral("My App"), QStringLiteral("Settings"), QStringLiteral("none"),
                                           QStringLiteral("dflt")),
                 QStringLiteral("dflt"));
        // Another application has its own file; a name with a slash stays inside the folder.
        QVERIFY(SettingsStore::GetSetting(QStringLiteral("Other"), QStringLiteral("Settings"), QStringLiteral("SQLcommands")).isEmpty());
        SettingsStore::SaveSetting(QStringLiteral("../up"), QStringLiteral("a/b"), QStringLiteral("k"), QStringLiteral("v"));
        QCOMPARE(SettingsStore::GetSetting(QStringLiteral("../up"), QStringLiteral("a/b"), QStringLiteral("K")), QStringLiteral("v"));
        QVERIFY(QFileInfo(SettingsStore::filePath(QStringLiteral("../up"))).absolutePath() == QDir(settings_.path()).absolutePath());

        QCOMPARE(gui::SearchLineWindow::storedLines(QString()), QStringList());
        QCOMPARE(gui::SearchLineWindow::storedLines(QStringLiteral("{a}{b c}")), (QStringList{"a", "b c"}));
        // Nothing is escaped: a "}" inside a line cuts it in two when it is read again.
        QCOMPARE(gui::SearchLineWindow::storedLines(QStringLiteral("{x}y}{z}")), (QStringList{"x", "y", "z"}));
    }

    void storeAndRemoveLines()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        w.findenAction(0)->trigger();
        gui::SearchLineWindow *f = w.searchWindow();
        QVERIFY(f && f->isVisible());
        const QString app = f->applicationKey();
        const QString line = QStringLiteral("select first where visits>2");
        f->lineBox()->setEditText(line);
        QCOMPARE(f->commLinesText(), QStringLiteral("Store search line..."));
        f->storeOrRemoveLine();
        QCOMPARE(f->commLinesText(), QStringLiteral("Remove search line..."));
        QCOMPARE(SettingsStore::GetSetting(app, QStringLiteral("Settings"), QStringLiteral("SQLcommands")), "{" + line + "}");
        f->lineBox()->setEditText(QStringLiteral("count vip=1"));
        f->storeOrRemoveLine();
        // Reopened, the stored lines come first in the list, in the order of storing.
        f->hide();
        w.findenAction(0)->trigger();
        QCOMPARE(f->lineBox()->itemText(0), line);
        QCOMPARE(f->lineBox()->itemText(1), QStringLiteral("count vip=1"));
        // The samples are built from the page's names.
        bool sampleSum = false;
        for (int i = 0; i < f->lineBox()->count(); ++i)
            sampleSum = sampleSum || f->lineBox()->itemText(i) == QStringLiteral("SUM credit");
        QVERIFY(sampleSum);
        f->lineBox()->setEditText(line);
        QCOMPARE(f->commLinesText(), QStringLiteral("Remove search line..."));
        f->storeOrRemoveLine();
        QCOMPARE(f->commLinesText(), QStringLiteral("Store search line..."));
        QCOMPARE(SettingsStore::GetSetting(app, QStringLiteral("Settings"), QStringLiteral("SQLcommands")),
                 QStringLiteral("{count vip=1}"));
        QCOMPARE(f->lineBox()->findText(line), -1);
        // An empty line neither stores nor starts anything.
        f->lineBox()->setEditText(QString());
        f->storeOrRemoveLine();
        f->startSearch();
        QVERIFY(resultWindows(w).isEmpty());
        QCOMPARE(SettingsStore::GetSetting(app, QStringLiteral("Settings"), QStringLiteral("SQLcommands")),
                 QStringLiteral("{count vip=1}"));
    }

    void selectListsHitsAndRowsShowRecords()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        gui::SearchLineWindow *f = searchFor(w, QStringLiteral("select first last credit where vip=1"));
        QVERIFY(!f->isVisible()); // hidden when the search starts
        gui::ResultsWindow *r = f->lastResults();

        QVERIFY(r && r->isVisible());
        QCOMPARE(r->result().rows, (QStringList{"3~Grace~Hopper~50.00", "1~Ada~Lovelace~100.00"})); // newest first
        QCOMPARE(r->captions(), (QStringList{"First name", "Last name", "Credit limit"}));
        QCOMPARE(r->searchLabelText(), QStringLiteral("2 : select first last credit where vip=1"));
        QCOMPARE(r->list()->rowCount(), 2);

        // Under a display, FLATFORM_SCREENSHOT_DIR keeps pictures of the windows for a person to look at.
        const QString shots = qEnvironmentVariable("FLATFORM_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            w.findenAction(0)->trigger();
            QTest::qWait(300);
            w.searchWindow()->grab().save(QDir(shots).filePath(QStringLiteral("form1.png")));
            w.searchWindow()->hide();
            r->raise();
            r->activateWindow();
            QTest::qWait(300);
            r->grab().save(QDir(shots).filePath(QStringLiteral("form3.png")));
            QGuiApplication::primaryScreen()->grabWindow(0).save(QDir(shots).filePath(QStringLiteral("screen.png")));
        }

        // A row click shows its record; the window stays open.
        QCOMPARE(w.database().store().CurrentRecord(), 1);
        QTableView *view = r->list()->view();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(view->model()->index(0, 1)).center());
        QCOMPARE(w.database().store().CurrentRecord(), 3);
        QCOMPARE(field(w, 1)->text(), QStringLiteral("Grace"));
        QCOMPARE(w.recordBox()->text(), QStringLiteral("3"));
        QVERIFY(r->isVisible());

        // Forward: oldest first, in a second window that stands further down.
        gui::ResultsWindow *r2 = searchFor(w, QStringLiteral("select first where credit>=100"), true)->lastResults();
        QVERIFY(r2 && r2 != r);
        QCOMPARE(r2->result().hits, (QVector<int>{1, 2}));
        QVERIFY(r2->pos().y() > r->pos().y());
        QCOMPARE(resultWindows(w).size(), 2);

        // A search among the hits of a window replaces its rows with those found there.
        QTest::mouseClick(r2->lineBox(), Qt::LeftButton);
        QWidget *typing = focusedWidgetOf(r2);
        QCOMPARE(typing, r2->lineBox());
        QTest::keyClicks(typing, QStringLiteral("select first where vip=1"));
        QTest::keyClick(typing, Qt::Key_Return);
        QCOMPARE(r2->result().hits, (QVector<int>{1}));

        // A plain find looks in the field that had the focus.
        // (The results windows hold the activation: the page's focus rule is called as a focus-in would.)
        w.entry().fieldGotFocus(2);
        gui::SearchLineWindow *f2 = searchFor(w, QStringLiteral("ing"));
        QVERIFY(f2->subjectText().contains(QStringLiteral("Last name")));
        QCOMPARE(f2->lastResults()->result().hits, (QVector<int>{2}));

        // Closing frees the window.
        QPointer<gui::ResultsWindow> gone = r;
        r->exitButton()->click();
        QTRY_VERIFY(gone.isNull());
    }

    void countSumAndReplaceSpeakThroughTheMessageBox()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        MessageCatcher messages;
        gui::SearchLineWindow *f = searchFor(w, QStringLiteral("count vip=1"));
        QCOMPARE(messages.texts, QStringList{"2 Total"});
        QCOMPARE(w.context().CountTotal, 2.0);
        QVERIFY(!f->lastResults()); // nothing to list
        searchFor(w, QStringLiteral("sum credit"));
        QCOMPARE(messages.texts.value(1), QStringLiteral("Total: 400          Average: 133.333333333333"));
        QCOMPARE(w.context().SumTotal, 400.0);
        searchFor(w, QStringLiteral("replace company=ACME where vip=1"));
        QCOMPARE(messages.texts.value(2), QStringLiteral("2 Replacements"));
        QCOMPARE(messages.overWaitWindow, 0); // the wait window was gone before each message
        QVERIFY(resultWindows(w).isEmpty());
        QCOMPARE(recordText(w, 3, 3), QStringLiteral("acme")); // the line is lower-cased without match case
        QCOMPARE(recordText(w, 2, 3), QStringLiteral("Bletchley"));
        QCOMPARE(recordText(w, 1, 3), QStringLiteral("acme"));
    }

    void findAndReplaceOnOneField()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        QVERIFY(w.findenAction(3)->isVisible());
        field(w, 3)->setFocus(Qt::MouseFocusReason);
        w.findenAction(3)->trigger();
        gui::FindReplaceWindow *f = w.replaceWindow();
        QVERIFY(f && f->isVisible());
        QVERIFY(f->fieldText().contains(QStringLiteral("Company")));

        // With match case off a text in another case is found but left as it is.
        f->findBox()->setEditText(QStringLiteral("navy"));
        f->replaceBox()->setEditText(QStringLiteral("Army"));
        gui::FindReplaceWindow::Outcome out = f->replaceAll();
        QCOMPARE(out.found, 1);
        QCOMPARE(out.changed, 0);
        // Every occurrence goes, and the record on the page shows the stored text.
        f->findBox()->setEditText(QStringLiteral("e"));
        f->replaceBox()->setEditText(QStringLiteral("E"));
        out = f->replaceAll();
        QCOMPARE(out.changed, 1); // Bletchley; Analytical and Navy have no "e"
        QCOMPARE(recordText(w, 2, 3), QStringLiteral("BlEtchlEy"));
        // A longer result is cut at the field's length.
        const int length = f->field().length;
        f->findBox()->setEditText(QStringLiteral("Navy"));
        f->replaceBox()->setEditText(QString(length + 5, QLatin1Char('n')));
        out = f->replaceAll();
        QCOMPARE(out.changed, 1);
        QCOMPARE(recordText(w, 3, 3).size(), length);
        // An empty new text does nothing at all.
        f->findBox()->setEditText(QStringLiteral("Analytical"));
        f->replaceBox()->setEditText(QString());
        QVERIFY(!f->replaceAll().ran);
        QCOMPARE(recordText(w, 1, 3), QStringLiteral("Analytical"));
        QCOMPARE(gui::FindReplaceWindow::replacedText(QStringLiteral("abc abc"), QStringLiteral("ABC"), QStringLiteral("x"), false),
                 QStringLiteral("abc abc"));
        QVERIFY(gui::FindReplaceWindow::replacedText(QStringLiteral("abc"), QStringLiteral("ABC"), QStringLiteral("x"), true).isNull());
    }

    void aFindOverPickedFieldsLooksInThoseFieldsOnly()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        // Picks fields of the record on the page with the right button, opens the search window,
        // types `line` over the picked values (unless it is null) and presses Enter.
        auto pickAndFind = [&](int record, std::initializer_list<int> fields, const QString &line) {
            QTest::mouseClick(w.navigationButton(0), Qt::LeftButton);
            for (int k = 1; k < record; ++k)
                QTest::mouseClick(w.navigationButton(3), Qt::LeftButton);
            for (int i : fields)
                QTest::mouseClick(field(w, i), Qt::RightButton);
            w.findenAction(0)->trigger();
            gui::SearchLineWindow *f = w.searchWindow();
            QWidget *typing = focusedWidgetOf(f);
            const QString picked = f->lineBox()->currentText();
            if (!line.isNull()) {
                QTest::keyClick(typing, Qt::Key_A, Qt::ControlModifier);
                QTest::keyClicks(typing, line);
            }
            QTest::keyClick(typing, Qt::Key_Return);
            gui::ResultsWindow *r = f->lastResults();
            return std::make_pair(picked, r ? r->result().hits : QVector<int>{-1});
        };

        // Alan's first name and company: the picked values, all to be found, find his record.
        auto [picked, hits] = pickAndFind(2, {1, 3}, QString());
        QCOMPARE(picked, QStringLiteral("Alan+Bletchley"));
        QCOMPARE(hits, (QVector<int>{2}));
        QVERIFY(!w.entry().selection().active()); // cleared by the search
        // Other texts in the same two fields: "Lovelace" and "Hopper" stand in a field not picked.
        QCOMPARE(pickAndFind(2, {1, 3}, QStringLiteral("hopper")).second, QVector<int>{});
        QCOMPARE(pickAndFind(2, {1, 3}, QStringLiteral("Lovelace or navy")).second, QVector<int>{3});
        // Every "+" term in one of the fields: "e" is in Bletchley and in Grace, not in Ada or Analytical.
        QCOMPARE(pickAndFind(1, {1, 3}, QStringLiteral("a+e")).second, (QVector<int>{3, 2}));
        // A money field compares as a number: Ada's credit of 100.00 with her first name.
        std::tie(picked, hits) = pickAndFind(1, {8, 1}, QString());
        QCOMPARE(picked, QStringLiteral("100.00+Ada"));
        QCOMPARE(hits, QVector<int>{1});
        QCOMPARE(pickAndFind(1, {8, 1}, QStringLiteral(">=100+a")).second, (QVector<int>{2, 1}));

        // Browsing by credit, the hits come in the walk's order, as a find in one field lists them.
        focusedWidgetOf(&w);
        QTest::mouseClick(field(w, 8), Qt::LeftButton);
        w.findenAction(1)->trigger();
        QCOMPARE(w.database().store().browseOrder(), BrowseOrder::SortIndexUp);
        focusedWidgetOf(&w);
        QTest::mouseClick(field(w, 1), Qt::LeftButton);
        const QVector<int> inOneField = searchFor(w, QStringLiteral("a"))->lastResults()->result().hits;
        QCOMPARE(inOneField.size(), 3);
        QVERIFY(inOneField != (QVector<int>{3, 2, 1}) && inOneField != (QVector<int>{1, 2, 3})); // not file order
        QCOMPARE(pickAndFind(1, {1, 3}, QStringLiteral("a")).second, inOneField);
    }

    void findAndReplaceOnNumbersMoneyAndDates()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        typeInto(w, 13, QStringLiteral("3/15/2024")); // Ada's first contact, a short date
        w.navigationButton(3)->click();              // saved
        auto replaceIn = [&](int fieldIndex, const QString &find, const QString &with) {
            focusedWidgetOf(&w); // back to the main window
            QTest::mouseClick(field(w, fieldIndex), Qt::LeftButton);
            if (QApplication::focusWidget() != field(w, fieldIndex))
                qWarning("field %d did not take the focus", fieldIndex);
            w.findenAction(3)->trigger();
            gui::FindReplaceWindow *f = w.replaceWindow();
            f->findBox()->setEditText(find);
            f->replaceBox()->setEditText(with);
            return std::make_pair(f->startButton()->isEnabled(), f->replaceAll());
        };

        // Money (credit 100, 250, 50) is taken on its stored value: "250", not "250.00".
        auto [enabled, out] = replaceIn(8, QStringLiteral("5"), QStringLiteral("7"));
        QVERIFY(enabled);
        QCOMPARE(out.found, 2);
        QCOMPARE(out.changed, 2);
        QCOMPARE(recordText(w, 1, 8), QStringLiteral("100.00"));
        QCOMPARE(recordText(w, 2, 8), QStringLiteral("270.00"));
        QCOMPARE(recordText(w, 3, 8), QStringLiteral("70.00"));
        // As stored: a little-endian 64-bit count of ten-thousandths.
        auto stored = w.database().store().readPlainRecord(2);
        QVERIFY(stored.ok());
        const int at = w.database().store().layout().FieldOffset[8] - 1;
        qint64 amount = 0;
        for (int k = 7; k >= 0; --k)
            amount = (amount << 8) | quint8(stored->at(at + k));
        QCOMPARE(amount, qint64(2700000));
        std::tie(enabled, out) = replaceIn(8, QStringLiteral("100"), QStringLiteral("99.5"));
        QCOMPARE(out.changed, 1);
        QCOMPARE(recordText(w, 1, 8), QStringLiteral("99.50"));
        QCOMPARE(field(w, 11)->text(), QStringLiteral("99.50")); // available = credit - balance
        // A text that is no number any more leaves the value as it was.
        std::tie(enabled, out) = replaceIn(8, QStringLiteral("70"), QStringLiteral("x"));
        QCOMPARE(out.found, 2);
        QCOMPARE(out.changed, 0);
        QCOMPARE(recordText(w, 2, 8), QStringLiteral("270.00"));

        // Whole numbers (visits 3, 7, 1).
        std::tie(enabled, out) = replaceIn(9, QStringLiteral("7"), QStringLiteral("12"));
        QVERIFY(enabled);
        QCOMPARE(out.changed, 1);
        QCOMPARE(recordText(w, 2, 9), QStringLiteral("12"));

        // Dates are taken on the text they show.
        const QString before = recordText(w, 1, 13);
        QVERIFY2(before.contains(QStringLiteral("2024")), qPrintable(before));
        std::tie(enabled, out) = replaceIn(13, QStringLiteral("2024"), QStringLiteral("2025"));
        QVERIFY(enabled);
        QCOMPARE(out.found, 1);
        QCOMPARE(out.changed, 1);
        QCOMPARE(recordText(w, 1, 13), QString(before).replace(QStringLiteral("2024"), QStringLiteral("2025")));
        QCOMPARE(w.database().page().FieldDate[13], NumberFromDate(QDate(2025, 3, 15)));
    }

    void aRecordThatCannotBeSavedStopsSearchAndReplace()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        // Record 1 gets a new company and a number of visits beyond a whole number's range: the
        // record can no longer be packed, so it cannot be saved.
        typeInto(w, 3, QStringLiteral(" Engines"));
        typeInto(w, 9, QStringLiteral("9999999999"));
        QVERIFY(s.RecordDirty());
        MessageCatcher messages;

        // The search would read the stored record without the edit: it does not start.
        searchFor(w, QStringLiteral("select first where vip=1"));
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts.first().contains(QStringLiteral("could not be saved")), qPrintable(messages.texts.first()));
        QVERIFY(resultWindows(w).isEmpty());

        // The replace would read the page back from the file at its end: it does not start.
        field(w, 3)->setFocus(Qt::MouseFocusReason);
        w.findenAction(3)->trigger();
        gui::FindReplaceWindow *f = w.replaceWindow();
        f->findBox()->setEditText(QStringLiteral("Navy"));
        f->replaceBox()->setEditText(QStringLiteral("Army"));
        QVERIFY(!f->replaceAll().ran);
        QCOMPARE(messages.texts.size(), 2);
        QCOMPARE(field(w, 3)->text(), QStringLiteral(" Engines")); // as typed over the company
        QVERIFY(s.RecordDirty());
        QCOMPARE(s.CurrentRecord(), 1);
        auto stored = s.readPlainRecord(3);
        QVERIFY(stored.ok());
        QVERIFY(stored->contains("Navy")); // nothing replaced
    }

    void sortCommandsSetTheBrowseOrder()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        QCOMPARE(w.findenAction(1)->text(), QStringLiteral("Sort up"));
        QCOMPARE(w.findenAction(2)->text(), QStringLiteral("Sort down"));
        field(w, 8)->setFocus(Qt::MouseFocusReason); // credit: 100, 250, 50
        w.findenAction(1)->trigger();
        QCOMPARE(s.browseOrder(), BrowseOrder::SortIndexUp);
        QCOMPARE(walkedRecords(w, 3), (QVector<int>{3, 1, 2}));
        QCOMPARE(field(w, 8)->text(), QStringLiteral("250.00"));

        field(w, 2)->setFocus(Qt::MouseFocusReason); // last names, from the end
        w.findenAction(2)->trigger();
        QCOMPARE(s.browseOrder(), BrowseOrder::SortIndexDown);
        QCOMPARE(walkedRecords(w, 3), (QVector<int>{2, 1, 3})); // Turing, Lovelace, Hopper
    }

    void sortBeforeAnyFieldHadTheFocusSortsByTheFirstField()
    {
        auto o = openContacts();
        o->window.reset(); // saves and closes: a new start on the three records
        auto w = openActive(o->image);
        // Sort down at once: by the first names, from the end.
        w->findenAction(2)->trigger();
        QCOMPARE(w->database().store().browseOrder(), BrowseOrder::SortIndexDown);
        QCOMPARE(walkedRecords(*w, 3), (QVector<int>{3, 2, 1})); // Grace, Alan, Ada
    }

    void pageButtonLineOpensASilentResultsWindow()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        MessageCatcher messages;
        QVERIFY(resultWindows(w).isEmpty());
        auto *button = qobject_cast<QAbstractButton *>(w.canvas()->buttonWidget(1));
        QVERIFY(button);
        button->click();
        const QList<gui::ResultsWindow *> windows = resultWindows(w);
        QCOMPARE(windows.size(), 1);
        QCOMPARE(windows.first()->result().hits, (QVector<int>{3, 1}));
        QVERIFY(windows.first()->isVisible());
        // The count line ran too, without its message.
        QCOMPARE(w.context().CountTotal, 2.0);
        QTest::qWait(30);
        QVERIFY(messages.texts.isEmpty());
        // From the search window, the same count speaks.
        searchFor(w, QStringLiteral("count vip=1"));
        QCOMPARE(messages.texts, QStringList{"2 Total"});
    }

    void aRightClickOnACheckBoxLeavesTheCheckBoxesFree()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        QCOMPARE(w.database().store().CurrentRecord(), 1); // Ada, a VIP
        auto *vip = qobject_cast<QAbstractButton *>(w.canvas()->checkWidget(1));
        QVERIFY(vip && vip->isChecked());
        QTest::mouseClick(vip, Qt::RightButton);
        QVERIFY(vip->isChecked()); // the right button only takes the focus and picks the field
        QVERIFY(w.entry().selection().active());

        // The left button and Space toggle as ever, before any search has run.
        QTest::mouseClick(vip, Qt::LeftButton);
        QVERIFY(!vip->isChecked());
        QCOMPARE(w.database().page().CheckValue[1], 0);
        QWidget *focused = focusedWidgetOf(&w);
        QCOMPARE(focused, static_cast<QWidget *>(vip));
        QTest::keyClick(focused, Qt::Key_Space);
        QVERIFY(vip->isChecked());
        QCOMPARE(w.database().page().CheckValue[1], 1);
        QVERIFY(w.database().store().RecordDirty());
    }

    void theNumberColumnShowsSevenDigitRecordNumbersWhole()
    {
        // Short notes keep a million records within the first file.
        auto o = openContacts([](Design &d) {
            for (NoteElement &n : d.Notes)
                n.MaxLength = qMin(n.MaxLength, 20);
        });
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        // A store of a million records: a copy of Ada written into the last slot, the slots
        // between left as a hole in the file.
        auto plain = s.readPlainRecord(1);
        QVERIFY(plain.ok());
        const int last = 1000000;
        QVERIFY(s.file().writeRecord(last, *plain).ok());
        QVERIFY(s.refreshCount().ok());
        QCOMPARE(s.RecordCount(), last);

        gui::ResultsWindow *r = searchFor(w, QStringLiteral("select first last where vip=1"))->lastResults();
        QVERIFY(r);
        QCOMPARE(r->result().hits, (QVector<int>{last, 3, 1}));
        QTableView *view = r->list()->view();
        const QModelIndex cell = view->model()->index(0, 0);
        QCOMPARE(cell.data().toString(), QStringLiteral("1000000"));
        // The cell is as wide as its number needs: the view would show "1000000" unshortened.
        QStyleOptionViewItem option;
        option.initFrom(view->viewport());
        option.font = view->font();
        const int needed = view->itemDelegateForIndex(cell)->sizeHint(option, cell).width();
        QVERIFY2(view->columnWidth(0) >= needed, qPrintable(QStringLiteral("%1 < %2").arg(view->columnWidth(0)).arg(needed)));
        const QRect rect = view->visualRect(cell);
        const int margin = 2 * (view->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1);
        const QString shown = view->fontMetrics().elidedText(cell.data().toString(), Qt::ElideRight, rect.width() - margin);
        QCOMPARE(shown, QStringLiteral("1000000"));
    }

    void stopKeepsWhatWasFound()
    {
        auto o = openContacts();
        gui::MainWindow &w = *o->window;
        RecordStore &s = w.database().store();
        // Many copies of record 1, written straight into the file.
        auto plain = s.readPlainRecord(1);
        QVERIFY(plain.ok());
        QByteArray stored = *plain;
        const int total = 4000;
        for (int n = 4; n <= total; ++n)
            QVERIFY(s.file().writeRecord(n, stored).ok());
        QVERIFY(s.refreshCount().ok());
        QCOMPARE(s.RecordCount(), total);

        w.searchSession().setProgressStep(50);
        QTimer presser;
        presser.setInterval(0);
        bool pressed = false;
        QObject::connect(&presser, &QTimer::timeout, [&] {
            for (toolkit::WaitWindow *wait : w.findChildren<toolkit::WaitWindow *>()) {
                const QString p = wait->percentText();
                if (!pressed && wait->isVisible() && p.endsWith(QLatin1Char('%')) && p != QStringLiteral("0%")) {
                    wait->stopButton()->click();
                    pressed = true;
                }
            }
        });
        presser.start();
        gui::ResultsWindow *r = searchFor(w, QStringLiteral("select first where vip=1"), true)->lastResults();
        presser.stop();
        QVERIFY(pressed);
        QVERIFY(r);
        QVERIFY(r->result().aborted);
        const int hits = int(r->result().hits.size());
        QVERIFY2(hits > 0 && hits < total - 1, qPrintable(QString::number(hits)));
        QCOMPARE(r->result().hits.first(), 1);
        QCOMPARE(r->list()->rowCount(), hits);
        QVERIFY(r->searchLabelText().startsWith(QString::number(hits) + QStringLiteral(" : ")));
    }
};

QTEST_MAIN(SearchWindowsTest)
#include "test_search_windows.moc"
