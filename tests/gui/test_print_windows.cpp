// The print windows: the print options keep their choices in the settings store under the keys
// other copies of the program read (the paper read as "Papersize", written as "PaperSize"); the
// report preview pages, jumps to a row's record and prints; the full-picture window fits and
// prints its picture.

#include "core/SettingsStore.h"
#include "gui/FullPictureWindow.h"
#include "gui/MainWindow.h"
#include "gui/PageCanvas.h"
#include "gui/PrintActions.h"
#include "gui/PrintOptionsWindow.h"
#include "gui/ReportPreviewWindow.h"
#include "print/ImageTarget.h"
#include "print/PaperSizes.h"
#include "store/Database.h"
#include "support/ExampleImage.h"
#include "support/Programs.h"
#include "toolkit/WaitWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace ff;

class PrintWindowsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(settings_.isValid());
        SettingsStore::setFolder(settings_.path());
    }

    void optionsAreKeptUnderTheSharedKeys()
    {
        const QString app = QStringLiteral("Invoices");
        {
            QPrinter printer;
            gui::PrintOptionsWindow window(printer, app, QSizeF(10800, 8400));
            window.applyStoredChoices();
            window.printerList()->setCurrentText(gui::PrintOptionsWindow::pdfPrinterName());
            Q_EMIT window.printerList()->textActivated(gui::PrintOptionsWindow::pdfPrinterName());
            // A PDF file takes every paper of the list, and the design page's own size comes last.
            QCOMPARE(window.paperList()->count(), print::PaperSizes::Count + 1);
            QCOMPARE(window.paperList()->itemText(8), QStringLiteral("A4, 210 x 297 mm"));
            QCOMPARE(window.paperList()->itemData(window.paperList()->count() - 1).toInt(), 0);
            const int a5 = window.paperList()->findData(11);
            window.paperList()->setCurrentIndex(a5);
            Q_EMIT window.paperList()->activated(a5);
            QCOMPARE(printer.pageLayout().pageSize().id(), QPageSize::A5); // the printer takes it at once
            window.setPdfFileName(settings_.filePath(QStringLiteral("out.pdf")));
            window.acceptChoices();
            QVERIFY(!window.PrintCancelled());
        }
        // Written as "PaperSize": the INI file holds it in lower case, one key with the read spelling.
        QSettings ini(SettingsStore::filePath(app), QSettings::IniFormat);
        QCOMPARE(ini.value(QStringLiteral("settings/papersize")).toString(), QStringLiteral("11"));
        QCOMPARE(SettingsStore::GetSetting(app, QStringLiteral("Settings"), QStringLiteral("Papersize")), QStringLiteral("11"));

        QPrinter printer;
        gui::PrintOptionsWindow again(printer, app, QSizeF(10800, 8400));
        again.applyStoredChoices();
        QCOMPARE(again.printerList()->currentText(), gui::PrintOptionsWindow::pdfPrinterName());
        QCOMPARE(again.paperList()->currentData().toInt(), 11);
        QCOMPARE(printer.pageLayout().pageSize().id(), QPageSize::A5);
        QVERIFY(again.PrintCancelled()); // until the print button is pressed

        // A stored paper the list does not hold leaves the first entry chosen.
        SettingsStore::SaveSetting(app, QStringLiteral("Settings"), QStringLiteral("PaperSize"), QStringLiteral("77"));
        gui::PrintOptionsWindow third(printer, app, QSizeF(10800, 8400));
        third.applyStoredChoices();
        QCOMPARE(third.paperList()->currentIndex(), 0);

        // The range: below 1 is 1, past the highest is the highest, the last never before the first.
        third.setRange(0, 99, 7, false);
        Q_EMIT third.firstBox()->editingFinished();
        QCOMPARE(third.first(), 1);
        QCOMPARE(third.last(), 7);
        third.setRange(5, 2, 7, false);
        Q_EMIT third.lastBox()->editingFinished();
        QCOMPARE(third.last(), 5);
    }

    void reportPreviewPagesJumpsAndPrints()
    {
        QTemporaryDir dir;
        const auto built = testsupport::buildExample(QStringLiteral("invoice"), dir.path(), [](Design &d) {
            // Three rows a page, so that the seven invoices take three pages.
            auto &labels = d.Reports[0].Labels;
            labels.erase(std::remove_if(labels.begin(), labels.end(), [](const ReportLabel &l) { return l.LabelRow > 3; }),
                         labels.end());
        });
        const QString loaded = testsupport::loadSamples(QStringLiteral("invoice"), built.path);
        QVERIFY2(loaded.isEmpty(), qPrintable(loaded));
        DesignLoad load = testsupport::loadImage(built.path);
        QVERIFY(load.complete());
        gui::MainWindow window(ParseCommandLine(built.path, {}), std::move(load));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        gui::ReportPreviewWindow *preview = window.printing().openReport(0);
        QVERIFY(preview);
        QCOMPARE(preview->engine().RowsPerPage(), 3);
        QCOMPARE(preview->pageBox()->text(), QStringLiteral("1"));
        QVERIFY(preview->pagingButton(2)->isEnabled());
        QTest::mouseClick(preview->pagingButton(3), Qt::LeftButton); // last
        QCOMPARE(preview->pageBox()->text(), QStringLiteral("3"));
        QCOMPARE(preview->engine().recordsShown(print::StoreRecords(window.database().store())), (QVector<int>{7, 0, 0}));
        const QImage last = preview->shownPage();
        preview->pageBox()->setText(QStringLiteral("1"));
        QTest::keyClick(preview->pageBox(), Qt::Key_Return);
        QCOMPARE(preview->engine().FirstOffset(), 0);
        QVERIFY(preview->shownPage() != last);

        // A double click on the customer of row 2 shows record 2 in the main window.
        const double tpp = 1440.0 / window.logicalDpiX();
        preview->jumpAt(QPoint(int(2500 / tpp), int(1900 / tpp)));
        QCOMPARE(window.database().store().CurrentRecord(), 2);

        // Printed into a PDF file: three sheets, one a page.
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        const QString pdf = dir.filePath(QStringLiteral("report.pdf"));
        printer.setOutputFileName(pdf);
        preview->printReport(printer, false);
        const testsupport::ProgramRun pages = testsupport::runProgram(QStringLiteral("qpdf"), {QStringLiteral("--show-npages"), pdf});
        if (pages.exitCode != -1)
            QCOMPARE(pages.out.trimmed(), QByteArray("3"));
        QCOMPARE(window.database().store().CurrentRecord(), 2); // the record shown comes back
        preview->close();
        QSettings ini(SettingsStore::filePath(window.printing().applicationKey()), QSettings::IniFormat);
        QVERIFY(ini.contains(QStringLiteral("settings/invoicesreportwidth")));

        // A print stopped from its wait window ends there and its job is thrown away.
        QPrinter stopped;
        stopped.setOutputFormat(QPrinter::PdfFormat);
        stopped.setOutputFileName(dir.filePath(QStringLiteral("stopped.pdf")));
        QTimer presser;
        presser.setInterval(0);
        bool pressed = false;
        connect(&presser, &QTimer::timeout, [&pressed] {
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *wait = qobject_cast<toolkit::WaitWindow *>(w); wait && wait->isVisible() && !pressed) {
                    pressed = true;
                    QTest::mouseClick(wait->stopButton(), Qt::LeftButton);
                }
        });
        presser.start();
        const Result<int> part = window.printing().printRecords(stopped, {1, 2, 3, 4, 5, 6, 7}, 0, 1, 20, false);
        presser.stop();
        QVERIFY(pressed && part);
        QVERIFY2(*part < 140, qPrintable(QString::number(*part)));
        QCOMPARE(window.database().store().CurrentRecord(), 2);

        // A double click on the logo shows it, in its own size, in the full-picture window.
        QWidget *logo = window.canvas()->pictureWidget(0);
        QVERIFY(logo);
        QTest::mouseDClick(logo, Qt::LeftButton, {}, logo->rect().center());
        auto *full = window.findChild<gui::FullPictureWindow *>();
        QVERIFY(full && full->isVisible());
        QCOMPARE(full->pictureLabel()->pixmap().size(), logo->size());
    }

    void fullPictureFitsAndPrints()
    {
        const std::vector<std::tuple<QSize, QSize, QSize>> cases{
            {{100, 50}, {400, 300}, {100, 50}},   // fits: as it is
            {{800, 400}, {400, 300}, {400, 200}}, // too wide: by the width
            {{400, 800}, {400, 300}, {150, 300}}, // too high: by the height
            {{800, 1200}, {400, 300}, {200, 300}},
        };
        for (const auto &[picture, inner, shown] : cases)
            QCOMPARE(gui::FullPictureWindow::shownSize(picture, inner), shown);

        // 200 pixels at 96 dpi are 3000 twips: on a sheet 1440 twips wide it is printed as wide as the sheet.
        QImage picture(200, 100, QImage::Format_RGB32);
        picture.fill(Qt::black);
        for (const auto &[sheetWidth, inkWidth] : std::vector<std::pair<double, int>>{{1440, 96}, {5760, 200}}) {
            gui::FullPictureWindow window(picture);
            print::ImageTarget target(QSizeF(sheetWidth, 5760), 96);
            print::Printer printer(target);
            QVERIFY(window.printOn(printer).ok());
            const QImage &sheet = target.pages().front();
            int ink = 0;
            for (int x = 0; x < sheet.width(); ++x)
                ink += qGray(sheet.pixel(x, 5)) < 128;
            QVERIFY2(qAbs(ink - inkWidth) <= 1, qPrintable(QStringLiteral("%1 pixels of ink").arg(ink)));
        }
    }

private:
    QTemporaryDir settings_;
};

QTEST_MAIN(PrintWindowsTest)
#include "test_print_windows.moc"
