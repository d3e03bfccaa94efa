// Times a search in the real window, as a person meets it: the main window opens an image and its
// data, the search line window gets a line, Enter goes to its focused widget, and the clock stops
// when the results window shows its rows on screen. Prints the median of several presses.
//
//   ff_results_window_bench IMAGE DATA "select ... where ..." [REPEAT]
//
// A benchmark, not a test: run it on the search benchmark's records (bench/run.py makes them) with
// a display (xvfb-run) or QT_QPA_PLATFORM=offscreen.

#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "design/WorkingLocale.h"
#include "gui/MainWindow.h"
#include "gui/ResultsWindow.h"
#include "gui/SearchLineWindow.h"
#include "toolkit/SortableList.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    ff::UseWorkingLocale();
    const QStringList args = app.arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "usage: %s IMAGE DATA \"SEARCH LINE\" [REPEAT]\n", argv[0]);
        return 2;
    }
    const QString image = args[1];
    const int repeat = args.size() > 4 ? std::max(1, args[4].toInt()) : 5;
    ff::DesignReadOptions options;
    ff::gui::MainWindow window(ff::ParseCommandLine(image, {args[2]}), ff::ReadDesign(image, options));
    if (!window.started())
        return 1;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;

    std::vector<double> times;
    int rows = 0;
    for (int k = 0; k < repeat + 1; ++k) { // the first press warms the caches
        window.findenAction(0)->trigger();
        ff::gui::SearchLineWindow *line = window.searchWindow();
        line->activateWindow();
        if (!QTest::qWaitForWindowActive(line)) {
            std::fprintf(stderr, "the search line window did not become active\n");
            return 1;
        }
        line->lineBox()->setFocus();
        line->lineBox()->setEditText(args[3]);
        QApplication::processEvents();
        QWidget *focused = QApplication::focusWidget();
        const QList<ff::gui::ResultsWindow *> before = window.findChildren<ff::gui::ResultsWindow *>();
        QElapsedTimer clock;
        clock.start();
        QTest::keyClick(focused ? focused : line, Qt::Key_Return);
        ff::gui::ResultsWindow *results = nullptr;
        while (!results && clock.elapsed() < 60000) {
            for (ff::gui::ResultsWindow *w : window.findChildren<ff::gui::ResultsWindow *>())
                if (!before.contains(w) && w->isVisible() && w->list()->rowCount() > 0)
                    results = w;
            if (!results)
                QApplication::processEvents();
        }
        if (!results) {
            std::fprintf(stderr, "no results window within a minute\n");
            return 1;
        }
        results->list()->view()->viewport()->repaint(); // the rows drawn
        const double ms = double(clock.nsecsElapsed()) / 1e6;
        rows = results->list()->rowCount();
        if (k > 0)
            times.push_back(ms);
        results->close();
        QApplication::processEvents();
    }
    std::sort(times.begin(), times.end());
    std::printf("results window: %d rows shown %.0f ms after Enter (median of %d; fastest %.0f, slowest %.0f)\n", rows,
                times[times.size() / 2], int(times.size()), times.front(), times.back());
    return 0;
}
