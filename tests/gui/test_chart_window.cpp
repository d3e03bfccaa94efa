// The chart windows as a person meets them: a field of the contacts example focused, the
// statistics button pressed, the pie and the histogram switched and looked at (the list's groups
// and ranges against counts made here from the sample records, the colour of a piece, a bar), the
// windows cascading, a note refused with a message, and the pie printed into a PDF.

#include "charts/ChartPainter.h"
#include "charts/PieSlices.h"
#include "gui/ChartActions.h"
#include "gui/ChartWindow.h"
#include "gui/PrintOptionsWindow.h"
#include "store/Database.h"
#include "support/Programs.h"
#include "WindowDriver.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QTemporaryDir>
#include <QToolBar>
#include <QTreeWidget>
#include <cmath>
#include <map>
#include <numeric>

using namespace ff;

namespace {

int elementIndex(const std::vector<FieldElement> &fields, const char *tag)
{
    for (size_t i = 1; i < fields.size(); ++i)
        if (fields[i].Tag == QLatin1String(tag))
            return int(i);
    return 0;
}

int comboIndex(const std::vector<ComboElement> &combos, const char *tag)
{
    for (size_t i = 1; i < combos.size(); ++i)
        if (combos[i].Tag == QLatin1String(tag))
            return int(i);
    return 0;
}

// The colour at `angle` degrees (counter-clockwise from three o'clock), half-way out, of the
// circle round `centre` with `radius`.
QColor colourAt(const QImage &image, QPointF centre, double radiusX, double radiusY, double angle)
{
    const double a = angle * M_PI / 180;
    return image.pixelColor(QPoint(int(centre.x() + radiusX / 2 * std::cos(a)), int(centre.y() - radiusY / 2 * std::sin(a))));
}

} // namespace

class ChartWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(dir_.isValid());
        image_ = testsupport::buildExample(QStringLiteral("contacts"), dir_.path()).path;
        const QString loaded = testsupport::loadSamples(QStringLiteral("contacts"), image_);
        QVERIFY2(loaded.isEmpty(), qPrintable(loaded));
    }

    void statisticsButtonChartsTheFocusedElement()
    {
        auto main = testsupport::openActive(image_);
        const Design &d = main->design();
        QAction *command = main->findChild<QAction *>(QStringLiteral("statisticsCommand"));
        QVERIFY(command);
        auto *bar = main->findChild<QToolBar *>(QStringLiteral("records"));
        QWidget *button = bar->widgetForAction(command);
        QVERIFY(button && button->isVisible());
        // The same command stands in the Search menu.
        int inMenus = 0;
        for (QAction *entry : main->menuBar()->actions())
            if (entry->menu() && entry->menu()->actions().contains(command))
                inMenus += entry->text() == QStringLiteral("&Search") ? 1 : 100;
        QCOMPARE(inMenus, 1);

        // The category combo: five groups, largest first, shares of the 25 records.
        const int category = comboIndex(d.Combos, "category");
        QVERIFY(category > 0);
        main->canvas()->comboWidget(category)->setFocus();
        QTRY_VERIFY(main->canvas()->comboWidget(category)->hasFocus());
        QTest::mouseClick(button, Qt::LeftButton);
        QList<gui::ChartWindow *> windows = main->findChildren<gui::ChartWindow *>();
        QCOMPARE(windows.size(), 1);
        gui::ChartWindow *pie = windows.first();
        QVERIFY(QTest::qWaitForWindowExposed(pie));
        std::map<QString, int> expected;
        const QStringList categories = testsupport::sampleColumn(QStringLiteral("contacts"), QStringLiteral("category"));
        for (const QString &c : categories)
            ++expected[c];
        QTreeWidget *list = pie->list();
        QCOMPARE(list->topLevelItemCount(), int(expected.size()));
        int previous = INT_MAX;
        for (int r = 0; r < list->topLevelItemCount(); ++r) {
            const QTreeWidgetItem *row = list->topLevelItem(r);
            const int count = expected[row->text(0)];
            QCOMPARE(row->text(1).toInt(), count);
            QCOMPARE(row->text(2), QLocale().toString(100.0 * count / double(categories.size()), 'f', 2) + QLatin1Char('%'));
            QVERIFY(count <= previous);
            previous = count;
        }
        QVERIFY(!pie->typeButton(gui::ChartWindow::Histogram)->isEnabled()); // no number field

        // The 3D pie: the first group's piece is in the first colour, the third group's in the
        // third; below the disc's front edge stands the darker wall.
        const std::vector<int> slices = charts::CreatePieSlices(std::vector<double>{8, 6, 4, 4, 3});
        QCOMPARE(std::accumulate(slices.begin(), slices.end(), 0), 100);
        QImage shot = pie->pieView()->grab().toImage();
        const double side = std::min(pie->pieView()->width(), pie->pieView()->height()) - 20;
        const QRectF disc(11, 11, side - 2, side * 0.8 - 2 - charts::kPieDepth);
        QCOMPARE(colourAt(shot, disc.center(), disc.width() / 2, disc.height() / 2, slices[0] * 3.6 / 2), charts::SliceColour(0));
        const double third = (slices[0] + slices[1] + slices[2] / 2.0) * 3.6;
        QCOMPARE(colourAt(shot, disc.center(), disc.width() / 2, disc.height() / 2, third), charts::SliceColour(2));
        const QColor wall = shot.pixelColor(QPoint(int(disc.center().x()), int(disc.bottom() + charts::kPieDepth / 2)));
        QVERIFY2(wall.lightness() < 160 && wall != QColor(Qt::black), qPrintable(wall.name()));

        saveShot(pie, QStringLiteral("chart-pie.png"));

        // The 2D pie on the window's own geometry: centre (h / 3 + 20, h / 2 - 50) twips.
        QTest::mouseClick(pie->typeButton(gui::ChartWindow::Pie2D), Qt::LeftButton);
        QCOMPARE(pie->chartType(), int(gui::ChartWindow::Pie2D));
        shot = pie->pieView()->grab().toImage();
        const double h = pie->pieView()->height() * 15.0;
        const QPointF centre((h / 3 + 20) / 15, (h / 2 - 50) / 15);
        const double radius = h / 3 / 15;
        QCOMPARE(colourAt(shot, centre, radius, radius, slices[0] * 3.6 / 2), charts::SliceColour(0));
        QCOMPARE(colourAt(shot, centre, radius, radius, 360 - slices[4] * 3.6 / 2), charts::SliceColour(4));

        // The balance field: ten ranges as counted here; the second window stands one slot on.
        const int balance = elementIndex(d.Fields, "balance");
        QVERIFY(balance > 0);
        main->activateWindow(); // back from the chart window, as a click on the main window does
        QTRY_VERIFY(main->isActiveWindow());
        testsupport::field(*main, balance)->setFocus();
        QTRY_VERIFY(testsupport::field(*main, balance)->hasFocus());
        QTest::mouseClick(button, Qt::LeftButton);
        windows = main->findChildren<gui::ChartWindow *>();
        QCOMPARE(windows.size(), 2);
        gui::ChartWindow *stats = windows.last() == pie ? windows.first() : windows.last();
        QVERIFY(QTest::qWaitForWindowExposed(stats));
        QCOMPARE(stats->pos() - pie->pos(), QPoint(100 / 15, 100 / 15));
        QCOMPARE(main->charts().openWindows(), 2);
        QVERIFY(stats->typeButton(gui::ChartWindow::Histogram)->isEnabled());
        QTest::mouseClick(stats->typeButton(gui::ChartWindow::Histogram), Qt::LeftButton);
        QVERIFY(stats->histogramPanel()->isVisible());

        std::vector<double> values;
        for (const QString &v : testsupport::sampleColumn(QStringLiteral("contacts"), QStringLiteral("balance")))
            values.push_back(v.toDouble());
        const double high = *std::max_element(values.begin(), values.end());
        const double step = std::pow(10.0, std::ceil(std::log10(high / 10))); // all balances are 0 or more
        std::array<int, 10> counts{};
        for (const double v : values)
            ++counts[size_t(std::min(9, int(std::floor(v / step))))];
        list = stats->list();
        QCOMPARE(list->topLevelItemCount(), 10);
        QCOMPARE(list->topLevelItem(0)->text(0), QStringLiteral(" <=") + QString::number(int64_t(step)));
        for (int k = 0; k < 10; ++k)
            QCOMPARE(list->topLevelItem(k)->text(1).toInt(), counts[size_t(k)]);
        // A bar stands in the row's colour where its range has values, white where not.
        const QImage panel = stats->histogramPanel()->grab().toImage();
        for (int k = 1; k <= 10; ++k) {
            const QColor at = panel.pixelColor(k * 65 + 16, 628);
            if (counts[size_t(k - 1)] > 0)
                QCOMPARE(at, charts::SliceColour(k - 1));
            else
                QCOMPARE(at, QColor(Qt::white));
        }
        saveShot(stats, QStringLiteral("chart-histogram.png"));

        // A note has no chart: the message says what to do, and no window opens.
        testsupport::MessageCatcher catcher;
        main->activateWindow();
        QTRY_VERIFY(main->isActiveWindow());
        main->pageTabs()->setCurrentIndex(d.Notes[1].NotePage);
        main->canvas()->noteWidget(1)->setFocus();
        QTRY_VERIFY(main->canvas()->noteWidget(1)->hasFocus());
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_COMPARE(catcher.texts.size(), 1);
        QCOMPARE(main->findChildren<gui::ChartWindow *>().size(), 2);

        // Closing a window frees its slot: the next chart takes it.
        pie->close();
        QTRY_COMPARE(main->charts().openWindows(), 1);
    }

    void printedPieListsTheGroups()
    {
        auto main = testsupport::openActive(image_);
        gui::ChartWindow *window = main->charts().open(charts::ChartKind::Combo, comboIndex(main->design().Combos, "category"));
        QVERIFY(window);
        const QString pdf = dir_.filePath(QStringLiteral("chart.pdf"));
        // The print options come up modal; they are answered with the PDF printer.
        QTimer answer;
        answer.setInterval(10);
        connect(&answer, &QTimer::timeout, [&] {
            auto *options = qobject_cast<gui::PrintOptionsWindow *>(QApplication::activeModalWidget());
            if (!options)
                return;
            options->printerList()->setCurrentText(gui::PrintOptionsWindow::pdfPrinterName());
            Q_EMIT options->printerList()->textActivated(gui::PrintOptionsWindow::pdfPrinterName());
            options->setPdfFileName(pdf);
            options->acceptChoices();
        });
        answer.start();
        QTest::mouseClick(window->printButton(), Qt::LeftButton);
        answer.stop();
        QVERIFY(QFile::exists(pdf));
        const testsupport::ProgramRun text = testsupport::runProgram(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
        if (text.exitCode != 0)
            QSKIP("pdftotext is not installed: the printed chart cannot be read back");
        for (const char *group : {"Customer", "Supplier", "Friends", "Work", "Family", "32.00%"})
            QVERIFY2(text.out.contains(group), group);
        window->close();
    }

    void hundredWindowsAtMost()
    {
        auto main = testsupport::openActive(image_);
        const int category = comboIndex(main->design().Combos, "category");
        std::vector<gui::ChartWindow *> windows;
        for (int k = 0; k < gui::ChartActions::kMaxWindows; ++k)
            windows.push_back(main->charts().open(charts::ChartKind::Combo, category));
        QVERIFY(std::all_of(windows.begin(), windows.end(), [](gui::ChartWindow *w) { return w != nullptr; }));
        // Each slot 100 twips on from the first.
        QCOMPARE(windows[99]->pos() - windows[0]->pos(), QPoint(99 * (100 / 15), 99 * (100 / 15)));
        testsupport::MessageCatcher catcher;
        QVERIFY(!main->charts().open(charts::ChartKind::Combo, category));
        QTRY_COMPARE(catcher.texts.size(), 1);
        // A closed window's slot is taken by the next chart, at that slot's place.
        const QPoint place = windows[41]->pos();
        windows[41]->close();
        QTRY_COMPARE(main->charts().openWindows(), gui::ChartActions::kMaxWindows - 1);
        gui::ChartWindow *again = main->charts().open(charts::ChartKind::Combo, category);
        QVERIFY(again);
        QCOMPARE(again->pos(), place);
    }

private:
    // With FLATFORM_CHART_SHOTS set, the window as it stands goes into that folder.
    static void saveShot(QWidget *window, const QString &name)
    {
        const QString folder = qEnvironmentVariable("FLATFORM_CHART_SHOTS");
        if (!folder.isEmpty())
            QVERIFY(window->grab().save(QDir(folder).filePath(name)));
    }

    QTemporaryDir dir_;
    QString image_;
};

QTEST_MAIN(ChartWindowTest)
#include "test_chart_window.moc"
