#pragma once
// The statistics command of the main window: a toolbar button and a Search menu entry that open a
// chart window for the element with the focus (a field, a combo or a check box). Up to 100 chart
// windows stand at once, each in the next free slot, cascading by 100 twips a slot from the first.

#include "charts/ChartReader.h"

#include <QObject>
#include <QPointer>
#include <array>

class QAction;
class QMenuBar;
class QToolBar;

namespace ff::gui {

class ChartWindow;
class MainWindow;

class ChartActions : public QObject {
    Q_OBJECT
public:
    static constexpr int kMaxWindows = 100;

    explicit ChartActions(MainWindow &main);

    // The toolbar button (tool tip StatsTip) and the Search menu entry.
    void addCommands(QToolBar *bar, QMenuBar *menus);
    QAction *statisticsAction() const { return action_; }

    // Opens the chart of the focused element; null when it has none (a note, nothing focused),
    // when all slots are taken or when the record on the page cannot be saved first.
    ChartWindow *openForFocus();
    ChartWindow *open(charts::ChartKind kind, int index);

    int openWindows() const;

private:
    MainWindow &main_;
    QAction *action_ = nullptr;
    std::array<QPointer<ChartWindow>, kMaxWindows> windows_{};
};

} // namespace ff::gui
