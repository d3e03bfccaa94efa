#include "gui/ChartWindow.h"

#include "charts/ChartPainter.h"
#include "charts/PieSlices.h"
#include "gui/PrintActions.h"
#include "gui/PrintOptionsWindow.h"
#include "gui/PrinterTarget.h"
#include "store/RecordStore.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

// The pie control: 3D through the pie painter, 2D as the window's pie pieces.
class PieView : public QWidget {
public:
    PieView(const std::vector<int> &slices, bool threeD, QWidget *parent)
        : QWidget(parent), slices_(slices), threeD_(threeD)
    {
        setMinimumSize(420, 420);
        setAutoFillBackground(true);
        setBackgroundRole(QPalette::Base);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        if (threeD_) {
            const double side = std::min(width(), height()) - 20;
            charts::PaintPie(painter, QRectF(10, 10, side, side * 0.8), slices_, true);
            return;
        }
        double from = 0;
        for (size_t k = 0; k < slices_.size(); ++k) {
            charts::DrawPiePiece(painter, height(), charts::SliceColour(int(k)), from, from + slices_[k]);
            from += slices_[k];
        }
    }

private:
    const std::vector<int> &slices_;
    bool threeD_;
};

class HistogramPanel : public QWidget {
public:
    HistogramPanel(const charts::ChartModel &model, QWidget *parent) : QWidget(parent), model_(model)
    {
        setFixedSize(charts::kPanelWidth, charts::kPanelHeight);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        charts::PaintHistogram(painter, model_.stats, model_.header, QLocale());
    }

private:
    const charts::ChartModel &model_;
};

QIcon colourBox(const QColor &colour)
{
    QPixmap box(12, 12);
    box.fill(colour);
    QPainter p(&box);
    p.setPen(Qt::black);
    p.drawRect(0, 0, 11, 11);
    return QIcon(box);
}

} // namespace

// The reading's progress: the bar, events let through, the stop learned.
class ChartWindow::Reading : public Progress {
public:
    explicit Reading(ChartWindow &window) : window_(window) {}
    void setPercent(int percent) override { window_.progress_->setValue(percent); }
    bool cancelled() override
    {
        QApplication::processEvents();
        return window_.stop_;
    }

private:
    ChartWindow &window_;
};

ChartWindow::ChartWindow(RecordStore &store, charts::ChartKind kind, int index, PrintActions *printing, QWidget *parent)
    : QWidget(parent, Qt::Window), store_(store), kind_(kind), index_(index), printing_(printing)
{
    setObjectName(QStringLiteral("chartWindow"));
    const QString title = charts::ChartTitle(store.design(), kind, index);
    setWindowTitle(title);
    header_ = new QLabel(title, this);
    QFont big = header_->font();
    big.setPointSizeF(big.pointSizeF() * 1.3);
    big.setBold(true);
    header_->setFont(big);

    auto *buttons = new QHBoxLayout;
    types_ = new QButtonGroup(this);
    const QString captions[3] = {tr("3D pie"), tr("2D pie"), tr("Histogram")};
    for (int t = 0; t < 3; ++t) {
        auto *b = new QPushButton(captions[t], this);
        b->setCheckable(true);
        b->setObjectName(QStringLiteral("chartType%1").arg(t));
        types_->addButton(b, t);
        buttons->addWidget(b);
        typeButtons_[size_t(t)] = b;
    }
    connect(types_, &QButtonGroup::idClicked, this, &ChartWindow::setChartType);
    buttons->addStretch();
    printButton_ = new QPushButton(tr("Print..."), this);
    printButton_->setObjectName(QStringLiteral("printButton"));
    connect(printButton_, &QPushButton::clicked, this, &ChartWindow::print);
    buttons->addWidget(printButton_);

    stack_ = new QStackedWidget(this);
    pie3D_ = new PieView(slices_, true, stack_);
    pie2D_ = new PieView(slices_, false, stack_);
    histogram_ = new HistogramPanel(model_, stack_);
    stack_->addWidget(pie3D_);
    stack_->addWidget(pie2D_);
    stack_->addWidget(histogram_);

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("chartList"));
    list_->setColumnCount(3);
    list_->setHeaderLabels({tr("Value"), tr("Count"), tr("Share")});
    list_->setRootIsDecorated(false);
    list_->setMinimumWidth(300);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);

    progress_ = new QProgressBar(this);
    progress_->setRange(0, 100);

    auto *body = new QHBoxLayout;
    body->addWidget(stack_, 1);
    body->addWidget(list_);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header_);
    layout->addLayout(buttons);
    layout->addLayout(body, 1);
    layout->addWidget(progress_);
    setChartType(Pie3D);
}

