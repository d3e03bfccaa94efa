#include "charts/ChartModel.h"

namespace ff::charts {

QString ChartTitle(const Design &design, ChartKind kind, int index)
{
    auto tagOf = [index](const auto &elements) {
        return index >= 0 && index < int(elements.size()) ? elements[size_t(index)].Tag.trimmed() : QString();
    };
    QString tag, what;
    switch (kind) {
    case ChartKind::Field: tag = tagOf(design.Fields); what = QStringLiteral("Field"); break;
    case ChartKind::Combo: tag = tagOf(design.Combos); what = QStringLiteral("Combo"); break;
    case ChartKind::Check: tag = tagOf(design.Checks); what = QStringLiteral("Check box"); break;
    }
    return tag.isEmpty() ? what + QLatin1Char(' ') + QString::number(index) : tag;
}

ChartModel BuildChart(RecordStore &store, ChartKind kind, int index, const QLocale &locale, Progress *progress)
{
    ChartModel m;
    m.title = ChartTitle(store.design(), kind, index);
    ChartReader reader(store, kind, index);
    m.valid = reader.valid();
    if (!m.valid)
        return m;
    if (reader.numeric()) {
        // One walk: the sum, the count and the distinct values with their counts, from which the
        // statistics and the groups are made.
        FixedCounts counts;
        long double total = 0;
        int64_t taken = 0;
        m.stopped = !reader.readNumbers(
            [&](double v) {
                total += v;
                ++taken;
                counts.add(FieldReader::toFixed(v));
            },
            progress);
        if (m.stopped)
            return m;
        m.numeric = true;
        m.stats = PieStats(counts, total, taken);
        m.header = StatsHeaderTexts(m.stats, store.design().ChartTexts, locale);
        m.rows = StatsRows(m.stats, locale);
        m.groups = NumberGroups(counts, store.design(), index, store.hooks());
        return m;
    }
    m.groups = PieChart(reader, store.design(), store.hooks(), store.codec().codePage(), progress);
    m.stopped = m.groups.stopped;
    return m;
}

} // namespace ff::charts
