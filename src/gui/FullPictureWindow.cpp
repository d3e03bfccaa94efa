#include "gui/FullPictureWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

FullPictureWindow::FullPictureWindow(QImage picture, QWidget *parent)
    : QDialog(parent), picture_(std::move(picture)), label_(new QLabel(this)), printButton_(new QPushButton(tr("Print..."), this))
{
    setWindowTitle(tr("Picture"));
    label_->setAlignment(Qt::AlignCenter);
    label_->setMinimumSize(1, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label_, 1);
    layout->addWidget(printButton_, 0, Qt::AlignRight);
    connect(printButton_, &QPushButton::clicked, this, &FullPictureWindow::printRequested);
    resize(qMin(picture_.width() + 40, 900), qMin(picture_.height() + 80, 700));
}

QSize FullPictureWindow::shownSize(QSize picture, QSize inner)
{
    double w = picture.width(), h = picture.height();
    if (w > inner.width() && w > 0) {
        const double ratio = inner.width() / w;
        w *= ratio;
        h *= ratio;
    }
    if (h > inner.height() && h > 0) {
        const double ratio = inner.height() / h;
        w *= ratio;
        h *= ratio;
    }
    return QSize(qMax(1, int(w)), qMax(1, int(h)));
}

void FullPictureWindow::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    if (!picture_.isNull())
        label_->setPixmap(QPixmap::fromImage(picture_.scaled(shownSize(picture_.size(), label_->size()), Qt::IgnoreAspectRatio,
                                                             Qt::SmoothTransformation)));
}

Status FullPictureWindow::printOn(print::Printer &printer) const
{
    const double pdpi = picture_.dotsPerMeterX() > 0 ? picture_.dotsPerMeterX() * 0.0254 : 96;
    const double widthTwips = picture_.width() * 1440.0 / pdpi;
    if (widthTwips <= printer.ScaleWidth()) {
        printer.PaintPicture(picture_, 0, 0);
    } else {
        const double factor = printer.ScaleWidth() / widthTwips;
        const double heightTwips = picture_.height() * 1440.0 / (picture_.dotsPerMeterY() > 0 ? picture_.dotsPerMeterY() * 0.0254 : 96);
        printer.PaintPicture(picture_, 0, 0, printer.ScaleWidth(), heightTwips * factor);
    }
    return printer.EndDoc();
}

} // namespace ff::gui
