#include "print/Printer.h"

#include "design/DrawStyles.h"

#include <QFontMetricsF>
#include <QtMath>
#include <cmath>

namespace ff::print {

Printer::Printer(PrintTarget &target)
    : target_(target), sheet_(target.sheetTwips()), printable_(target.printableTwips()), dpiX_(target.dotsPerInchX()),
      dpiY_(target.dotsPerInchY())
{
    measure_ = QImage(1, 1, QImage::Format_RGB32);
    measure_.setDotsPerMeterX(int(std::lround(dpiX_ / 0.0254)));
    measure_.setDotsPerMeterY(int(std::lround(dpiY_ / 0.0254)));
    font_ = QFont(QStringLiteral("DejaVu Sans"));
    refreshFont();
}

Printer::~Printer()
{
    if (painter_.isActive())
        std::ignore = EndDoc(); // nothing is left to tell at destruction; the caller's EndDoc reports
}

QColor Printer::colorOf(int32_t colour)
{
    const auto v = static_cast<uint32_t>(colour);
    if (v & 0x80000000u) {
        switch (v & 0xFFu) {
        case 8:  // window text
        case 18: // button text
        case 7:  // menu text
            return Qt::black;
        case 15: return QColor(0xEF, 0xEF, 0xEF); // button face
        default: return Qt::white;
        }
    }
    return QColor(v & 0xFF, (v >> 8) & 0xFF, (v >> 16) & 0xFF);
}

void Printer::setZoom(int percent)
{
    zoom_ = percent > 0 ? percent : 100;
    refreshFont();
}

void Printer::setFontName(const QString &name)
{
    if (!name.isEmpty())
        font_.setFamily(name);
}

void Printer::setFontSize(double points)
{
    if (points > 0)
        fontSize_ = points;
    refreshFont();
}

void Printer::setFontBold(bool on) { font_.setBold(on); }
void Printer::setFontItalic(bool on) { font_.setItalic(on); }
void Printer::setFontUnderline(bool on) { font_.setUnderline(on); }

void Printer::setFont(const QString &name, double points, bool bold, bool italic, bool underline)
{
    setFontName(name);
    setFontSize(points);
    setFontBold(bold);
    setFontItalic(italic);
    setFontUnderline(underline);
}

void Printer::refreshFont()
{
    font_.setPointSizeF(qMax(0.5, fontSize_ * zoom_ / 100.0));
    // Text is measured as laid out on the sheet: without hinting, as a PDF and a printer lay it.
    font_.setHintingPreference(QFont::PreferNoHinting);
}

double Printer::TextWidth(const QString &text) const
{
    const QFontMetricsF metrics(font_, &measure_);
    return metrics.horizontalAdvance(text) * 1440.0 / dpiX_ * 100.0 / zoom_;
}

double Printer::TextHeight(const QString &text) const
{
    const QFontMetricsF metrics(font_, &measure_);
    const qsizetype lines = qMax<qsizetype>(1, text.count(QLatin1Char('\n')) + 1);
    return metrics.height() * double(lines) * 1440.0 / dpiY_ * 100.0 / zoom_;
}

bool Printer::ensureSheet()
{
    if (failed_)
        return false;
    if (!painter_.isActive() && !device_) {
        device_ = target_.begin();
        if (!device_ || !painter_.begin(device_)) {
            failed_ = true;
            device_ = nullptr;
            return false;
        }
        pages_ = 1;
        sheetPending_ = false;
    } else if (sheetPending_) {
        QPaintDevice *next = target_.nextPage(painter_);
        if (!next) {
            failed_ = true;
            return false;
        }
        if (next != device_ || !painter_.isActive()) {
            if (painter_.isActive())
                painter_.end();
            device_ = next;
            if (!painter_.begin(device_)) {
                failed_ = true;
                return false;
            }
        }
        ++pages_;
        sheetPending_ = false;
    }
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.setRenderHint(QPainter::TextAntialiasing, true);
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, true);
    return painter_.isActive();
}

