#pragma once
// The statistics of a number field: count, sum, average, lowest and highest, ten value ranges of a
// scale whose step is rounded up to a power of ten, the count of each range and the top of the
// histogram's axis. Bounds and comparisons are in the 4-decimal fixed-point form of money, so
// values that differ below 0.0001 count as equal.

#include "charts/FixedCounts.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <vector>

namespace ff::charts {

constexpr int kRanges = 10;

struct PieStatsData {
    int64_t ValueCount = 0;
    long double Total = 0;
    double Average = 0;
    int64_t Lowest = 0, Highest = 0; // fixed point
    int64_t Step = 0;                // fixed point, after rounding up
    // Index 0 the lowest value, index k the upper bound of range k (fixed point).
    std::array<int64_t, kRanges + 1> Bounds{};
    std::array<int64_t, kRanges> RangeCounts{};
    double AxisTop = 0;
};

// One row of the list under the histogram.
struct StatsRow {
    QString range, count, share;
};

// The statistics of `values`; ValueCount 0 when there are none.
PieStatsData PieStats(const std::vector<double> &values);
// The same from the distinct values counted as they were read, their sum and their count: what a
// walk over all records keeps, whatever their number.
PieStatsData PieStats(const FixedCounts &counts, long double total, int64_t valueCount);

// A raw step rounded up to the next power of ten from 0.0001 to 10000000000; a step of 0.0001 or
// less, or above the last, stays as it is.
double RoundStepUp(double step);
// The top of the histogram's axis for a largest count `m`.
double AxisTopFor(double m);

// The list rows 1 to 10: the range, the count, the share of all values.
std::vector<StatsRow> StatsRows(const PieStatsData &data, const QLocale &locale);

// A fixed-point value as a double.
inline double fixedToDouble(int64_t fixed) { return double(fixed) / 10000.0; }

} // namespace ff::charts

namespace ff::charts {

// The texts over the histogram: the average, the lowest and highest, the sum and its share, with
// the design's seven chart captions.
struct StatsHeader {
    QString average, lowHigh, sum, percent;
};
StatsHeader StatsHeaderTexts(const PieStatsData &data, const std::array<QString, 7> &captions, const QLocale &locale);

} // namespace ff::charts

namespace ff::charts {
// Bound `k` (0 to 10) as the list and the histogram show it: whole numbers when the step is 1 or
// more, else three decimals.
QString BoundText(const PieStatsData &data, int k, const QLocale &locale);
} // namespace ff::charts
