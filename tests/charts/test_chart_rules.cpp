// The rules of the statistics and the pie on values given directly: the step and its rounding up,
// the start of the scale, the ranges (range 10 takes everything above), the histogram's axis,
// the list rows, the percentages with carry and the cut to 31 groups with "Others".

#include "charts/PieGroups.h"
#include "charts/PieSlices.h"
#include "charts/PieStats.h"

#include "store/FormulaHooks.h"

#include <QRandomGenerator>
#include <map>
#include <algorithm>
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

using namespace ff::charts;

namespace {

const QLocale kLocale(QLocale::English, QLocale::UnitedStates);

TEST(ChartRules, StepRoundsUpToTheNextPowerOfTen)
{
    const struct {
        double raw, step;
    } cases[] = {{0, 0},       {0.00005, 0.00005}, {0.0001, 0.0001}, {0.00011, 0.001}, {0.5, 1},
                 {1, 1},       {1.01, 10},         {37, 100},        {100, 100},       {9.9e9, 1e10},
                 {2e10, 2e10}};
    for (const auto &c : cases)
        EXPECT_DOUBLE_EQ(RoundStepUp(c.raw), c.step) << c.raw;
}

TEST(ChartRules, AxisTopByTheLargestCount)
{
    const struct {
        double m, top;
    } cases[] = {{0, 0}, {1, 1}, {4, 1}, {5, 5}, {9, 5}, {10, 20}, {19, 20}, {95, 100}, {99, 100}, {347, 400}, {1000, 2000}};
    for (const auto &c : cases)
        EXPECT_DOUBLE_EQ(AxisTopFor(c.m), c.top) << c.m;
}

TEST(ChartRules, ScaleBoundsAndRanges)
{
    const struct {
        std::vector<double> values;
        double step;
        std::array<double, 10> bounds; // 1..10
        std::array<int64_t, 10> counts;
        QString firstRow, lastRow;
    } cases[] = {
        // All equal: the step is 0 and stays 0, every value in range 10.
        {{50, 50, 50}, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 3},
         QStringLiteral(" <=0.000"), QStringLiteral("0.000 > 0.000")},
        // Lowest -5, highest 95: step 10, scale from -10, 95 in range 10.
        {{-5, 95, 10, 0, 79.99}, 10, {0, 10, 20, 30, 40, 50, 60, 70, 80, 90}, {1, 1, 1, 0, 0, 0, 0, 0, 1, 1},
         QStringLiteral(" <=0"), QStringLiteral("80 > 90")},
        // Small values: three decimals in the list.
        {{0.25, 0.5, 0.9}, 0.1, {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0}, {0, 0, 1, 0, 0, 1, 0, 0, 0, 1},
         QStringLiteral(" <=0.100"), QStringLiteral("0.900 > 1.000")},
        // The start stops after ten steps: 5 lies past the tenth bound and still counts in range 10.
        {{-95, 5}, 10, {-90, -80, -70, -60, -50, -40, -30, -20, -10, 0}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 1},
         QStringLiteral(" <=-90"), QStringLiteral("-10 > 0")},
    };
    for (const auto &c : cases) {
        const PieStatsData d = PieStats(c.values);
        SCOPED_TRACE(c.firstRow.toStdString());
        EXPECT_EQ(d.ValueCount, int64_t(c.values.size()));
        EXPECT_DOUBLE_EQ(fixedToDouble(d.Step), c.step);
        for (int k = 1; k <= 10; ++k)
            EXPECT_DOUBLE_EQ(fixedToDouble(d.Bounds[size_t(k)]), c.bounds[size_t(k - 1)]) << k;
        EXPECT_EQ(d.RangeCounts, c.counts);
        EXPECT_DOUBLE_EQ(fixedToDouble(d.Bounds[0]), *std::min_element(c.values.begin(), c.values.end()));
        const std::vector<StatsRow> rows = StatsRows(d, kLocale);
        ASSERT_EQ(rows.size(), 10u);
        EXPECT_EQ(rows[0].range, c.firstRow);
        EXPECT_EQ(rows[9].range, c.lastRow);
    }
}

TEST(ChartRules, TotalsAverageAndShares)
{
    const PieStatsData d = PieStats({1.5, 2.25, -0.75, 7});
    EXPECT_DOUBLE_EQ(double(d.Total), 10);
    EXPECT_DOUBLE_EQ(d.Average, 2.5);
    EXPECT_EQ(d.Lowest, -7500);
    EXPECT_EQ(d.Highest, 70000);
    const std::vector<StatsRow> rows = StatsRows(d, kLocale);
    const int64_t listed = std::accumulate(rows.begin(), rows.end(), int64_t(0),
                                           [](int64_t sum, const StatsRow &r) { return sum + r.count.toLongLong(); });
    EXPECT_EQ(listed, 4);
    EXPECT_EQ(rows[0].share, QStringLiteral("25.00%")); // -0.75 alone below 0
    // Nothing to show for no values.
    EXPECT_EQ(PieStats({}).ValueCount, 0);
    EXPECT_TRUE(StatsRows(PieStats({}), kLocale).empty());
}

