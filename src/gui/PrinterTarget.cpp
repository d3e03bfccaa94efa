#include "gui/PrinterTarget.h"

#include <QPainter>
#include <QPrinter>

namespace ff::gui {

QPaintDevice *PrinterTarget::begin() { return &printer_; }

QPaintDevice *PrinterTarget::nextPage(QPainter &)
{
    return printer_.newPage() ? &printer_ : nullptr;
}

void PrinterTarget::abort()
{
    printer_.abort();
}

Status PrinterTarget::end(bool discarded)
{
    if (!discarded && printer_.printerState() == QPrinter::Error)
        return makeError(ErrorCode::Invalid, QStringLiteral("the printer %1 reported an error").arg(printer_.printerName()));
    return {};
}

QRectF PrinterTarget::sheetTwips() const
{
    const QRectF inch = printer_.pageLayout().fullRect(QPageLayout::Inch);
    return QRectF(0, 0, inch.width() * 1440, inch.height() * 1440);
}

QRectF PrinterTarget::printableTwips() const
{
    const QRectF inch = printer_.pageLayout().paintRect(QPageLayout::Inch);
    return QRectF(inch.left() * 1440, inch.top() * 1440, inch.width() * 1440, inch.height() * 1440);
}

double PrinterTarget::dotsPerInchX() const { return printer_.logicalDpiX(); }
double PrinterTarget::dotsPerInchY() const { return printer_.logicalDpiY(); }

} // namespace ff::gui
