#include "pagetools/GridSnap.h"

#include <cmath>

namespace ff {

Grid GridSnap::menuGrid(int menuIndex)
{
    switch (menuIndex) {
    case 2: return {0.25f, 0.25f, GridScale::Inches};
    case 3: return {0.5f, 0.5f, GridScale::Inches};
    case 5: return {0.25f, 0.25f, GridScale::Centimetres};
    case 6: return {0.5f, 0.5f, GridScale::Centimetres};
    case 7: return {1.0f, 1.0f, GridScale::Centimetres};
    default: return {};
    }
}

Grid GridSnap::choose(int menuIndex, int &checkedIndex)
{
    const Grid grid = menuGrid(menuIndex);
    if (!grid.on() || menuIndex == checkedIndex) {
        checkedIndex = -1;
        return {0, 0, grid.on() ? grid.scale : GridScale::Centimetres};
    }
    checkedIndex = menuIndex;
    return grid;
}

double GridSnap::twipsPerUnit(GridScale scale)
{
    return scale == GridScale::Centimetres ? TwipsPerCentimetre : TwipsPerInch;
}

double GridSnap::roundHalfEven(double value)
{
    const double floor = std::floor(value);
    const double rest = value - floor;
    if (rest > 0.5)
        return floor + 1;
    if (rest < 0.5)
        return floor;
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

int32_t GridSnap::snap(int32_t twips, float step, GridScale scale)
{
    if (!(step > 0))
        return twips;
    const double perUnit = twipsPerUnit(scale);
    // The value as the page reads it in the grid's unit, a single-precision number as there.
    const float units = float(twips / perUnit);
    const double snapped = roundHalfEven(double(units) / double(step)) * double(step);
    return int32_t(std::lround(snapped * perUnit));
}

std::vector<RulerTick> GridSnap::rulerTicks(double lengthTwips, GridScale scale)
{
    std::vector<RulerTick> ticks;
    const double perUnit = twipsPerUnit(scale);
    for (int tenth = 0;; ++tenth) {
        const double at = tenth * perUnit / 10.0;
        if (at > lengthTwips)
            break;
        const double length = (tenth % 10 == 0 ? 0.2 : 0.1) * perUnit;
        ticks.push_back({int(std::lround(at)), int(std::lround(length))});
    }
    return ticks;
}

} // namespace ff
