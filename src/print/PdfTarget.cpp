#include "print/PdfTarget.h"

#include <QFile>
#include <QPainter>

namespace ff::print {

PdfTarget::PdfTarget(QString fileName, QPageSize size, QPageLayout::Orientation orientation, int resolution)
    : fileName_(std::move(fileName)), layout_(size, orientation, QMarginsF(0, 0, 0, 0)), resolution_(resolution)
{
}

PdfTarget::~PdfTarget() = default;

QPaintDevice *PdfTarget::begin()
{
    writer_ = std::make_unique<QPdfWriter>(fileName_);
    writer_->setResolution(resolution_);
    writer_->setPageLayout(layout_);
    writer_->setCreator(QStringLiteral("Flatform"));
    pages_ = 1;
    return writer_.get();
}

QPaintDevice *PdfTarget::nextPage(QPainter &)
{
    if (!writer_ || !writer_->newPage())
        return nullptr;
    ++pages_;
    return writer_.get();
}

Status PdfTarget::end(bool discarded)
{
    writer_.reset(); // the painter has ended: the file is complete
    if (discarded) {
        QFile::remove(fileName_);
        return {};
    }
    QFile file(fileName_);
    if (!file.exists() || file.size() == 0)
        return makeError(ErrorCode::FileNotFound, QStringLiteral("the PDF file %1 could not be written").arg(fileName_));
    return {};
}

QRectF PdfTarget::sheetTwips() const
{
    const QRectF inch = layout_.fullRect(QPageLayout::Inch);
    return QRectF(0, 0, inch.width() * 1440, inch.height() * 1440);
}

} // namespace ff::print
