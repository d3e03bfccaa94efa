#include "print/ImageTarget.h"

#include <QPainter>
#include <cmath>

namespace ff::print {

ImageTarget::ImageTarget(QSizeF sheet, double dotsPerInch) : sheet_(sheet), dpi_(dotsPerInch) {}

QImage ImageTarget::blankSheet() const
{
    const int w = qMax(1, int(std::lround(sheet_.width() * dpi_ / 1440)));
    const int h = qMax(1, int(std::lround(sheet_.height() * dpi_ / 1440)));
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    const int dotsPerMeter = int(std::lround(dpi_ / 0.0254));
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return image;
}

QPaintDevice *ImageTarget::begin()
{
    pages_.clear();
    pages_.push_back(blankSheet());
    return &pages_.back();
}

QPaintDevice *ImageTarget::nextPage(QPainter &painter)
{
    if (painter.isActive())
        painter.end(); // before the list grows and the last sheet moves
    pages_.push_back(blankSheet());
    return &pages_.back();
}

Status ImageTarget::end(bool discarded)
{
    if (discarded)
        pages_.clear();
    return {};
}

} // namespace ff::print
