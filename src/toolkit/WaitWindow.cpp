#include "toolkit/WaitWindow.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace ff::toolkit {

WaitWindow::WaitWindow(QWidget *parent)
    : QDialog(parent), percentLabel_(new QLabel(this)), stopButton_(new QPushButton(tr("Stop"), this)),
      lightTimer_(new QTimer(this))
{
    setWindowTitle(tr("Please wait"));
    setModal(false);
    auto *layout = new QVBoxLayout(this);
    auto *lights = new QHBoxLayout;
    for (auto &block : lightBlocks_) {
        block = new QLabel(this);
        block->setFixedSize(18, 12);
        block->setAutoFillBackground(true);
        block->hide();
        lights->addWidget(block);
    }
    layout->addLayout(lights);
    percentLabel_->setAlignment(Qt::AlignCenter);
    percentLabel_->setAccessibleName(tr("Progress"));
    layout->addWidget(percentLabel_);
    layout->addWidget(stopButton_, 0, Qt::AlignCenter);
    connect(stopButton_, &QPushButton::clicked, this, [this] { ExportCancelled = true; });
    lightTimer_->setInterval(120);
    connect(lightTimer_, &QTimer::timeout, this, &WaitWindow::tick);
}

void WaitWindow::begin(const QString &text)
{
    ExportCancelled = false;
    counter_ = 0;
    percentLabel_->setText(text);
    show();
    raise();
    lightTimer_->start();
    QCoreApplication::processEvents();
}

void WaitWindow::end()
{
    lightTimer_->stop();
    hide();
}

void WaitWindow::setPercent(int percent) { percentLabel_->setText(QStringLiteral("%1%").arg(qBound(0, percent, 100))); }

QString WaitWindow::percentText() const { return percentLabel_->text(); }

bool WaitWindow::cancelled()
{
    QCoreApplication::processEvents();
    return ExportCancelled;
}

void WaitWindow::tick()
{
    // The counter walks 0..6 lighting one more block each tick; at 7 all go dark and it starts again.
    if (counter_ >= 7) {
        for (QLabel *block : lightBlocks_)
            block->hide();
        counter_ = 0;
        return;
    }
    const auto greys = blockGreys(counter_);
    QPalette pal = lightBlocks_[size_t(counter_)]->palette();
    pal.setColor(QPalette::Window, QColor(greys[0], greys[0], greys[0]));
    pal.setColor(QPalette::WindowText, QColor(greys[1], greys[1], greys[1]));
    lightBlocks_[size_t(counter_)]->setPalette(pal);
    lightBlocks_[size_t(counter_)]->show();
    ++counter_;
}

} // namespace ff::toolkit
