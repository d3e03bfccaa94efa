#pragma once
// The main window: the page box with its elements, the tabs of the pages in use and the status
// line. It shows the design read from the app image; if the design could not be read completely,
// it opens with what was read and says so in the status line.

#include "design/AppPaths.h"
#include "design/DesignReader.h"

#include <QMainWindow>

class QLabel;
class QScrollArea;
class QTabBar;

namespace ff::gui {

class PageCanvas;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    MainWindow(AppPaths paths, DesignLoad load, QWidget *parent = nullptr);

    const Design &design() const { return load_.design; }
    PageCanvas *canvas() const { return canvas_; }
    QTabBar *pageTabs() const { return tabs_; }
    QString statusText() const;

private:
    void showPage(int page);

    AppPaths paths_;
    DesignLoad load_;
    PageCanvas *canvas_ = nullptr;
    QTabBar *tabs_ = nullptr;
    QScrollArea *scroll_ = nullptr;
    QLabel *status_ = nullptr;
};

} // namespace ff::gui
