// Records out and in as a person moves them in the main window: the export and import commands of
// the File menu through the file dialog (its name box typed into, its file type picked with the
// keys), the results window's export button, copy and paste between two programs of different
// designs, the "-paste" start, the stop of the wait window and a dialog left without a name.
// Files are read back with the test's own reader of the delimited text and of the XML text.

#include "WindowDriver.h"

#include "entry/FieldEntry.h"
#include "gui/ExportImportActions.h"
#include "gui/MainWindowHost.h"
#include "gui/ResultsWindow.h"
#include "gui/SearchLineWindow.h"
#include "store/Database.h"
#include "toolkit/SortableList.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QCompleter>
#include <QAbstractItemView>
#include <QComboBox>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>
#include <QXmlStreamReader>
#include <QtTest>

#include <functional>

using namespace ff;
using testsupport::field;
using testsupport::MessageCatcher;

namespace {

struct Opened {
    QString image;
    std::unique_ptr<gui::MainWindow> window;
};

// An app image of the contacts design in `folder` (its data file beside it) and its window.
std::unique_ptr<Opened> openContacts(const QString &folder, const std::function<void(Design &)> &change = {},
                                     const QStringList &arguments = {})
{
    auto o = std::make_unique<Opened>();
    QDir().mkpath(folder);
    o->image = testsupport::buildExample(QStringLiteral("contacts"), folder, change).path;
    o->window = testsupport::openActive(o->image, arguments);
    return o;
}

void typeInto(QWidget *widget, const QString &keys)
{
    widget->setFocus(Qt::MouseFocusReason);
    QTest::keyClicks(widget, keys);
}

struct Contact {
    QString first, last, company, credit, visits, category, note;
    bool vip;
};

// Types a contact into the record on screen, the note on the second page, and leaves the fields.
void typeContact(gui::MainWindow &w, const Contact &c)
{
    typeInto(field(w, 1), c.first);
    typeInto(field(w, 2), c.last);
    typeInto(field(w, 3), c.company);
    typeInto(field(w, 8), c.credit);
    typeInto(field(w, 9), c.visits);
    typeInto(w.canvas()->comboWidget(1), c.category);
    if (c.vip)
        QTest::mouseClick(w.canvas()->checkWidget(1), Qt::LeftButton);
    QTest::mouseClick(w.pageTabs(), Qt::LeftButton, {}, w.pageTabs()->tabRect(1).center());
    auto *note = qobject_cast<QPlainTextEdit *>(w.canvas()->noteWidget(1));
    note->setFocus(Qt::MouseFocusReason);
    for (const QString &line : c.note.split(QLatin1Char('\n'))) {
        if (line != c.note.section(QLatin1Char('\n'), 0, 0))
            QTest::keyClick(note, Qt::Key_Return);
        QTest::keyClicks(note, line);
    }
    QTest::mouseClick(w.pageTabs(), Qt::LeftButton, {}, w.pageTabs()->tabRect(0).center());
    field(w, 1)->setFocus(Qt::MouseFocusReason);
}

const QList<Contact> kContacts = {
    {QStringLiteral("Ada"), QStringLiteral("Lovelace"), QStringLiteral("Engines; Analytical"), QStringLiteral("100"),
     QStringLiteral("3"), QStringLiteral("Work"), QStringLiteral("Wrote \"notes\"\nin 1843"), true},
    {QStringLiteral("Alan"), QStringLiteral("Turing"), QStringLiteral("Bletchley"), QStringLiteral("250"),
     QStringLiteral("7"), QStringLiteral("Friends"), QStringLiteral("Morphogenesis"), false},
    {QStringLiteral("Grace"), QStringLiteral("Hopper"), QStringLiteral("Navy & <Co>"), QStringLiteral("50"),
     QStringLiteral("1"), QStringLiteral("Customer"), QString(), true},
};

void typeContacts(gui::MainWindow &w, const QList<Contact> &contacts)
{
    for (qsizetype i = 0; i < contacts.size(); ++i) {
        if (i > 0)
            w.newButton()->click();
        typeContact(w, contacts[i]);
    }
    w.navigationButton(0)->click(); // saves the last
}

// Every value of every element of a record as the page shows it.
QStringList recordValues(gui::MainWindow &w, int record)
{
    RecordStore &s = w.database().store();
    if (!s.JumpToRecord(record))
        return {QStringLiteral("(record %1 unreadable)").arg(record)};
    const Page &p = w.database().page();
    QStringList v;
    for (qsizetype i = 1; i < p.FieldText.size(); ++i)
        v << QStringLiteral("F%1=%2").arg(i).arg(p.FieldText[i]);
    for (qsizetype i = 1; i < p.ComboText.size(); ++i)
        v << QStringLiteral("C%1=%2").arg(i).arg(p.ComboText[i]);
    for (qsizetype i = 0; i < p.CheckValue.size(); ++i)
        v << QStringLiteral("K%1=%2").arg(i).arg(p.CheckValue[i]);
    for (qsizetype i = 1; i < p.NoteText.size(); ++i)
        v << QStringLiteral("M%1=%2").arg(i).arg(QString(p.NoteText[i]).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    return v;
}

// Does `step` once with the file dialog, as soon as it is the active modal window.
void whenDialogShows(const std::function<void(QFileDialog *)> &step)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, step] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        timer->stop();
        timer->deleteLater();
        step(dialog);
    });
    timer->start();
}

