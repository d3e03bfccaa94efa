#include "gui/MainWindow.h"

#include "gui/PageCanvas.h"
#include "gui/Twips.h"

#include <QLabel>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabBar>
#include <QVBoxLayout>

namespace ff::gui {

MainWindow::MainWindow(AppPaths paths, DesignLoad load, QWidget *parent)
    : QMainWindow(parent), paths_(std::move(paths)), load_(std::move(load))
{
    const Design &d = load_.design;
    setWindowTitle(d.MainCap.isEmpty() ? paths_.AppBase : d.MainCap);
    if (!d.AppFontName.isEmpty()) {
        QFont f = font();
        f.setFamily(d.AppFontName);
        setFont(f);
    }

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    tabs_ = new QTabBar(central);
    tabs_->setAccessibleName(tr("Pages"));
    tabs_->setExpanding(false);
    tabs_->setDocumentMode(true);
    for (int page = 0; page <= d.PageCount && page < kPageLimit; ++page) {
        const QString caption = d.PageCaptions[size_t(page)];
        tabs_->addTab(caption.isEmpty() ? tr("Page %1").arg(page + 1) : caption);
    }
    // Without the tab bar the page takes its room, and no tab shows.
    tabs_->setVisible(d.Frame1Visible);
    connect(tabs_, &QTabBar::currentChanged, this, &MainWindow::showPage);
    layout->addWidget(tabs_);

    canvas_ = new PageCanvas(d, paths_.AppFolder, central);
    scroll_ = new QScrollArea(central);
    scroll_->setWidget(canvas_);
    scroll_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setBackgroundRole(QPalette::Dark);
    layout->addWidget(scroll_, 1);
    setCentralWidget(central);

    status_ = new QLabel(this);
    statusBar()->addWidget(status_, 1);
    if (!load_.complete()) {
        status_->setText(tr("The design could not be read completely: %1").arg(load_.error.text));
    } else {
        status_->setText(tr("Ready"));
    }

    const QSize page = canvas_->size();
    resize(qMin(page.width() + 2, 1400), qMin(page.height() + tabs_->sizeHint().height() + statusBar()->sizeHint().height() + 2, 1000));
}

QString MainWindow::statusText() const { return status_->text(); }

void MainWindow::showPage(int page) { canvas_->showPage(page); }

} // namespace ff::gui
