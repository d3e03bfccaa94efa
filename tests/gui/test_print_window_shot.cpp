// A record on paper beside the same record in the window: the invoice example with its sample
// records, the window's page grabbed, the record printed into a PDF file on a sheet of the page's
// size, the sheet rendered by pdftoppm at the screen's resolution and compared with the grab cell
// by cell. The two PNGs are kept in the build folder (print-shots/) for a look by eye.

#include "gui/MainWindow.h"
#include "gui/PageCanvas.h"
#include "WindowDriver.h"
#include "print/PdfTarget.h"
#include "print/RecordPrinter.h"
#include "store/Database.h"
#include "support/ExampleImage.h"
#include "support/PictureCompare.h"
#include "support/Programs.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace ff;

class PrintWindowShotTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void printedRecordMatchesTheWindow()
    {
        const QString pdftoppm = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
        if (pdftoppm.isEmpty())
            QSKIP("pdftoppm is not installed: the printed sheet cannot be looked at");
        QTemporaryDir dir;
        testsupport::SampleWindow opened = testsupport::openSampleWindow(QStringLiteral("invoice"), dir.path());
        QVERIFY2(opened.window, qPrintable(opened.error));
        gui::MainWindow &window = *opened.window;
        const QImage grab = window.canvas()->grab().toImage();

        Database &db = window.database();
        QCOMPARE(db.store().CurrentRecord(), 1);
        const Design &design = db.design();
        const QString pdf = dir.filePath(QStringLiteral("record.pdf"));
        print::PdfTarget target(pdf, QPageSize(QSizeF(design.PageWidth / 20, design.PageHeight / 20), QPageSize::Point),
                                QPageLayout::Portrait);
        {
            print::Printer printer(target);
            print::RecordPrinter drawing(design, db.paths().AppFolder);
            drawing.setPageRange(0, 0);
            drawing.PrintRecordPages(printer, db.page());
            QVERIFY(printer.EndDoc().ok());
        }
        const QString shots = QDir(qEnvironmentVariable("FLATFORM_BINARY_DIR", dir.path())).filePath(QStringLiteral("print-shots"));
        QVERIFY(QDir().mkpath(shots));
        const QString printShot = QDir(shots).filePath(QStringLiteral("print-record"));
        QFile::remove(printShot + QStringLiteral(".png"));
        const testsupport::ProgramRun rendered = testsupport::runProgram(
            pdftoppm, {QStringLiteral("-r"), QString::number(1440.0 / window.canvas()->twipsPerPixel()), QStringLiteral("-png"),
                       QStringLiteral("-singlefile"), pdf, printShot});
        QVERIFY2(rendered.exitCode == 0, rendered.err.constData());
        const QImage paper(printShot + QStringLiteral(".png"));
        QVERIFY(!paper.isNull());
        QVERIFY(grab.save(QDir(shots).filePath(QStringLiteral("window-record.png"))));
        QVERIFY(qAbs(paper.width() - grab.width()) <= 1 && qAbs(paper.height() - grab.height()) <= 1);

        // The window's line edits and combo draw their own boxes and place text a few pixels
        // otherwise than the print, which puts the text at the top of the field as it always did;
        // most of the page is equal, and the elements stand at their places.
        const double differing = testsupport::differingCells(grab, paper, 40);
        qInfo("cells differing by more than 40 grey levels: %.1f %%", differing * 100);
        QVERIFY2(differing < 0.06, qPrintable(QStringLiteral("%1 % of the cells differ").arg(differing * 100)));
        // The same comparison with the paper moved by 12 pixels fails: the test sees places.
        const QImage moved = paper.copy(12, 12, paper.width(), paper.height());
        QVERIFY(testsupport::differingCells(grab, moved, 40) > differing * 2);
    }
};

QTEST_MAIN(PrintWindowShotTest)
#include "test_print_window_shot.moc"
