// A record page in a browser beside the window's own picture of the same record: the contacts
// example with its sample records, the window's page grabbed, the record exported as pages of
// the record on screen, and Chromium's screenshot of the first page compared with the grab cell
// by cell. The two PNGs are kept in the build folder (web-shots/) for a look by eye.

#include "gui/MainWindow.h"
#include "gui/PageCanvas.h"
#include "gui/WindowDriver.h"
#include "store/Database.h"
#include "support/ExampleImage.h"
#include "support/PictureCompare.h"
#include "support/Programs.h"
#include "web/WebExport.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace ff;

class WebWindowShotTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pageInTheBrowserMatchesTheWindow()
    {
        const QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
        if (chromium.isEmpty())
            QSKIP("chromium is not installed: the browser's picture of the page cannot be taken");
        QTemporaryDir dir;
        testsupport::SampleWindow opened = testsupport::openSampleWindow(QStringLiteral("contacts"), dir.path());
        QVERIFY2(opened.window, qPrintable(opened.error));
        gui::MainWindow &window = *opened.window;
        const QImage grab = window.canvas()->grab().toImage();

        RecordStore &store = window.database().store();
        QCOMPARE(store.CurrentRecord(), 1);
        web::WebExport exporter(store, window.context(), window.database().paths().AppFolder);
        const QString out = dir.filePath(QStringLiteral("out"));
        QVERIFY(QDir().mkpath(out));
        const auto done = exporter.run(ExportKind::HtmlCurrent, ExportRange::Records(1, 1, store.RecordCount()), out,
                                       QStringLiteral("one.htm"));
        QVERIFY2(done.ok(), done ? "" : qPrintable(done.error().text));

        const QString shots = QDir(qEnvironmentVariable("FLATFORM_BINARY_DIR", dir.path())).filePath(QStringLiteral("web-shots"));
        QVERIFY(QDir().mkpath(shots));
        const QString browserShot = QDir(shots).filePath(QStringLiteral("browser.png"));
        QFile::remove(browserShot);
        const testsupport::ProgramRun shot = testsupport::runProgram(
            chromium,
            {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"), QStringLiteral("--disable-gpu"),
             QStringLiteral("--hide-scrollbars"), QStringLiteral("--screenshot=") + browserShot,
             QStringLiteral("--window-size=%1,%2").arg(grab.width()).arg(grab.height()),
             QUrl::fromLocalFile(out + QStringLiteral("/one/one.htm")).toString()},
            QByteArray(), 120000);
        QVERIFY2(shot.exitCode == 0, shot.err.constData());
        const QImage browser(browserShot);
        QVERIFY(!browser.isNull());
        QVERIFY(grab.save(QDir(shots).filePath(QStringLiteral("window.png"))));

        // The widgets draw their own frames and boxes where the page writes only the value, so
        // the pictures are not equal; most of the page is, and the elements stand at their places.
        const double differing = testsupport::differingCells(grab, browser, 40);
        qInfo("cells differing by more than 40 grey levels: %.1f %%", differing * 100);
        QVERIFY2(differing < 0.06, qPrintable(QStringLiteral("%1 % of the cells differ").arg(differing * 100)));
        // The same comparison with the browser's picture moved by 12 pixels fails: the test sees places.
        const QImage moved = browser.copy(12, 12, browser.width(), browser.height());
        QVERIFY(testsupport::differingCells(grab, moved, 40) > differing * 2);
    }
};

QTEST_MAIN(WebWindowShotTest)
#include "test_web_window_shot.moc"
