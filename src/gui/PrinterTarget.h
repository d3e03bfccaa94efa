#pragma once
// A system printer as the target of the printer device: the sheets go to a QPrinter as the
// print options set it up; KillDoc aborts the job.

#include "print/PrintTarget.h"

class QPrinter;

namespace ff::gui {

class PrinterTarget : public print::PrintTarget {
public:
    explicit PrinterTarget(QPrinter &printer) : printer_(printer) {}

    QPaintDevice *begin() override;
    QPaintDevice *nextPage(QPainter &painter) override;
    void abort() override;
    Status end(bool discarded) override;
    QRectF sheetTwips() const override;
    QRectF printableTwips() const override;
    double dotsPerInchX() const override;
    double dotsPerInchY() const override;

private:
    QPrinter &printer_;
};

} // namespace ff::gui