TEST(ChartRules, PercentagesAddUpToExactlyAHundred)
{
    auto sorted = [](std::vector<int> v) {
        std::sort(v.begin(), v.end());
        return v;
    };
    EXPECT_EQ(sorted(CreatePieSlices(std::vector<double>{1, 1, 1})), (std::vector<int>{33, 33, 34}));
    EXPECT_EQ(CreatePieSlices(PieValues({250})), (std::vector<int>{100, 0})); // one group: still two slices
    EXPECT_EQ(CreatePieSlices(std::vector<double>{2, 1, 1}), (std::vector<int>{50, 25, 25}));
    EXPECT_EQ(CreatePieSlices(std::vector<double>{0, -3, 5}), (std::vector<int>{100})); // not above 0: no slice
    EXPECT_TRUE(CreatePieSlices(std::vector<double>{}).empty());
    // Values that are no numbers are read as the number their text starts with.
    EXPECT_EQ(CreatePieSlices(std::vector<QVariant>{QVariant(QStringLiteral("30 apples")), QVariant(70)}),
              (std::vector<int>{30, 70}));

    QRandomGenerator random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> counts(size_t(1 + random.bounded(31)));
        double total = 0;
        for (double &c : counts)
            total += (c = double(1 + random.bounded(1000)));
        const std::vector<int> slices = CreatePieSlices(counts);
        ASSERT_EQ(slices.size(), counts.size());
        EXPECT_EQ(std::accumulate(slices.begin(), slices.end(), 0), 100);
        double carried = 0; // each slice is its exact share plus what the one before left, rounded
        for (size_t k = 0; k + 1 < slices.size(); ++k) {
            carried += counts[k] / total * 100;
            const int upTo = std::accumulate(slices.begin(), slices.begin() + qsizetype(k) + 1, 0);
            EXPECT_LE(std::fabs(upTo - carried), 0.5 + 1e-9);
        }
    }
}

TEST(ChartRules, ThirtyOneGroupsAtMostWithOthers)
{
    auto groups = [](int n) {
        std::vector<PieGroup> g;
        for (int k = 0; k < n; ++k)
            g.push_back({QString::number(k), 1 + (k % 3 == 0 ? 5 : 0), false, 0});
        return RankGroups(g);
    };
    const std::vector<PieGroup> all = groups(31);
    ASSERT_EQ(all.size(), 31u);
    EXPECT_TRUE(std::none_of(all.begin(), all.end(), [](const PieGroup &g) { return g.others; }));
    // Largest first, equal counts in the order they came.
    EXPECT_EQ(all[0].label, QStringLiteral("0"));
    EXPECT_EQ(all[1].label, QStringLiteral("3"));
    EXPECT_EQ(all[30].label, QStringLiteral("29"));

    for (const int n : {32, 45}) {
        const std::vector<PieGroup> cut = groups(n);
        ASSERT_EQ(cut.size(), 31u);
        EXPECT_TRUE(cut[30].others);
        EXPECT_EQ(cut[30].label, QStringLiteral("Others"));
        int64_t total = 0, shown = 0;
        for (int k = 0; k < n; ++k)
            total += 1 + (k % 3 == 0 ? 5 : 0);
        for (const PieGroup &g : cut)
            shown += g.count;
        EXPECT_EQ(shown, total) << n; // nothing lost: the rest is in "Others"
    }
}

} // namespace

namespace {

TEST(ChartRules, ManyDistinctNumbersAreCountedExactly)
{
    // Enough values to make the counting table grow several times: value v appears (v % 7) + 1
    // times, 0 shows "N/A", and values that differ below 0.0001 are one group.
    ff::Design design;
    design.Fields.resize(2);
    design.Fields[1].FieldType = 5;
    design.FieldCount = 1;
    const ff::FormulaHooks hooks;
    std::vector<double> values;
    std::map<int64_t, int64_t> expected;
    for (int v = 0; v < 20000; ++v)
        for (int n = 0; n <= v % 7; ++n) {
            values.push_back(v + (n == 1 ? 0.00001 : 0));
            ++expected[v];
        }
    std::reverse(values.begin(), values.end());
    const PieGroups g = NumberGroups(values, design, 1, hooks);
    EXPECT_EQ(g.total, int64_t(values.size()));
    ASSERT_EQ(g.groups.size(), 31u);
    // Thirty groups of seven, the lowest values first among equals; 0 has one value.
    for (size_t k = 0; k < 30; ++k) {
        EXPECT_EQ(g.groups[k].count, 7);
        EXPECT_EQ(g.groups[k].label, QLocale().toString(double(6 + 7 * k), 'f', 0)) << k;
    }
    EXPECT_EQ(g.groups[30].count, int64_t(values.size()) - 30 * 7);
    EXPECT_TRUE(g.groups[30].others);
    EXPECT_EQ(NumberGroups({0, 0, 5}, design, 1, hooks).groups[0].label, QStringLiteral("N/A"));
}

} // namespace