// Picks the file type whose line holds `what` with the arrow keys of the type list.
void pickType(QFileDialog *dialog, const QString &what)
{
    auto *types = dialog->findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
    types->setFocus(Qt::TabFocusReason);
    QTest::keyClick(types, Qt::Key_Home);
    for (int i = 0; i < types->count() && !types->currentText().contains(what); ++i)
        QTest::keyClick(types, Qt::Key_Down);
}

QLineEdit *nameBox(QFileDialog *dialog) { return dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")); }

// Types `name` into the dialog's name box and presses Enter there. The list of completions that
// opens under the box while typing is closed with Escape first, as a person does, and the box
// clicked again.
void typeNameAndAccept(QFileDialog *dialog, const QString &name)
{
    QLineEdit *box = nameBox(dialog);
    box->setFocus(Qt::MouseFocusReason);
    box->selectAll();
    QTest::keyClicks(box, name);
    for (int tries = 0; tries < 5 && dialog->isVisible(); ++tries) {
        QTest::qWait(20); // the folder's listing arrives
        if (QAbstractItemView *list = box->completer() ? box->completer()->popup() : nullptr; list && list->isVisible())
            QTest::keyClick(list, Qt::Key_Escape);
        dialog->activateWindow();
        if (!QTest::qWaitForWindowActive(dialog))
            qWarning("the file dialog is not active");
        if (box->text() != name) {
            box->selectAll();
            QTest::keyClicks(box, name);
            continue;
        }
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(box->width() - 4, box->height() / 2));
        QTest::keyClick(box, Qt::Key_Return);
    }
    if (dialog->isVisible()) {
        qWarning("the dialog did not take \"%s\"", qPrintable(name));
        dialog->reject(); // the test goes on to fail on what was not written
    }
}

// Rows of delimited text as another program reads them: CR LF ends a row outside quotes, a quoted
// value may hold the separator, CR LF and doubled quotes.
QList<QStringList> readDelimited(const QString &path, QChar separator)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString text = QString::fromLatin1(file.readAll());
    QList<QStringList> rows;
    QStringList row;
    QString value;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (quoted) {
            if (c == QLatin1Char('"') && i + 1 < text.size() && text[i + 1] == QLatin1Char('"'))
                value += c, ++i;
            else if (c == QLatin1Char('"'))
                quoted = false;
            else
                value += c;
        } else if (c == QLatin1Char('"')) {
            quoted = true;
        } else if (c == separator) {
            row << value;
            value.clear();
        } else if (c == QLatin1Char('\r') && i + 1 < text.size() && text[i + 1] == QLatin1Char('\n')) {
            row << value;
            rows << row;
            row.clear();
            value.clear();
            ++i;
        } else {
            value += c;
        }
    }
    return rows;
}

