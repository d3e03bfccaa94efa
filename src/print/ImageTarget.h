#pragma once
// Sheets as pictures in memory: the report preview shows them, tests look at their pixels. Each
// sheet is a white picture of the sheet's size at the given resolution (96 dpi: one pixel for 15
// twips, as on the screen).

#include "print/PrintTarget.h"

#include <QImage>
#include <QSizeF>
#include <vector>

namespace ff::print {

class ImageTarget : public PrintTarget {
public:
    // `sheet` in twips.
    explicit ImageTarget(QSizeF sheet, double dotsPerInch = 96);

    QPaintDevice *begin() override;
    QPaintDevice *nextPage(QPainter &painter) override;
    Status end(bool discarded) override;
    QRectF sheetTwips() const override { return QRectF(QPointF(0, 0), sheet_); }
    QRectF printableTwips() const override { return sheetTwips(); }
    double dotsPerInchX() const override { return dpi_; }
    double dotsPerInchY() const override { return dpi_; }
    bool rasterDevice() const override { return true; }

    // The sheets drawn; after a discarded job, none.
    const std::vector<QImage> &pages() const { return pages_; }

private:
    QImage blankSheet() const;

    QSizeF sheet_;
    double dpi_;
    std::vector<QImage> pages_;
};

} // namespace ff::print
