#pragma once
// Draws the charts: the pie control (a 2D or 3D pie whose slices are whole percentages), a pie
// piece on the chart window or on the printer at their fixed geometry, the histogram panel with
// its scale, bars, bounds and shares, and a printed pie with its list. Geometry of the window is
// in pixels, of the printer in twips.

#include "charts/PieGroups.h"
#include "charts/PieStats.h"
#include "print/Printer.h"

#include <QImage>
#include <QPainter>
#include <vector>

namespace ff::charts {

// The pie control's sizes: the depth of the 3D wall, in pixels.
constexpr int kPieDepth = 24;
// The histogram panel's size in pixels.
constexpr int kPanelWidth = 720, kPanelHeight = 660;

// The pie control: slices counter-clockwise from three o'clock, each filled with its colour and
// outlined in black, in the ellipse of `area`; `threeD` adds a darker wall kPieDepth deep.
void PaintPie(QPainter &painter, const QRectF &area, const std::vector<int> &slices, bool threeD);

// A slice from `fromPercent` to `toPercent` on the chart window whose height is `height` pixels:
// centre (height / 3 + 20, height / 2 - 50) and radius height / 3, in twips of 15 to a pixel.
void DrawPiePiece(QPainter &painter, double height, const QColor &colour, double fromPercent, double toPercent);
// The same on the printer: centre (3675, 3675) twips, radius 3500.
void DrawPiePiece(print::Printer &printer, const QColor &colour, double fromPercent, double toPercent);

// The histogram panel at its pixel geometry, with the header texts over it.
void PaintHistogram(QPainter &painter, const PieStatsData &data, const StatsHeader &header, const QLocale &locale);

// The printed pie: the pie at its printer geometry and the list of groups under it, then EndDoc.
Status PrintPie(print::Printer &printer, const QString &title, const PieGroups &groups, const QLocale &locale);

// Pictures for the command line: the pie (3D when `threeD`) with its legend, the histogram panel.
QImage PieImage(const QString &title, const PieGroups &groups, bool threeD, const QLocale &locale);
QImage HistogramImage(const QString &title, const PieStatsData &data, const StatsHeader &header, const QLocale &locale);

// A colour as the printer's colour long (0x00BBGGRR).
int32_t colourLong(const QColor &colour);

} // namespace ff::charts
