#pragma once
// The design's style numbers of shapes, lines and scroll bars as the patterns Qt draws with; the
// window, the record pages and the prints all draw the same page.

#include <Qt>
#include <cstdint>

namespace ff {

// A fill style number as a brush pattern: 0 solid, 1 transparent, 2 horizontal lines, 3 vertical
// lines, 4 and 5 diagonals, 6 cross, 7 diagonal cross; other numbers are transparent.
Qt::BrushStyle brushStyleOf(int16_t fillStyle);
// A border style number as a pen: 0 none, 1 solid, 2 dashes, 3 dots, 4 dash-dot, 5 dash-dot-dot;
// other numbers are solid.
Qt::PenStyle penStyleOf(int16_t borderStyle);

} // namespace ff
