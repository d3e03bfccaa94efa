#include "charts/PieStats.h"

#include "formula/FieldFormat.h"
#include "search/FieldReader.h"

#include <algorithm>
#include <cmath>

namespace ff::charts {

double RoundStepUp(double step)
{
    static const double series[] = {0.0001, 0.001, 0.01, 0.1, 1, 10, 100, 1000, 10000, 100000, 1000000, 10000000,
                                    100000000, 1000000000, 10000000000.0};
    for (size_t k = 0; k + 1 < std::size(series); ++k)
        if (step > series[k] && step <= series[k + 1])
            step = series[k + 1];
    return step;
}

double AxisTopFor(double m)
{
    if (m >= 10) {
        const QString digits = QString::number(int64_t(m));
        int first = digits.at(0).digitValue();
        if (first < 10)
            ++first;
        return double(first) * std::pow(10.0, double(digits.size() - 1));
    }
    if (m >= 5)
        return 5;
    if (m >= 1)
        return 1;
    if (m >= 0.1)
        return 0.1;
    if (m >= 0.01)
        return 0.01;
    if (m >= 0.001)
        return 0.001;
    return 0;
}

PieStatsData PieStats(const std::vector<double> &values)
{
    FixedCounts counts;
    long double total = 0;
    for (const double v : values) {
        total += v;
        counts.add(FieldReader::toFixed(v));
    }
    return PieStats(counts, total, int64_t(values.size()));
}

PieStatsData PieStats(const FixedCounts &counts, long double total, int64_t valueCount)
{
    PieStatsData d;
    d.ValueCount = valueCount;
    if (valueCount == 0)
        return d;
    d.Total = total;
    d.Average = double(total / (long double)valueCount);
    const std::vector<std::pair<int64_t, int64_t>> entries = counts.entries();
    int64_t lowest = INT64_MAX, highest = INT64_MIN;
    for (const auto &entry : entries) {
        lowest = std::min(lowest, entry.first);
        highest = std::max(highest, entry.first);
    }
    d.Lowest = lowest;
    d.Highest = highest;

    const double low = fixedToDouble(lowest), high = fixedToDouble(highest);
    const double raw = low < 0 ? (std::fabs(low) + high) / 10 : (high - low) / 10;
    const int64_t step = FieldReader::toFixed(RoundStepUp(raw));
    d.Step = step;
    // The scale starts at 0, or at the multiple of the step at or below a negative lowest value.
    int64_t start = 0;
    for (int k = 1; k <= kRanges; ++k) {
        if (start <= lowest)
            break;
        start -= step;
    }
    d.Bounds[0] = lowest;
    for (int k = 1; k <= kRanges; ++k)
        d.Bounds[size_t(k)] = start + int64_t(k) * step;
    // Range 10 takes every value not below the ninth bound, also those past the tenth.
    for (const auto &[v, count] : entries) {
        int k = 1;
        while (k < kRanges && !(v < d.Bounds[size_t(k)]))
            ++k;
        d.RangeCounts[size_t(k - 1)] += count;
    }
    d.AxisTop = AxisTopFor(double(*std::max_element(d.RangeCounts.begin(), d.RangeCounts.end())));
    return d;
}

QString BoundText(const PieStatsData &d, int k, const QLocale &locale)
{
    const double b = fixedToDouble(d.Bounds[size_t(k)]);
    if (std::fabs(fixedToDouble(d.Step)) >= 1)
        return QString::number(int64_t(std::floor(b)));
    return FormatFixed(b, 3, locale);
}

std::vector<StatsRow> StatsRows(const PieStatsData &d, const QLocale &locale)
{
    std::vector<StatsRow> rows;
    if (d.ValueCount == 0)
        return rows;
    auto bound = [&](int k) { return BoundText(d, k, locale); };
    for (int k = 1; k <= kRanges; ++k) {
        StatsRow row;
        // The sign points from the lower bound to the upper one.
        row.range = k == 1 ? QStringLiteral(" <=") + bound(1) : bound(k - 1) + QStringLiteral(" > ") + bound(k);
        const int64_t count = d.RangeCounts[size_t(k - 1)];
        row.count = QString::number(count);
        row.share = FormatFixed(double(count) / double(d.ValueCount) * 100, 2, locale) + QLatin1Char('%');
        rows.push_back(row);
    }
    return rows;
}

} // namespace ff::charts

namespace ff::charts {

StatsHeader StatsHeaderTexts(const PieStatsData &d, const std::array<QString, 7> &c, const QLocale &locale)
{
    StatsHeader h;
    if (d.ValueCount == 0)
        return h;
    auto joined = [](QStringList parts) {
        parts.removeAll(QString());
        return parts.join(QLatin1Char(' '));
    };
    h.average = joined({FormatFixed(d.Average, 3, locale), c[0]});
    h.lowHigh = joined({c[1], FormatFixed(fixedToDouble(d.Lowest), 3, locale), c[2]}) + QStringLiteral("  ")
                + joined({c[3], FormatFixed(fixedToDouble(d.Highest), 3, locale), c[4]});
    h.sum = joined({FormatFixed(double(d.Total), 3, locale), c[5]});
    h.percent = joined({QStringLiteral("100%"), c[6]});
    return h;
}

} // namespace ff::charts
