#include "charts/ChartPainter.h"

#include "charts/PieSlices.h"
#include "formula/FieldFormat.h"

#include <algorithm>
#include <cmath>

namespace ff::charts {

namespace {

constexpr double kTwoPi = 6.28318530718;
constexpr double kTwipsPerPixel = 15;

// Qt's angles are sixteenths of a degree, counter-clockwise from three o'clock as the slices run.
int sixteenths(double percent) { return int(std::lround(percent * 3.6 * 16)); }

QFont sizedFont(double points, bool bold = false)
{
    QFont f;
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

} // namespace

int32_t colourLong(const QColor &c) { return int32_t(c.red() | (c.green() << 8) | (c.blue() << 16)); }

void PaintPie(QPainter &painter, const QRectF &area, const std::vector<int> &slices, bool threeD)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    const double depth = threeD ? kPieDepth : 0;
    const QRectF disc(area.left() + 1, area.top() + 1, area.width() - 2, area.height() - 2 - depth);
    if (threeD) {
        // The wall: the pie again, lower down, in the darker shades, from the bottom up.
        painter.setPen(Qt::NoPen);
        for (int d = int(depth); d >= 1; --d) {
            int from = 0;
            for (size_t k = 0; k < slices.size(); ++k) {
                painter.setBrush(WallColour(int(k)));
                painter.drawPie(disc.translated(0, d), sixteenths(from), sixteenths(slices[k]));
                from += slices[k];
            }
        }
        painter.setPen(QPen(Qt::black, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(disc.translated(0, depth), 180 * 16, 180 * 16);
        const double middle = disc.center().y();
        painter.drawLine(QPointF(disc.left(), middle), QPointF(disc.left(), middle + depth));
        painter.drawLine(QPointF(disc.right(), middle), QPointF(disc.right(), middle + depth));
    }
    painter.setPen(QPen(Qt::black, 1));
    int from = 0;
    for (size_t k = 0; k < slices.size(); ++k) {
        painter.setBrush(SliceColour(int(k)));
        if (slices[k] >= 100)
            painter.drawEllipse(disc);
        else if (slices[k] > 0)
            painter.drawPie(disc, sixteenths(from), sixteenths(slices[k]));
        from += slices[k];
    }
    painter.restore();
}

void DrawPiePiece(QPainter &painter, double height, const QColor &colour, double fromPercent, double toPercent)
{
    const double h = height * kTwipsPerPixel;
    const QPointF centre((h / 3 + 20) / kTwipsPerPixel, (h / 2 - 50) / kTwipsPerPixel);
    const double radius = h / 3 / kTwipsPerPixel;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(colour);
    const QRectF r(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    if (toPercent - fromPercent >= 100)
        painter.drawEllipse(r);
    else
        painter.drawPie(r, sixteenths(fromPercent), sixteenths(toPercent - fromPercent));
    painter.restore();
}

void DrawPiePiece(print::Printer &printer, const QColor &colour, double fromPercent, double toPercent)
{
    // Negative angles: the arc with its two radii, filled.
    const double start = -kTwoPi / 100 * fromPercent, end = -kTwoPi / 100 * toPercent;
    printer.setFillColor(colourLong(colour));
    printer.setFillStyle(0);
    if (toPercent - fromPercent >= 100)
        printer.Circle(3675, 3675, 3500, 0);
    else
        printer.Circle(3675, 3675, 3500, 0, start, end);
}

void PaintHistogram(QPainter &painter, const PieStatsData &d, const StatsHeader &header, const QLocale &locale)
{
    painter.save();
    painter.fillRect(QRect(0, 0, kPanelWidth, kPanelHeight), Qt::white);
    // The header: FontSize 12, the average and the extremes in green, the sum in black, its share
    // in red; positions in twips of 15 to a pixel.
    painter.setFont(sizedFont(12));
    const QFontMetricsF big(painter.font());
    painter.setPen(QColor(0, 128, 0));
    painter.drawText(QPointF(0, 88 / kTwipsPerPixel + big.ascent()), header.average);
    const double lowHighX = big.horizontalAdvance(header.average) + 20;
    painter.drawText(QPointF(lowHighX, 88 / kTwipsPerPixel + big.ascent()), header.lowHigh);
    painter.setPen(Qt::black);
    painter.drawText(QPointF(0, 480 / kTwipsPerPixel + big.ascent()), header.sum);
    painter.setPen(QColor(255, 0, 0));
    painter.drawText(QPointF(big.horizontalAdvance(header.sum) + 20, 480 / kTwipsPerPixel + big.ascent()), header.percent);

    painter.setFont(sizedFont(9));
    const QFontMetricsF small(painter.font());
    constexpr int step = 650 / 10;
    painter.setPen(Qt::black);
    for (int k = 1; k <= kRanges; ++k)
        for (int y = 631; y <= 635; ++y)
            painter.drawPoint(k * step + 46, y);
    // The vertical scale: eleven side labels from "0" to the top of the axis.
    for (int j = 0; j <= kRanges; ++j) {
        const double value = d.AxisTop * j / kRanges;
        const QString text = j == 0 ? QStringLiteral("0")
                             : d.AxisTop >= 10 ? QString::number(int64_t(std::lround(value)))
                                               : FormatFixed(value, 1, locale);
        const double y = 630 - 573.0 * j / kRanges;
        painter.drawText(QRectF(0, y - small.height() / 2, 44, small.height()), Qt::AlignRight | Qt::AlignVCenter, text);
    }
    for (int k = 1; k <= kRanges; ++k) {
        const int64_t count = d.RangeCounts[size_t(k - 1)];
        if (count != 0 && d.AxisTop > 0) {
            // A count above the axis's top is cut at the top of the panel's drawing area.
            const double top = std::max(630 - double(count) * (573 / d.AxisTop), 40.0);
            painter.fillRect(QRectF(QPointF(k * step + 46 - (step - 5), top), QPointF(k * step + 42, 630)), SliceColour(k - 1));
            painter.setPen(Qt::black);
            const QString share = FormatFixed(double(count) / double(d.ValueCount) * 100, 3, locale) + QLatin1Char('%');
            painter.drawText(QPointF(k * step + 44 - small.horizontalAdvance(share) / 2, top - small.descent() - 1), share);
        }
        const QString bound = BoundText(d, k, locale);
        painter.setPen(Qt::black);
        painter.drawText(QPointF(k * step + 44 - small.horizontalAdvance(bound) / 2, 636 + small.ascent()), bound);
    }
    painter.restore();
}

Status PrintPie(print::Printer &printer, const QString &title, const PieGroups &groups, const QLocale &locale)
{
    std::vector<int64_t> counts;
    for (const PieGroup &g : groups.groups)
        counts.push_back(g.count);
    const std::vector<int> slices = CreatePieSlices(PieValues(counts));
    int from = 0;
    for (size_t k = 0; k < slices.size(); ++k) {
        DrawPiePiece(printer, SliceColour(int(k)), from, from + slices[k]);
        from += slices[k];
    }
    printer.setFontName(QStringLiteral("Arial"));
    printer.setFontBold(true);
    printer.setFontSize(12);
    printer.setCurrentX(7500);
    printer.setCurrentY(200);
    printer.Print(title);
    printer.setFontBold(false);
    printer.setFontSize(9);
    double y = 7400;
    const double row = printer.TextHeight() * 1.2;
    for (size_t k = 0; k < groups.groups.size(); ++k) {
        const PieGroup &g = groups.groups[k];
        printer.Line(200, y + row * 0.15, 400, y + row * 0.85, colourLong(SliceColour(int(k))), print::LineKind::FilledBox);
        printer.setCurrentX(600);
        printer.setCurrentY(y);
        printer.Print(g.label, false);
        printer.setCurrentX(5000);
        printer.Print(QString::number(g.count), false);
        printer.setCurrentX(6500);
        printer.Print(ShareText(g.count, groups.total, locale));
        y += row;
        if (y + row > printer.ScaleHeight() && k + 1 < groups.groups.size()) {
            if (Status s = printer.NewPage(); !s)
                return s;
            y = 200;
        }
    }
    return printer.EndDoc();
}

QImage PieImage(const QString &title, const PieGroups &groups, bool threeD, const QLocale &locale)
{
    QImage image(kPanelWidth, 560, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(sizedFont(12, true));
    painter.drawText(QPointF(10, 24), title);
    std::vector<int64_t> counts;
    for (const PieGroup &g : groups.groups)
        counts.push_back(g.count);
    const std::vector<int> slices = CreatePieSlices(PieValues(counts));
    if (threeD)
        PaintPie(painter, QRectF(10, 60, 380, 300), slices, true);
    else
        PaintPie(painter, QRectF(10, 40, 380, 380), slices, false);
    painter.setFont(sizedFont(9));
    const QFontMetricsF m(painter.font());
    for (size_t k = 0; k < groups.groups.size(); ++k) {
        const PieGroup &g = groups.groups[k];
        const double y = 40 + double(k) * 16;
        painter.fillRect(QRectF(410, y + 2, 12, 12), SliceColour(int(k)));
        painter.setPen(Qt::black);
        painter.drawRect(QRectF(410, y + 2, 12, 12));
        painter.drawText(QPointF(430, y + m.ascent()), m.elidedText(g.label, Qt::ElideRight, 160));
        painter.drawText(QRectF(590, y, 50, 16), Qt::AlignRight, QString::number(g.count));
        painter.drawText(QRectF(640, y, 75, 16), Qt::AlignRight, ShareText(g.count, groups.total, locale));
    }
    return image;
}

QImage HistogramImage(const QString &title, const PieStatsData &data, const StatsHeader &header, const QLocale &locale)
{
    QImage image(kPanelWidth, kPanelHeight + 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(sizedFont(12, true));
    painter.drawText(QPointF(10, 22), title);
    painter.translate(0, 30);
    PaintHistogram(painter, data, header, locale);
    return image;
}

} // namespace ff::charts
