#include "gui/ChartActions.h"

#include "entry/FieldEntry.h"
#include "gui/ChartWindow.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "store/Database.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>

namespace ff::gui {

ChartActions::ChartActions(MainWindow &main) : QObject(&main), main_(main) {}

void ChartActions::addCommands(QToolBar *bar, QMenuBar *menus)
{
    const Design &d = main_.design();
    action_ = new QAction(main_.style()->standardIcon(QStyle::SP_FileDialogContentsView), tr("&Statistics..."), this);
    action_->setObjectName(QStringLiteral("statisticsCommand"));
    action_->setToolTip(d.StatsTip.isEmpty() ? tr("Statistics of the field with the focus") : d.StatsTip);
    connect(action_, &QAction::triggered, this, [this] { openForFocus(); });
    bar->addAction(action_);
    // Beside the search and sort commands; a window without them gets a menu of its own.
    QMenu *search = nullptr;
    for (QAction *entry : menus->actions())
        if (entry->menu() && entry->text() == tr("&Search"))
            search = entry->menu();
    if (search)
        search->addSeparator();
    else
        search = menus->addMenu(tr("&Statistics"));
    search->addAction(action_);
}

int ChartActions::openWindows() const
{
    return int(std::count_if(windows_.begin(), windows_.end(), [](const QPointer<ChartWindow> &w) { return !w.isNull(); }));
}

ChartWindow *ChartActions::openForFocus()
{
    const EntryState &state = main_.entry().state();
    switch (state.focusKind) {
    case FocusKind::Field: return open(charts::ChartKind::Field, state.focusIndex);
    case FocusKind::Combo: return open(charts::ChartKind::Combo, state.focusIndex);
    case FocusKind::Check: return open(charts::ChartKind::Check, state.focusIndex);
    default: break;
    }
    main_.host().ShowMessage(QString(), tr("Put the cursor in a field, a combo or a check box to chart it."), 0);
    return nullptr;
}

ChartWindow *ChartActions::open(charts::ChartKind kind, int index)
{
    RecordStore &store = main_.database().store();
    if (!store.SaveIfDirty())
        return nullptr; // the save has told why; the chart would miss the record on the page
    const auto free = std::find_if(windows_.begin(), windows_.end(), [](const QPointer<ChartWindow> &w) { return w.isNull(); });
    if (free == windows_.end()) {
        main_.host().ShowMessage(QString(), tr("At most %1 chart windows can be open.").arg(kMaxWindows), 0);
        return nullptr;
    }
    const int slot = int(free - windows_.begin());
    // Each slot stands 100 twips (at 15 to a pixel) right of and under the first.
    const QPoint first = windows_[0] ? windows_[0]->pos() : main_.pos() + QPoint(40, 40);
    const int step = 100 / 15;
    auto *window = new ChartWindow(store, kind, index, &main_.printing(), &main_);
    *free = window;
    window->resize(900, 640);
    window->move(first + QPoint(slot * step, slot * step));
    window->show();
    if (!window->run()) {
        window->deleteLater(); // closed while reading
        return nullptr;
    }
    window->setAttribute(Qt::WA_DeleteOnClose, true);
    return window;
}

} // namespace ff::gui