bool ChartWindow::run()
{
    running_ = true;
    printButton_->setEnabled(false);
    Reading reading(*this);
    model_ = charts::BuildChart(store_, kind_, index_, QLocale(), &reading);
    running_ = false;
    progress_->hide();
    if (stop_)
        return false;
    std::vector<int64_t> counts;
    for (const charts::PieGroup &g : model_.groups.groups)
        counts.push_back(g.count);
    slices_ = charts::CreatePieSlices(charts::PieValues(counts));
    typeButtons_[Histogram]->setEnabled(model_.numeric);
    printButton_->setEnabled(model_.groups.total > 0);
    setChartType(type_);
    return true;
}

void ChartWindow::setChartType(int type)
{
    if (type == Histogram && !model_.numeric && !running_ && model_.valid)
        type = Pie3D;
    // Type 1 the 2D pie, 2 the histogram panel, any other the 3D pie.
    type_ = (type == Pie2D || type == Histogram) ? type : Pie3D;
    stack_->setCurrentIndex(type_);
    typeButtons_[size_t(type_)]->setChecked(true);
    fillList();
    stack_->currentWidget()->update();
}

void ChartWindow::fillList()
{
    list_->clear();
    const QLocale locale;
    if (type_ == Histogram) {
        const std::vector<charts::StatsRow> &rows = model_.rows;
        for (size_t k = 0; k < rows.size(); ++k) {
            auto *item = new QTreeWidgetItem(list_, {rows[k].range, rows[k].count, rows[k].share});
            item->setIcon(0, colourBox(charts::SliceColour(int(k))));
        }
    } else {
        const std::vector<charts::PieGroup> &groups = model_.groups.groups;
        for (size_t k = 0; k < groups.size(); ++k) {
            auto *item = new QTreeWidgetItem(
                list_, {groups[k].label, QString::number(groups[k].count), charts::ShareText(groups[k].count, model_.groups.total, locale)});
            item->setIcon(0, colourBox(charts::SliceColour(int(k))));
        }
    }
    for (int c = 1; c < 3; ++c) {
        list_->resizeColumnToContents(c);
        for (int r = 0; r < list_->topLevelItemCount(); ++r)
            list_->topLevelItem(r)->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }
}

void ChartWindow::print()
{
    if (!printing_ || model_.groups.total == 0)
        return;
    QPrinter &printer = printing_->printer();
    PrintOptionsWindow options(printer, printing_->applicationKey(), QSizeF(11906, 16838), this);
    options.setRange(1, 1, 1, false);
    options.applyStoredChoices();
    options.exec();
    if (options.PrintCancelled())
        return;
    const bool pie = type_ != Histogram;
    // The panel as it stands, grabbed before the printer takes over.
    const QImage panel = pie ? QImage() : stack_->currentWidget()->grab().toImage();
    for (int copy = 0; copy < std::max(1, options.copies()); ++copy) {
        PrinterTarget target(printer);
        print::Printer device(target);
        Status printed;
        if (pie) {
            printed = charts::PrintPie(device, model_.title, model_.groups, QLocale());
        } else {
            device.PaintPicture(panel, 0, 0);
            printed = device.EndDoc();
        }
        if (!printed) {
            QMessageBox::warning(this, windowTitle(), printed.error().text);
            return;
        }
    }
}

void ChartWindow::closeEvent(QCloseEvent *event)
{
    // A running read stops at its next test; the window goes once it has.
    stop_ = true;
    QWidget::closeEvent(event);
}

} // namespace ff::gui
