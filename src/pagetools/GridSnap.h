#pragma once
// The snap grid of page editing. The popup menu offers grids of 1/4 and 1/2 inch and of 1/4, 1/2
// and 1 centimetre; a dropped or sized element then lands on the nearest grid line. The page works
// in twips; a snap reads the value in the grid's unit, rounds it to a whole number of grid steps
// (a half goes to the even step, as the runtime's Round does) and turns it back into twips.

#include <cstdint>
#include <vector>

namespace ff {

// The page's scale modes that a grid reads in.
enum class GridScale : uint8_t { Inches = 5, Centimetres = 7 };

struct Grid {
    float GridX = 0, GridY = 0; // grid steps in GridScale units; 0 means no snap
    GridScale scale = GridScale::Inches;

    bool on() const { return GridX > 0 && GridY > 0; }
    bool operator==(const Grid &) const = default;
};

// One tick of the ruler drawn along the page's edges while a grid is on.
struct RulerTick {
    int position = 0; // twips from the page's edge
    int length = 0;   // twips
};

class GridSnap {
public:
    static constexpr double TwipsPerInch = 1440.0;
    static constexpr double TwipsPerCentimetre = 1440.0 / 2.54;

    // The snap menu's entries by their place in the menu: 2 and 3 the inch grids, 5, 6 and 7 the
    // centimetre grids. Any other index is no grid.
    static Grid menuGrid(int menuIndex);
    // Choosing menu entry `menuIndex` while `checkedIndex` is checked (-1 none): an entry chosen
    // again switches the grid off; another one switches to its grid. `checkedIndex` becomes the
    // checked entry afterwards (-1 when the grid is off).
    static Grid choose(int menuIndex, int &checkedIndex);

    static double twipsPerUnit(GridScale scale);
    // Half-to-even rounding of the runtime: 2.5 -> 2, 3.5 -> 4, -2.5 -> -2.
    static double roundHalfEven(double value);
    // A place or size in twips on the grid line nearest to it; unchanged when `step` is 0.
    static int32_t snap(int32_t twips, float step, GridScale scale);

    // Ticks every tenth of a unit along a page edge `lengthTwips` long: a tenth of a unit long,
    // and two tenths at each whole unit.
    static std::vector<RulerTick> rulerTicks(double lengthTwips, GridScale scale);
};

} // namespace ff