// The export command with the dialog driven: file type, range and name.
void exportThroughDialog(gui::MainWindow &w, const QString &type, const QString &name, const QString &first = QString(),
                         const QString &last = QString())
{
    whenDialogShows([&](QFileDialog *dialog) {
        pickType(dialog, type);
        for (const auto &[box, value] : {std::pair{QStringLiteral("firstRecordBox"), first},
                                          std::pair{QStringLiteral("lastRecordBox"), last}}) {
            if (value.isNull())
                continue;
            auto *edit = dialog->findChild<QLineEdit *>(box);
            edit->setFocus(Qt::MouseFocusReason);
            edit->selectAll();
            QTest::keyClicks(edit, value);
        }
        typeNameAndAccept(dialog, name);
    });
    w.exportImport().exportCommand()->trigger();
}

void importThroughDialog(gui::MainWindow &w, const QString &type, const QString &name, bool everyFile = false)
{
    whenDialogShows([&](QFileDialog *dialog) {
        pickType(dialog, type);
        if (everyFile)
            QTest::mouseClick(dialog->findChild<QCheckBox *>(QStringLiteral("allXmlBox")), Qt::LeftButton);
        typeNameAndAccept(dialog, name);
    });
    w.exportImport().importCommand()->trigger();
}

// The XML text of a record as a general XML reader sees it: each element's text by its name, and
// the lines of the FLOWPage section.
QMap<QString, QString> readXmlRecord(const QString &text, QString *root = nullptr)
{
    QMap<QString, QString> values;
    QXmlStreamReader xml(text);
    int depth = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && ++depth == 1 && root)
            *root = xml.name().toString();
        else if (xml.isStartElement() && depth == 2)
            values.insert(xml.name().toString(), xml.readElementText()), --depth;
        else if (xml.isEndElement())
            --depth;
    }
    if (xml.hasError())
        values.insert(QStringLiteral("(error)"), xml.errorString());
    return values;
}

// Searches as a person does in the search window and returns the results window it opened.
gui::ResultsWindow *searchFor(gui::MainWindow &w, const QString &line)
{
    w.findenAction(0)->trigger();
    gui::SearchLineWindow *f = w.searchWindow();
    f->lineBox()->setEditText(line);
    QTest::keyClick(testsupport::focusedWidgetOf(f), Qt::Key_Return);
    const QList<gui::ResultsWindow *> found = w.findChildren<gui::ResultsWindow *>();
    return found.isEmpty() ? nullptr : found.last();
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

// Presses the wait window's stop as soon as it shows a percentage.
struct StopAtFirstPercent {
    QTimer timer;
    bool pressed = false;
    explicit StopAtFirstPercent(gui::MainWindow &w)
    {
        timer.setInterval(0);
        QObject::connect(&timer, &QTimer::timeout, [this, &w] {
            toolkit::WaitWindow *wait = w.exportImport().waitWindow();
            if (!pressed && wait->isVisible() && wait->percentText().endsWith(QLatin1Char('%'))) {
                pressed = true;
                QTest::mouseClick(wait->stopButton(), Qt::LeftButton);
            }
        });
        timer.start();
    }
};

} // namespace

