// A record's PDF page beside the same record in the window: the contacts example with its sample
// records, the window's page grabbed, the first page of the record exported as PDF (only that
// page included), rendered by pdftoppm at the screen's resolution and compared with the grab cell
// by cell. The two PNGs are kept in the build folder (pdf-shots/) for a look by eye. And the mail
// commands of the window, which hand the desktop the record's message or its PDF.

#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "gui/PageCanvas.h"
#include "gui/WindowDriver.h"
#include "pdf/PdfRecordExport.h"
#include "store/Database.h"
#include "support/ExampleImage.h"
#include "support/PictureCompare.h"
#include "support/Programs.h"

#include <QAction>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

using namespace ff;

namespace {

// An environment variable set for the life of a scope, put back (or unset) when a check fails too.
class ScopedVariable {
public:
    ScopedVariable(const char *name, const QByteArray &value) : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~ScopedVariable()
    {
        if (had_)
            qputenv(name_, old_);
        else
            qunsetenv(name_);
    }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    const char *name_;
    bool had_;
    QByteArray old_;
};

} // namespace

class PdfWindowShotTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pdfPageMatchesTheWindow()
    {
        const QString pdftoppm = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
        if (pdftoppm.isEmpty())
            QSKIP("pdftoppm is not installed: the PDF page cannot be looked at");
        QTemporaryDir dir;
        testsupport::SampleWindow opened = testsupport::openSampleWindow(QStringLiteral("contacts"), dir.path());
        QVERIFY2(opened.window, qPrintable(opened.error));
        gui::MainWindow &window = *opened.window;
        const QImage grab = window.canvas()->grab().toImage();

        Database &db = window.database();
        QCOMPARE(db.store().CurrentRecord(), 1);
        const QString pdf = dir.filePath(QStringLiteral("record.pdf"));
        pdf::PdfRecordExport exporter(db.store(), window.context(), db.paths().AppFolder);
        exporter.setPageRange(0, 0);
        QVERIFY(!exporter.PageIncluded(1));
        const Result<pdf::PdfOutcome> done =
            exporter.PrintPDF(pdf, pdf::PdfMode::OneDocument, ExportRange::Records(1, 1, db.store().RecordCount()));
        QVERIFY2(done.ok(), done.ok() ? "" : qPrintable(done.error().text));
        QCOMPARE(done->pages, 1); // the second page of the design is not included
        if (const QString qpdf = QStandardPaths::findExecutable(QStringLiteral("qpdf")); !qpdf.isEmpty())
            QCOMPARE(testsupport::runProgram(qpdf, {QStringLiteral("--check"), pdf}).exitCode, 0);

        const QString shots = QDir(qEnvironmentVariable("FLATFORM_BINARY_DIR", dir.path())).filePath(QStringLiteral("pdf-shots"));
        QVERIFY(QDir().mkpath(shots));
        const QString pdfShot = QDir(shots).filePath(QStringLiteral("pdf-record"));
        QFile::remove(pdfShot + QStringLiteral(".png"));
        const testsupport::ProgramRun rendered = testsupport::runProgram(
            pdftoppm, {QStringLiteral("-r"), QString::number(1440.0 / window.canvas()->twipsPerPixel()), QStringLiteral("-png"),
                       QStringLiteral("-singlefile"), pdf, pdfShot});
        QVERIFY2(rendered.exitCode == 0, rendered.err.constData());
        const QImage page(pdfShot + QStringLiteral(".png"));
        QVERIFY(!page.isNull());
        QVERIFY(grab.save(QDir(shots).filePath(QStringLiteral("window-record-pdf.png"))));
        QVERIFY(qAbs(page.width() - grab.width()) <= 1 && qAbs(page.height() - grab.height()) <= 1);

        // The window's controls draw their own boxes and buttons, and place their text a pixel or
        // two otherwise; most of the page is equal, and the elements stand at their places.
        const double differing = testsupport::differingCells(grab, page, 40);
        qInfo("cells differing by more than 40 grey levels: %.1f %%", differing * 100);
        QVERIFY2(differing < 0.06, qPrintable(QStringLiteral("%1 % of the cells differ").arg(differing * 100)));
        // The same comparison with the page moved by 12 pixels fails: the test sees places.
        const QImage moved = page.copy(12, 12, page.width(), page.height());
        QVERIFY(testsupport::differingCells(grab, moved, 40) > differing * 2);
    }

    // The mail command hands the desktop a message of the record on the page, its PDF inside.
    void mailCommandOpensTheMessage()
    {
        QTemporaryDir dir;
        std::optional<ScopedVariable> temp(std::in_place, "TMPDIR", QFile::encodeName(dir.path()));
        testsupport::SampleWindow opened = testsupport::openSampleWindow(QStringLiteral("contacts"), dir.path());
        QVERIFY2(opened.window, qPrintable(opened.error));
        gui::MainWindow &window = *opened.window;
        QVERIFY(window.database().store().JumpToRecord(2).ok());
        auto *mail = window.findChild<QAction *>(QStringLiteral("mailCommand"));
        QVERIFY(mail);
        mail->trigger();
        temp.reset();
        const QString eml = QDir(dir.path()).filePath(QStringLiteral("Newmail.eml"));
        QCOMPARE(window.host().opened.value(window.host().opened.size() - 1), eml);
        QFile file(eml);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.startsWith("Reply-To: \r\nTo: \"Berg\"<jonas.berg@bergtimber.example>\r\n"));
        QVERIFY(text.contains("filename=\"Record2.pdf\""));
        QVERIFY(!QFile::exists(QDir(dir.path()).filePath(QStringLiteral("Record2.pdf"))));
    }

    // Where xdg-email is installed, the compose command hands it the record's PDF and the address
    // the record shows; where it is not, the command is not offered. A stand-in xdg-email on PATH
    // writes down what it was given.
    void composeCommandHandsTheDesktopThePdf()
    {
        QTemporaryDir dir;
        const QString bin = dir.filePath(QStringLiteral("bin"));
        QVERIFY(QDir().mkpath(bin));
        const QString given = dir.filePath(QStringLiteral("given.txt"));
        // Each argument on a line, then the attachment's first 4 bytes; the file appears whole.
        QFile script(QDir(bin).filePath(QStringLiteral("xdg-email")));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n{ printf '%s\\n' \"$@\"; head -c 4 \"$4\"; } > \"$GIVEN.part\" && mv \"$GIVEN.part\" \"$GIVEN\"\n");
        script.close();
        QVERIFY(script.setPermissions(script.permissions() | QFileDevice::ExeOwner));

        std::optional<ScopedVariable> temp(std::in_place, "TMPDIR", QFile::encodeName(dir.path()));
        std::optional<ScopedVariable> path(std::in_place, "PATH", QFile::encodeName(bin) + ":" + qgetenv("PATH"));
        const ScopedVariable givenName("GIVEN", QFile::encodeName(given));
        testsupport::SampleWindow opened = testsupport::openSampleWindow(QStringLiteral("contacts"), dir.path());
        QVERIFY2(opened.window, qPrintable(opened.error));
        gui::MainWindow &window = *opened.window;
        QVERIFY(window.database().store().JumpToRecord(2).ok());
        auto *compose = window.findChild<QAction *>(QStringLiteral("composeCommand"));
        QVERIFY(compose);
        compose->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(given), 10000);
        QFile file(given);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().split('\n');
        QCOMPARE(lines.size(), 6);
        QCOMPARE(lines[0], QByteArray("--subject"));
        QCOMPARE(lines[1], QByteArray("Attached"));
        QCOMPARE(lines[2], QByteArray("--attach"));
        QCOMPARE(lines[3], QFile::encodeName(QDir(dir.path()).filePath(QStringLiteral("Record2.pdf"))));
        QCOMPARE(lines[4], QByteArray("jonas.berg@bergtimber.example"));
        QCOMPARE(lines[5], QByteArray("%PDF")); // the attachment was there, whole, when it ran

        // xdg-email that finds no mail program ends with 3 and tells only its error output.
        QVERIFY(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
        script.write("#!/bin/sh\nexit 3\n");
        script.close();
        {
            testsupport::MessageCatcher catcher;
            compose->trigger();
            QTRY_COMPARE_WITH_TIMEOUT(catcher.texts.size(), 1, 10000);
            QCOMPARE(catcher.texts[0], QStringLiteral("The desktop's compose window could not be opened."));
        }
        path.reset();
        temp.reset();

        if (!QStandardPaths::findExecutable(QStringLiteral("xdg-email")).isEmpty())
            return; // the machine has its own: the command is rightly offered
        QTemporaryDir other;
        testsupport::SampleWindow plain = testsupport::openSampleWindow(QStringLiteral("contacts"), other.path());
        QVERIFY2(plain.window, qPrintable(plain.error));
        QVERIFY(!plain.window->findChild<QAction *>(QStringLiteral("composeCommand")));
        QVERIFY(plain.window->findChild<QAction *>(QStringLiteral("mailCommand")));
    }
};

QTEST_MAIN(PdfWindowShotTest)
#include "test_pdf_window_shot.moc"
