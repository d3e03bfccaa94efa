#include "toolkit/Form4.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace ff::toolkit {

Form4::Form4(QWidget *parent)
    : QDialog(parent), Label1(new QLabel(this)), Command1(new QPushButton(tr("Stop"), this)),
      WaitGo(new QTimer(this))
{
    setWindowTitle(tr("Please wait"));
    setModal(false);
    auto *layout = new QVBoxLayout(this);
    auto *lights = new QHBoxLayout;
    for (auto &block : Shape1) {
        block = new QLabel(this);
        block->setFixedSize(18, 12);
        block->setAutoFillBackground(true);
        block->hide();
        lights->addWidget(block);
    }
    layout->addLayout(lights);
    Label1->setAlignment(Qt::AlignCenter);
    Label1->setAccessibleName(tr("Progress"));
    layout->addWidget(Label1);
    layout->addWidget(Command1, 0, Qt::AlignCenter);
    connect(Command1, &QPushButton::clicked, this, [this] { ExportCancelled = true; });
    WaitGo->setInterval(120);
    connect(WaitGo, &QTimer::timeout, this, &Form4::tick);
}

void Form4::begin(const QString &text)
{
    ExportCancelled = false;
    counter_ = 0;
    Label1->setText(text);
    show();
    raise();
    WaitGo->start();
    QCoreApplication::processEvents();
}

void Form4::end()
{
    WaitGo->stop();
    hide();
}

void Form4::setPercent(int percent) { Label1->setText(QStringLiteral("%1%").arg(qBound(0, percent, 100))); }

QString Form4::percentText() const { return Label1->text(); }

bool Form4::cancelled()
{
    QCoreApplication::processEvents();
    return ExportCancelled;
}

void Form4::tick()
{
    // The counter walks 0..6 lighting one more block each tick; at 7 all go dark and it starts again.
    if (counter_ >= 7) {
        for (QLabel *block : Shape1)
            block->hide();
        counter_ = 0;
        return;
    }
    const auto greys = blockGreys(counter_);
    QPalette pal = Shape1[size_t(counter_)]->palette();
    pal.setColor(QPalette::Window, QColor(greys[0], greys[0], greys[0]));
    pal.setColor(QPalette::WindowText, QColor(greys[1], greys[1], greys[1]));
    Shape1[size_t(counter_)]->setPalette(pal);
    Shape1[size_t(counter_)]->show();
    ++counter_;
}

} // namespace ff::toolkit
