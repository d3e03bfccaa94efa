#pragma once
// The groups of a pie: how many records hold each distinct value of an element. Texts are grouped
// without regard to case, and the group is named by the first spelling in byte order; numbers and
// dates are grouped by their value in the 4-decimal fixed-point form. The groups are sorted by
// count, largest first (equal counts in the order of their values); beyond 31 groups the first 30
// stay and the rest go together under "Others" in row 31.

#include "charts/ChartReader.h"
#include "charts/FixedCounts.h"
#include "core/CodePage.h"
#include "store/FormulaHooks.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <vector>

namespace ff::charts {

constexpr int kMaxGroups = 31;

struct PieGroup {
    QString label; // as the list shows it: "N/A" for an empty value or a number 0
    int64_t count = 0;
    bool others = false;
    int64_t key = 0; // where the group's value is kept while the groups are ranked
};

struct PieGroups {
    std::vector<PieGroup> groups;
    int64_t total = 0;     // all values counted
    bool stopped = false;  // the read was stopped: what was read so far
};

// The counts as groups: sorted by count and cut to 31 rows with "Others". `counted` pairs each
// group's label with its count, in the order of the values.
std::vector<PieGroup> RankGroups(std::vector<PieGroup> counted);

// The groups of numbers already read (a number field whose statistics were made from them).
PieGroups NumberGroups(const std::vector<double> &values, const Design &design, int field, const FormulaHooks &hooks);
PieGroups NumberGroups(const FixedCounts &counts, const Design &design, int field, const FormulaHooks &hooks);

// Reads the element of `reader` over all records and groups its values. `hooks` and `design` make
// the texts of numbers and dates as the page shows them.
PieGroups PieChart(ChartReader &reader, const Design &design, const FormulaHooks &hooks, const CodePage &codePage,
                   Progress *progress = nullptr);

// The share of `count` in `total` as the list shows it: two decimals and "%".
QString ShareText(int64_t count, int64_t total, const QLocale &locale);

} // namespace ff::charts
