#pragma once
// Where a Printer's sheets go: a PDF file, a printer of the system (in the window tier), a list of
// pictures for a preview or a test. The Printer asks the target for the device of the first sheet,
// for each further sheet, and tells it at the end whether the document was kept or thrown away.

#include "core/Result.h"

#include <QPaintDevice>
#include <QRectF>

class QPainter;

namespace ff::print {

class PrintTarget {
public:
    virtual ~PrintTarget() = default;

    // The device of the first sheet; null when the document cannot be started.
    virtual QPaintDevice *begin() = 0;
    // The next sheet. A paged device turns the page under the active painter and returns itself;
    // a target of separate pictures returns a new device, on which the Printer starts its painter
    // again. Null: no further sheet can be made.
    virtual QPaintDevice *nextPage(QPainter &painter) = 0;
    // The job is thrown away (KillDoc); called while the painter is still active.
    virtual void abort() {}
    // After the painter has ended: the file is completed, or removed when `discarded`.
    virtual Status end(bool discarded) = 0;

    // The whole sheet and the part of it that can be printed, in twips, the printable part relative
    // to the sheet's top left corner. Valid before begin().
    virtual QRectF sheetTwips() const = 0;
    virtual QRectF printableTwips() const = 0;
    // Device pixels per inch.
    virtual double dotsPerInchX() const = 0;
    virtual double dotsPerInchY() const = 0;
    // True when the device does raster operations (a picture in memory); a PDF or a printer draws
    // them by their effect.
    virtual bool rasterDevice() const { return false; }
};

} // namespace ff::print