QPen Printer::pen(int32_t colour) const
{
    Qt::PenStyle style = Qt::SolidLine;
    switch (drawStyle_) {
    case 1: style = Qt::DashLine; break;
    case 2: style = Qt::DotLine; break;
    case 3: style = Qt::DashDotLine; break;
    case 4: style = Qt::DashDotDotLine; break;
    case 5: style = Qt::NoPen; break;
    default: break;
    }
    QPen p(colorOf(colour), drawWidth_, style);
    p.setCapStyle(Qt::FlatCap);
    p.setJoinStyle(Qt::MiterJoin);
    return p;
}

QBrush Printer::brush() const
{
    return QBrush(colorOf(fillColor_), brushStyleOf(static_cast<int16_t>(fillStyle_)));
}

void Printer::Print(const QString &text, bool lineEnd)
{
    if (!ensureSheet())
        return;
    double width = 0;
    if (!text.isEmpty()) {
        const QFontMetricsF metrics(font_, device_);
        painter_.setFont(font_);
        painter_.setPen(colorOf(foreColor_));
        QString shown = text;
        shown.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
        painter_.drawText(QPointF(devX(currentX_), devY(currentY_) + metrics.ascent()), shown);
        width = TextWidth(text);
    }
    if (lineEnd) {
        currentX_ = 0;
        currentY_ += TextHeight();
    } else {
        currentX_ += width;
    }
}

void Printer::Line(double x1, double y1, double x2, double y2, int32_t colour, LineKind kind)
{
    if (!ensureSheet())
        return;
    painter_.save();
    if (kind == LineKind::Line) {
        painter_.setPen(pen(colour));
        painter_.drawLine(QPointF(devX(x1), devY(y1)), QPointF(devX(x2), devY(y2)));
    } else {
        const QRectF r = QRectF(QPointF(devX(x1), devY(y1)), QPointF(devX(x2), devY(y2))).normalized();
        if (kind == LineKind::FilledBox) {
            painter_.setPen(Qt::NoPen);
            painter_.setBrush(colorOf(colour));
            painter_.setRenderHint(QPainter::Antialiasing, false);
            painter_.drawRect(r);
        } else {
            painter_.setPen(pen(colour));
            painter_.setBrush(brush());
            painter_.drawRect(r);
        }
    }
    painter_.restore();
    currentX_ = x2;
    currentY_ = y2;
}

void Printer::Circle(double x, double y, double radius, int32_t colour, double start, double end, double aspect)
{
    if (!ensureSheet())
        return;
    if (!(aspect > 0) || !std::isfinite(aspect))
        aspect = 1;
    const double rx = aspect > 1 ? radius / aspect : radius;
    const double ry = aspect > 1 ? radius : radius * aspect;
    const QRectF r(QPointF(devX(x - rx), devY(y - ry)), QPointF(devX(x + rx), devY(y + ry)));
    painter_.save();
    painter_.setPen(pen(colour));
    painter_.setBrush(brush());
    if (start == end) {
        painter_.drawEllipse(r);
    } else {
        const double from = std::fabs(start), to = std::fabs(end);
        double span = to - from;
        if (span < 0)
            span += 2 * M_PI;
        const int a = int(std::lround(qRadiansToDegrees(from) * 16)), b = int(std::lround(qRadiansToDegrees(span) * 16));
        // A negative angle (also -0) draws the radius to that end: both negative close a filled wedge.
        if (std::signbit(start) && std::signbit(end))
            painter_.drawPie(r, a, b);
        else
            painter_.drawArc(r, a, b);
    }
    painter_.restore();
    currentX_ = x;
    currentY_ = y;
}

void Printer::drawPixels(const QImage &picture, const QRectF &target, const QRectF &source)
{
    if (!ensureSheet() || picture.isNull())
        return;
    const double z = zoom_ / 100.0;
    const QRectF to = QRectF(target.left() * z, target.top() * z, target.width() * z, target.height() * z).normalized();
    const bool flipX = target.width() < 0, flipY = target.height() < 0;
    if (flipX || flipY)
        painter_.drawImage(to, picture.mirrored(flipX, flipY),
                           QRectF(flipX ? picture.width() - source.right() : source.left(),
                                  flipY ? picture.height() - source.bottom() : source.top(), source.width(),
                                  source.height()));
    else
        painter_.drawImage(to, picture, source);
}

