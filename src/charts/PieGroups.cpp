#include "charts/PieGroups.h"

#include "charts/FixedCounts.h"
#include "charts/PieStats.h"
#include "charts/SliceCounts.h"
#include "formula/FieldFormat.h"
#include "search/CaseFold.h"
#include "search/FieldReader.h"

#include <algorithm>
#include <cstring>

namespace ff::charts {

std::vector<PieGroup> RankGroups(std::vector<PieGroup> counted)
{
    std::stable_sort(counted.begin(), counted.end(), [](const PieGroup &a, const PieGroup &b) { return a.count > b.count; });
    if (int(counted.size()) <= kMaxGroups)
        return counted;
    PieGroup others{QStringLiteral("Others"), 0, true, 0};
    for (size_t k = kMaxGroups - 1; k < counted.size(); ++k)
        others.count += counted[k].count;
    counted.resize(kMaxGroups - 1);
    counted.push_back(others);
    return counted;
}

QString ShareText(int64_t count, int64_t total, const QLocale &locale)
{
    const double share = total > 0 ? double(count) / double(total) * 100 : 0;
    return FormatFixed(share, 2, locale) + QLatin1Char('%');
}

namespace {

QString notAvailable() { return QStringLiteral("N/A"); }

// Numbers and dates: one group per value, in the order of the values; only the groups kept get
// their text, and 0 shows "N/A".
PieGroups rankNumbers(const FixedCounts &counts, const Design &design, int field, const FormulaHooks &hooks)
{
    std::vector<std::pair<int64_t, int64_t>> ordered = counts.entries();
    std::sort(ordered.begin(), ordered.end());
    std::vector<PieGroup> counted;
    counted.reserve(ordered.size());
    PieGroups out;
    for (const auto &[value, count] : ordered) {
        counted.push_back({QString(), count, false, value});
        out.total += count;
    }
    out.groups = RankGroups(std::move(counted));
    for (PieGroup &g : out.groups)
        if (!g.others)
            g.label = g.key == 0 ? notAvailable() : hooks.FormatFieldValue(design, field, fixedToDouble(g.key));
    return out;
}

// Texts: one group per case-folded value, named by its least spelling in byte order: the groups
// of a byte sort whose case variants are merged.
PieGroups textGroups(ChartReader &reader, const CodePage &codePage, Progress *progress)
{
    const CaseFold fold(codePage);
    SliceCounts counts(reader.field().length, fold.table());
    const bool stopped = !reader.readSlices([&](const uint8_t *plain, int) { counts.add(plain); }, progress);
    const size_t length = counts.length();
    std::vector<std::pair<const uint8_t *, int64_t>> ordered;
    ordered.reserve(counts.size());
    counts.forEach([&](const uint8_t *name, int64_t count) { ordered.emplace_back(name, count); });
    std::sort(ordered.begin(), ordered.end(),
              [length](const auto &a, const auto &b) { return std::memcmp(a.first, b.first, length) < 0; });
    std::vector<PieGroup> counted;
    counted.reserve(ordered.size());
    PieGroups out;
    out.stopped = stopped;
    for (size_t k = 0; k < ordered.size(); ++k) {
        counted.push_back({QString(), ordered[k].second, false, int64_t(k)});
        out.total += ordered[k].second;
    }
    out.groups = RankGroups(std::move(counted));
    for (PieGroup &g : out.groups) {
        if (g.others)
            continue;
        const QString name =
            codePage.decode(reinterpret_cast<const char *>(ordered[size_t(g.key)].first), qsizetype(length)).trimmed();
        g.label = name.isEmpty() ? notAvailable() : name;
    }
    return out;
}

} // namespace

PieGroups NumberGroups(const std::vector<double> &values, const Design &design, int field, const FormulaHooks &hooks)
{
    FixedCounts counts;
    for (const double v : values)
        counts.add(FieldReader::toFixed(v));
    return rankNumbers(counts, design, field, hooks);
}

PieGroups NumberGroups(const FixedCounts &counts, const Design &design, int field, const FormulaHooks &hooks)
{
    return rankNumbers(counts, design, field, hooks);
}

PieGroups PieChart(ChartReader &reader, const Design &design, const FormulaHooks &hooks, const CodePage &codePage,
                   Progress *progress)
{
    if (!reader.valid())
        return {};
    if (!reader.storedNumber())
        return textGroups(reader, codePage, progress);
    FixedCounts counts;
    const bool stopped = !reader.readFixed([&](int64_t v) { counts.add(v); }, progress);
    PieGroups out = rankNumbers(counts, design, reader.field().index, hooks);
    out.stopped = stopped;
    return out;
}

} // namespace ff::charts
