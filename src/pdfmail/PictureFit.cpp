#include "pdfmail/PictureFit.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ff {

QRect PictureFit::placement(QSize source, QSize target, FitMode mode)
{
    if (source.isEmpty() || target.isEmpty())
        return {};
    if (mode == FitMode::Stretch)
        return QRect(QPoint(0, 0), target);
    const double factor = std::min(double(target.width()) / source.width(), double(target.height()) / source.height());
    // The axis that sets the factor fills the field exactly; the other is rounded and never
    // leaves the field.
    const int width = std::clamp(int(std::lround(source.width() * factor)), 1, target.width());
    const int height = std::clamp(int(std::lround(source.height() * factor)), 1, target.height());
    return QRect((target.width() - width) / 2, (target.height() - height) / 2, width, height);
}

QImage PictureFit::fit(const QImage &source, QSize target, FitMode mode, const QColor &background)
{
    const QRect place = placement(source.size(), target, mode);
    if (place.isEmpty())
        return {};
    QImage fitted(target, QImage::Format_RGB32);
    fitted.fill(background);
    const QImage scaled = source.size() == place.size()
        ? source
        : source.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&fitted);
    painter.drawImage(place.topLeft(), scaled);
    painter.end();
    return fitted;
}

} // namespace ff
