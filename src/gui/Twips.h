#pragma once
// Page geometry is in twips (1/1440 inch); colours are the platform's colour longs (0x00BBGGRR,
// with the high bit set for a system colour); fills are style numbers. These helpers turn them into
// what Qt draws with.

#include "design/DrawStyles.h"

#include <QColor>
#include <QRect>
#include <QWidget>
#include <cstdint>

namespace ff::gui {

// Twips per pixel for a widget's screen: 15 at 96 dpi; Qt's logical dpi follows the desktop scale.
inline double twipsPerPixel(const QWidget *w) { return 1440.0 / (w ? w->logicalDpiX() : 96); }

inline int toPixels(double twips, double tpp) { return qRound(twips / tpp); }

inline QRect twipsRect(double left, double top, double width, double height, double tpp)
{
    return QRect(toPixels(left, tpp), toPixels(top, tpp), qMax(1, toPixels(width, tpp)),
                 qMax(1, toPixels(height, tpp)));
}

QColor colorFromLong(int32_t value, const QColor &systemFallback = QColor());

} // namespace ff::gui
