#include "design/DrawStyles.h"

namespace ff {

Qt::BrushStyle brushStyleOf(int16_t fillStyle)
{
    switch (fillStyle) {
    case 0: return Qt::SolidPattern;
    case 2: return Qt::HorPattern;
    case 3: return Qt::VerPattern;
    case 4: return Qt::FDiagPattern;
    case 5: return Qt::BDiagPattern;
    case 6: return Qt::CrossPattern;
    case 7: return Qt::DiagCrossPattern;
    default: return Qt::NoBrush;
    }
}

Qt::PenStyle penStyleOf(int16_t borderStyle)
{
    switch (borderStyle) {
    case 0: return Qt::NoPen;
    case 2: return Qt::DashLine;
    case 3: return Qt::DotLine;
    case 4: return Qt::DashDotLine;
    case 5: return Qt::DashDotDotLine;
    default: return Qt::SolidLine;
    }
}

} // namespace ff
