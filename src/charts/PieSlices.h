#pragma once
// The slices of a pie: whole percentages that add up to exactly 100, made by rounding with carry
// (what one slice loses to rounding is added to the next), and the colours of the slices, 31
// clearly different ones, each with a darker shade for the wall of a 3D pie.

#include <QColor>
#include <QVariant>
#include <vector>

namespace ff::charts {

// `values` as whole percentages of their sum. Values that cannot be read as a number are read as
// Val of their text; values not above 0 get no slice. The result has one entry per slice.
std::vector<int> CreatePieSlices(const std::vector<QVariant> &values);
// The same for counts.
std::vector<int> CreatePieSlices(const std::vector<double> &values);

// The counts a pie is drawn from: one group that holds everything is drawn as 99.9 and 0.001, so
// that the pie keeps two slices.
std::vector<double> PieValues(const std::vector<int64_t> &counts);

constexpr int kSliceColours = 31;
// The colour of slice `k` (0-based; colours repeat after 31) and its wall.
QColor SliceColour(int k);
QColor WallColour(int k);

} // namespace ff::charts
