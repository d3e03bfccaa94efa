#pragma once
// Sheets into a PDF file through QPdfWriter: the page size and orientation of the print options,
// no margins, so that the printable area is the whole sheet; text stays text in the file.

#include "print/PrintTarget.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QString>
#include <memory>

namespace ff::print {

class PdfTarget : public PrintTarget {
public:
    // `resolution`: device pixels per inch, those of a common printer unless told otherwise.
    explicit PdfTarget(QString fileName, QPageSize size = QPageSize(QPageSize::A4),
                       QPageLayout::Orientation orientation = QPageLayout::Portrait, int resolution = 600);
    ~PdfTarget() override;

    QPaintDevice *begin() override;
    QPaintDevice *nextPage(QPainter &painter) override;
    Status end(bool discarded) override;
    QRectF sheetTwips() const override;
    QRectF printableTwips() const override { return sheetTwips(); }
    double dotsPerInchX() const override { return resolution_; }
    double dotsPerInchY() const override { return resolution_; }

    const QString &fileName() const { return fileName_; }
    // Sheets begun so far.
    int pages() const { return pages_; }

private:
    QString fileName_;
    QPageLayout layout_;
    int resolution_;
    std::unique_ptr<QPdfWriter> writer_;
    int pages_ = 0;
};

} // namespace ff::print