void Printer::PaintPicture(const QImage &picture, double x, double y, double width, double height, QRectF source,
                           RasterOp op)
{
    if (picture.isNull() || !ensureSheet())
        return;
    // The picture's own size in twips, from its resolution (screen pictures: 96 dpi).
    const double pdpiX = picture.dotsPerMeterX() > 0 ? picture.dotsPerMeterX() * 0.0254 : 96;
    const double pdpiY = picture.dotsPerMeterY() > 0 ? picture.dotsPerMeterY() * 0.0254 : 96;
    const double naturalW = picture.width() * 1440.0 / pdpiX, naturalH = picture.height() * 1440.0 / pdpiY;
    if (source.isEmpty())
        source = QRectF(0, 0, naturalW, naturalH);
    if (width < 0)
        width = source.width();
    if (height < 0)
        height = source.height();
    const QRectF from(source.left() * pdpiX / 1440, source.top() * pdpiY / 1440, source.width() * pdpiX / 1440,
                      source.height() * pdpiY / 1440);
    const QRectF to(devX(x), devY(y), devX(width), devY(height));

    QImage drawn = picture;
    painter_.save();
    if (op != RasterOp::Copy && target_.rasterDevice()) {
        painter_.setCompositionMode(op == RasterOp::MergePaint ? QPainter::RasterOp_NotSourceOrDestination
                                                                : QPainter::RasterOp_SourceAndDestination);
        drawn = picture.convertToFormat(QImage::Format_RGB32);
    } else if (op != RasterOp::Copy) {
        // The effect of the operation in a masked picture, drawn over what is there.
        drawn = picture.convertToFormat(QImage::Format_ARGB32);
        for (int py = 0; py < drawn.height(); ++py) {
            auto *line = reinterpret_cast<QRgb *>(drawn.scanLine(py));
            for (int px = 0; px < drawn.width(); ++px) {
                const QRgb c = line[px] | 0xFF000000u;
                if (op == RasterOp::MergePaint)
                    line[px] = (c & 0x00FFFFFFu) == 0 ? 0xFFFFFFFFu : 0u; // black in the mask: whiten
                else
                    line[px] = (c & 0x00FFFFFFu) == 0x00FFFFFFu ? 0u : c; // white adds nothing to AND
            }
        }
    }
    painter_.drawImage(to, drawn, from);
    painter_.restore();
}

void Printer::RoundRect(double left, double top, double right, double bottom, double cornerWidth, double cornerHeight)
{
    if (!ensureSheet())
        return;
    const double z = zoom_ / 100.0;
    painter_.save();
    painter_.setPen(pen(foreColor_));
    painter_.setBrush(brush());
    painter_.drawRoundedRect(QRectF(QPointF(left * z, top * z), QPointF(right * z, bottom * z)).normalized(),
                             cornerWidth * z / 2, cornerHeight * z / 2);
    painter_.restore();
}

Status Printer::NewPage()
{
    if (!ensureSheet())
        return makeError(ErrorCode::Invalid, QStringLiteral("the printer could not start a sheet"));
    sheetPending_ = true;
    currentX_ = currentY_ = 0;
    return {};
}

Status Printer::EndDoc()
{
    if (!painter_.isActive() && !device_) {
        if (failed_) {
            failed_ = false;
            return makeError(ErrorCode::Invalid, QStringLiteral("the printer could not start the document"));
        }
        return {};
    }
    if (painter_.isActive())
        painter_.end();
    device_ = nullptr;
    sheetPending_ = false;
    const bool failed = failed_;
    failed_ = false;
    Status ended = target_.end(false);
    if (failed && ended)
        return makeError(ErrorCode::Invalid, QStringLiteral("the printer stopped in the middle of the document"));
    return ended;
}

void Printer::KillDoc()
{
    if (painter_.isActive())
        target_.abort();
    if (painter_.isActive())
        painter_.end();
    if (device_)
        std::ignore = target_.end(true); // thrown away: nothing of it is kept to report on
    device_ = nullptr;
    sheetPending_ = false;
    failed_ = false;
    pages_ = 0;
}

} // namespace ff::print