class ExportImportWindowTest : public QObject {
    Q_OBJECT
    QTemporaryDir dir_;

private Q_SLOTS:
    void exportReadsBackIntoAnotherStore_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("written");
        QTest::newRow("delimited text") << QStringLiteral("Delimited text") << QStringLiteral("out.txt");
        QTest::newRow("record copy") << QStringLiteral("Copy of the records") << QStringLiteral("out.dat");
    }
    void exportReadsBackIntoAnotherStore()
    {
        QFETCH(QString, type);
        QFETCH(QString, written);
        const QString folder = dir_.filePath(QStringLiteral("roundtrip-") + QTest::currentDataTag());
        auto a = openContacts(folder + QStringLiteral("/a"));
        gui::MainWindow &wa = *a->window;
        typeContacts(wa, kContacts);
        MessageCatcher messages;
        exportThroughDialog(wa, type, folder + QStringLiteral("/out"));
        const QString path = folder + QLatin1Char('/') + written;
        QVERIFY2(QFileInfo::exists(path), qPrintable(messages.texts.join(QLatin1Char('\n'))));
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts[0].contains(QLatin1String("3 records exported")), qPrintable(messages.texts[0]));

        if (written.endsWith(QLatin1String(".txt"))) {
            // The head row names the fields by their tags; each row starts with its record number.
            const QList<QStringList> rows = readDelimited(path, QLatin1Char(';'));
            QCOMPARE(rows.size(), 4);
            const QStringList head = rows[0];
            QCOMPARE(head.value(0), QStringLiteral("No."));
            for (int r = 1; r <= 3; ++r) {
                const Contact &c = kContacts[r - 1];
                QCOMPARE(rows[r].size(), head.size());
                QCOMPARE(rows[r][0], QString::number(r));
                QCOMPARE(rows[r][head.indexOf(QStringLiteral("company"))], c.company);
                QCOMPARE(rows[r][head.indexOf(QStringLiteral("category"))], c.category);
                QCOMPARE(rows[r][head.indexOf(QStringLiteral("vip"))], c.vip ? QStringLiteral("1") : QStringLiteral("0"));
                QCOMPARE(rows[r][head.indexOf(QStringLiteral("notes"))], QString(c.note).replace(QLatin1Char('\n'), QLatin1String("\r\n")));
                QCOMPARE(rows[r][head.indexOf(QStringLiteral("fullname"))], c.first + QLatin1Char(' ') + c.last);
            }
        }

        // Another copy of the program with its own empty data file takes the file in.
        auto b = openContacts(folder + QStringLiteral("/b"));
        gui::MainWindow &wb = *b->window;
        importThroughDialog(wb, type, path);
        QCOMPARE(wb.database().store().RecordCount(), 3);
        QVERIFY2(messages.texts.last().contains(QLatin1String("records 1 to 3")), qPrintable(messages.texts.last()));
        QVERIFY(wb.statusText().contains(QLatin1String("of 3")));
        for (int r = 1; r <= 3; ++r)
            QCOMPARE(recordValues(wb, r), recordValues(wa, r));
    }

    void noteWithLineBreakSurvivesTheTextExport()
    {
        const QString folder = dir_.filePath(QStringLiteral("linebreak"));
        auto a = openContacts(folder + QStringLiteral("/a"));
        Contact c = kContacts[1];
        c.note = QStringLiteral("Morphogenesis\n1952");
        typeContacts(*a->window, {c});
        // Enter in the note wrote the line break as CR LF, the one the export quotes.
        QCOMPARE(a->window->database().page().NoteText[1], QStringLiteral("Morphogenesis\r\n1952"));
        MessageCatcher messages;
        exportThroughDialog(*a->window, QStringLiteral("Delimited"), folder + QStringLiteral("/out"));
        auto b = openContacts(folder + QStringLiteral("/b"));
        importThroughDialog(*b->window, QStringLiteral("Delimited"), folder + QStringLiteral("/out.txt"));
        QCOMPARE(b->window->database().store().RecordCount(), 1);
        QCOMPARE(recordValues(*b->window, 1), recordValues(*a->window, 1));
    }

    void resultsWindowExportsItsHitsInItsOrder()
    {
        const QString folder = dir_.filePath(QStringLiteral("results"));
        auto a = openContacts(folder);
        gui::MainWindow &w = *a->window;
        QList<Contact> four = kContacts;
        four << Contact{QStringLiteral("Edsger"), QStringLiteral("Dijkstra"), QStringLiteral("Eindhoven"),
                        QStringLiteral("75"), QStringLiteral("2"), QStringLiteral("Work"), QString(), true};
        typeContacts(w, four);
        MessageCatcher messages;
        gui::ResultsWindow *results = searchFor(w, QStringLiteral("select firstname lastname where vip=1"));
        QVERIFY(results);
        QCOMPARE(results->list()->rowCount(), 3); // walked from the last record: 4, 3, 1
        // The first name's button sorts the list: Ada (1), Edsger (4), Grace (3).
        QHeaderView *header = results->list()->view()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(1) + 10, header->height() / 2));

        bool rangeShown = true;
        whenDialogShows([&](QFileDialog *dialog) {
            rangeShown = dialog->findChild<QLineEdit *>(QStringLiteral("firstRecordBox"))->isVisible();
            typeNameAndAccept(dialog, folder + QStringLiteral("/hits"));
        });
        auto *exportButton = results->findChild<QPushButton *>(QStringLiteral("exportButton"));
        QVERIFY(exportButton && exportButton->isVisible());
        QTest::mouseClick(exportButton, Qt::LeftButton);
        QVERIFY(!rangeShown);
        const QList<QStringList> rows = readDelimited(folder + QStringLiteral("/hits.txt"), QLatin1Char(';'));
        QCOMPARE(rows.size(), 4);
        const qsizetype first = rows[0].indexOf(QStringLiteral("firstname"));
        QStringList order;
        for (qsizetype r = 1; r < rows.size(); ++r)
            order << rows[r][0] + QLatin1Char(' ') + rows[r][first];
        QCOMPARE(order, (QStringList{"1 Ada", "4 Edsger", "3 Grace"}));
        QVERIFY2(messages.texts.value(0).contains(QLatin1String("3 records exported")), qPrintable(messages.texts.join(QLatin1Char('|'))));
    }

    void copyAndPasteBetweenDesigns()
    {
        const QString folder = dir_.filePath(QStringLiteral("clipboard"));
        auto a = openContacts(folder + QStringLiteral("/a"), [](Design &d) { d.FlowPageEnabled = 1; });
        gui::MainWindow &wa = *a->window;
        typeContacts(wa, {kContacts[0]});
        // A label the user placed on the page of this record.
        FlowLabel label;
        label.text = QStringLiteral("Met at <the> fair");
        label.left = 300;
        label.top = 400;
        label.style = 1;
        wa.database().page().FlowLabels.append(label);

        wa.exportImport().copyRecordCommand()->trigger();
        QString root;
        const QMap<QString, QString> copied = readXmlRecord(QGuiApplication::clipboard()->text(), &root);
        QCOMPARE(root, QStringLiteral("Contacts_Record_1"));
        QCOMPARE(copied.value(QStringLiteral("firstname")), QStringLiteral("Ada"));
        QCOMPARE(copied.value(QStringLiteral("company")), QStringLiteral("Engines; Analytical"));
        QCOMPARE(copied.value(QStringLiteral("vip")), QStringLiteral("1"));
        // A double quote is escaped before the ampersand, so that other readers see "&quot;": kept so.
        QCOMPARE(copied.value(QStringLiteral("notes")), QStringLiteral("Wrote &quot;notes&quot;\nin 1843"));
        QVERIFY(copied.value(QStringLiteral("FLOWPage")).contains(QLatin1String("Label,Met at <the> fair,")));

        // Another design: first and last name swapped on the page, the company under another name.
        auto b = openContacts(folder + QStringLiteral("/b"), [](Design &d) {
            d.AppTitle = QStringLiteral("People");
            d.FlowPageEnabled = 1;
            std::swap(d.Fields[1].Tag, d.Fields[2].Tag);
            d.Fields[3].Tag = QStringLiteral("employer");
        });
        gui::MainWindow &wb = *b->window;
        MessageCatcher messages;
        wb.exportImport().pasteCommand()->trigger();
        QVERIFY(messages.texts.isEmpty());
        QCOMPARE(field(wb, 1)->text(), QStringLiteral("Lovelace"));
        QCOMPARE(field(wb, 2)->text(), QStringLiteral("Ada"));
        QCOMPARE(field(wb, 3)->text(), QString());
        QCOMPARE(field(wb, 14)->text(), QStringLiteral("Lovelace Ada")); // its formula ran
        QVERIFY(qobject_cast<QAbstractButton *>(wb.canvas()->checkWidget(1))->isChecked());
        QCOMPARE(wb.database().page().FlowLabels.size(), 1);
        QCOMPARE(wb.database().page().FlowLabels[0].text, label.text);
        QCOMPARE(wb.database().page().FlowLabels[0].left, label.left);
        // The paste is an edit: moving on saves it.
        QVERIFY(wb.database().store().RecordDirty());
        wb.newButton()->click();
        QCOMPARE(recordValues(wb, 1).mid(0, 3), (QStringList{"F1=Lovelace", "F2=Ada", "F3="}));
        QCOMPARE(wb.database().page().FlowLabels.size(), 1);

        // Copy data takes the fields picked with the right button only.
        QTest::mouseClick(field(wa, 2), Qt::RightButton);
        QTest::mouseClick(field(wa, 8), Qt::RightButton);
        wa.exportImport().copyDataCommand()->trigger();
        const QString part = QGuiApplication::clipboard()->text();
        QVERIFY2(!part.contains(QLatin1String("firstname")) && part.contains(QLatin1String("<lastname>Lovelace</lastname>"))
                     && part.contains(QLatin1String("<creditlimit>")),
                 qPrintable(part));
        wb.newButton()->click();
        wb.exportImport().pasteCommand()->trigger();
        QCOMPARE(field(wb, 1)->text(), QStringLiteral("Lovelace"));
        QCOMPARE(field(wb, 2)->text(), QString());

        // Two XML files of records, both chosen at once in the import dialog with its box ticked.
        wa.exportImport().copyRecordCommand()->trigger();
        const QString whole = QGuiApplication::clipboard()->text();
        writeFile(folder + QStringLiteral("/b/one.xml"), whole.toUtf8());
        writeFile(folder + QStringLiteral("/b/two.xml"), QString(whole).replace(QLatin1String(">Ada<"), QLatin1String(">Augusta<")).toUtf8());
        const int before = wb.database().store().RecordCount();
        importThroughDialog(wb, QStringLiteral("XML"), QStringLiteral("\"one.xml\" \"two.xml\""), true);
        QCOMPARE(wb.database().store().RecordCount(), before + 2);
        QCOMPARE(recordValues(wb, before + 1).mid(0, 2), (QStringList{"F1=Lovelace", "F2=Ada"}));
        QCOMPARE(recordValues(wb, before + 2).mid(0, 2), (QStringList{"F1=Lovelace", "F2=Augusta"}));

        // "-paste" on the command line: a program started on an empty data file takes the record
        // into its first record.
        wa.exportImport().copyRecordCommand()->trigger();
        auto c = openContacts(folder + QStringLiteral("/c"), {}, {QStringLiteral("-paste")});
        QCOMPARE(c->window->database().store().RecordCount(), 1);
        QCOMPARE(field(*c->window, 1)->text(), QStringLiteral("Ada"));
        QCOMPARE(field(*c->window, 3)->text(), QStringLiteral("Engines; Analytical"));
    }

    void stopKeepsWhatWasWritten()
    {
        const QString folder = dir_.filePath(QStringLiteral("stop"));
        auto a = openContacts(folder);
        gui::MainWindow &w = *a->window;
        QByteArray rows = "firstname;lastname\r\n";
        for (int i = 1; i <= 40; ++i)
            rows += "P" + QByteArray::number(i) + ";L" + QByteArray::number(i) + "\r\n";
        writeFile(folder + QStringLiteral("/people.txt"), rows);
        MessageCatcher messages;
        importThroughDialog(w, QStringLiteral("Delimited"), folder + QStringLiteral("/people.txt"));
        QCOMPARE(w.database().store().RecordCount(), 40);

        // The export shows its first percentage at the tenth record; the stop there keeps nine.
        StopAtFirstPercent stop(w);
        exportThroughDialog(w, QStringLiteral("Delimited"), folder + QStringLiteral("/part"));
        QVERIFY(stop.pressed);
        const QList<QStringList> out = readDelimited(folder + QStringLiteral("/part.txt"), QLatin1Char(';'));
        QCOMPARE(out.size(), 1 + 9);
        const qsizetype first = out[0].indexOf(QStringLiteral("firstname"));
        for (int r = 1; r <= 9; ++r)
            QCOMPARE(out[r][first], QStringLiteral("P%1").arg(r));
        QVERIFY2(messages.texts.last().contains(QLatin1String("9 records exported"))
                     && messages.texts.last().contains(QLatin1String("stopped")),
                 qPrintable(messages.texts.last()));

        // A range of the boxes: records 11 to 20 in file order.
        exportThroughDialog(w, QStringLiteral("Delimited"), folder + QStringLiteral("/range"), QStringLiteral("11"),
                            QStringLiteral("20"));
        const QList<QStringList> range = readDelimited(folder + QStringLiteral("/range.txt"), QLatin1Char(';'));
        QCOMPARE(range.size(), 1 + 10);
        QCOMPARE(range[1][0], QStringLiteral("11"));
        QCOMPARE(range[10][first], QStringLiteral("P20"));
    }

    void readOnlyFileOffersNoImportOrPaste()
    {
        const QString folder = dir_.filePath(QStringLiteral("rights"));
        {
            auto a = openContacts(folder);
            typeContacts(*a->window, {kContacts[0]});
            QVERIFY(a->window->exportImport().importCommand()->isEnabled());
            a->window->close();
        }
        QVERIFY(QFile::setPermissions(folder + QStringLiteral("/Contacts.dat"), QFile::ReadOwner | QFile::ReadGroup));
        auto b = openContacts(folder);
        gui::ExportImportActions &commands = b->window->exportImport();
        QVERIFY(commands.exportCommand()->isEnabled()); // reading is allowed
        QVERIFY(!commands.importCommand()->isEnabled());
        QVERIFY(!commands.pasteCommand()->isEnabled());
    }

    void emptyNameWritesNothing()
    {
        const QString folder = dir_.filePath(QStringLiteral("empty"));
        auto a = openContacts(folder);
        gui::MainWindow &w = *a->window;
        typeContacts(w, {kContacts[1]});
        const QStringList files = filesIn(folder);
        MessageCatcher messages;
        // Enter on an empty name box leaves the dialog open; Escape closes it.
        whenDialogShows([](QFileDialog *dialog) {
            QLineEdit *box = nameBox(dialog);
            box->clear();
            QTest::keyClick(box, Qt::Key_Return);
            QVERIFY(dialog->isVisible());
            QTest::keyClick(box, Qt::Key_Escape);
        });
        w.exportImport().exportCommand()->trigger();
        QCOMPARE(filesIn(folder), files);
        QVERIFY(messages.texts.isEmpty());
        // A range beyond the records is told, and nothing is written.
        exportThroughDialog(w, QStringLiteral("Delimited"), folder + QStringLiteral("/beyond"), QStringLiteral("1"),
                            QStringLiteral("5"));
        QCOMPARE(filesIn(folder), files);
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts[0].contains(QLatin1String("outside the records 1 to 1")), qPrintable(messages.texts[0]));
    }
};

QTEST_MAIN(ExportImportWindowTest)
#include "test_export_import_window.moc"
