// Statistics and groups over records written by the independent writer (made from the file format
// alone), over many parts, plain and scrambled, in file order, a sort order and a result list. The
// expected figures are computed here from the values written, not by the chart code.

#include "charts/ChartModel.h"
#include "search/SearchFixture.h"
#include "support/RecordWriterLayout.h"
#include "support/StoreFixture.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cmath>
#include <map>

using namespace ff;
using namespace ff::charts;
using namespace ff::testsupport;

namespace {

struct Written {
    int64_t cents;
    int qty;
    QString city, name;
    int day;
};

// Stops at the first test of the stop press.
struct StopAtOnce : Progress {
    int percentCalls = 0;
    void setPercent(int) override { ++percentCalls; }
    bool cancelled() override { return true; }
};

// The parameter: 1 when the records are stored scrambled.
class ChartStore : public ::testing::TestWithParam<int> {
protected:
    static constexpr int kRecords = 1301;
    static constexpr int kPerPart = 97;

    void SetUp() override
    {
        design.ScrambleRecords = GetParam();
        QRandomGenerator rnd(99);
        const char *cities[] = {"Bern", "BERN", "bern", "Oslo", "Lima", ""};
        QJsonArray records;
        for (int r = 1; r <= kRecords; ++r) {
            Written w;
            w.cents = int64_t(rnd.bounded(120000)) - 20000;
            w.qty = int(rnd.bounded(21)) - 10;
            w.city = QString::fromLatin1(cities[rnd.bounded(6)]);
            w.name = QStringLiteral("n%1").arg(rnd.bounded(40));
            w.day = 45000 + int(rnd.bounded(3));
            values.push_back(w);
            records.append(QJsonObject{{"F1", w.name}, {"F2", double(w.cents) / 100}, {"F3", w.qty}, {"F4", w.day},
                                       {"C1", w.city}, {"K0", int(r % 2)}});
        }
        QJsonObject setup = recordWriterLayout(design, kPerPart);
        setup[QStringLiteral("records")] = records;
        const QString dataFile = dir.filePath(QStringLiteral("chart.dat"));
        const ProgramRun run = runRecordWriter(QStringLiteral("write"), setup, dataFile);
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        ASSERT_TRUE(store.openFileSet(dataFile, OpenMode::Open, QString()).ok());
        ASSERT_EQ(store.RecordCount(), kRecords);
    }

    ChartModel chart(ChartKind kind, int index, Progress *progress = nullptr)
    {
        return BuildChart(store, kind, index, QLocale(QLocale::English, QLocale::UnitedStates), progress);
    }

    // The statistics of the prices of `records` (1-based numbers), computed from the written values.
    void expectPriceStats(const ChartModel &m, const std::vector<int> &records)
    {
        ASSERT_TRUE(m.numeric);
        int64_t sum = 0, low = INT64_MAX, high = INT64_MIN;
        for (const int r : records) {
            const int64_t c = values[size_t(r - 1)].cents;
            sum += c;
            low = std::min(low, c);
            high = std::max(high, c);
        }
        EXPECT_EQ(m.stats.ValueCount, int64_t(records.size()));
        EXPECT_NEAR(double(m.stats.Total), double(sum) / 100, 1e-6);
        EXPECT_NEAR(m.stats.Average, double(sum) / 100 / double(records.size()), 1e-9);
        EXPECT_EQ(m.stats.Lowest, low * 100);
        EXPECT_EQ(m.stats.Highest, high * 100);
        // The scale: the step is the power of ten at or above a tenth of the spread, counted from 0
        // down to the first multiple at or below the lowest value.
        const double lowV = double(low) / 100, highV = double(high) / 100;
        const double raw = (lowV < 0 ? -lowV + highV : highV - lowV) / 10;
        const double step = std::pow(10.0, std::ceil(std::log10(raw)));
        const double start = lowV < 0 ? -step * std::min(10.0, std::ceil(-lowV / step)) : 0;
        EXPECT_DOUBLE_EQ(fixedToDouble(m.stats.Step), step);
        std::array<int64_t, 10> counts{};
        for (const int r : records) {
            const double v = double(values[size_t(r - 1)].cents) / 100;
            counts[size_t(std::clamp(int(std::floor((v - start) / step)), 0, 9))]++;
        }
        EXPECT_EQ(m.stats.RangeCounts, counts);
        const int64_t most = *std::max_element(counts.begin(), counts.end());
        EXPECT_GE(m.stats.AxisTop, double(most));
    }

    // The groups of a text as counted here: case folded, named by the least spelling by byte.
    static std::map<QString, int64_t> byLabel(const PieGroups &g)
    {
        std::map<QString, int64_t> out;
        for (const PieGroup &group : g.groups)
            out[group.label] += group.count;
        return out;
    }

    SmallParts parts{kPerPart};
    QTemporaryDir dir;
    Design design = searchDesign();
    Page page{design};
    RecordStore store{design, page};
    std::vector<Written> values;
};

TEST_P(ChartStore, StatisticsMatchTheWrittenValues)
{
    std::vector<int> all(kRecords);
    std::iota(all.begin(), all.end(), 1);
    expectPriceStats(chart(ChartKind::Field, 2), all);

    // The same in a sort order downwards, and over a result list of some records only.
    QVector<int> down{0};
    for (int r = 1; r <= kRecords; ++r)
        down.append(r);
    store.setBrowseOrder(BrowseOrder::SortIndexDown, down);
    expectPriceStats(chart(ChartKind::Field, 2), all);
    QVector<int> list{0};
    std::vector<int> some;
    for (int r = 3; r <= kRecords; r += 7) {
        list.append(r);
        some.push_back(r);
    }
    store.setBrowseOrder(BrowseOrder::ResultList, list);
    expectPriceStats(chart(ChartKind::Field, 2), some);
}

TEST_P(ChartStore, GroupsCountEachValue)
{
    // Cities: the three spellings of Bern are one group named by the first in byte order; the
    // empty value is "N/A". Largest first.
    std::map<QString, int64_t> cities;
    for (const Written &w : values)
        cities[w.city.isEmpty() ? QStringLiteral("N/A") : w.city.compare(QLatin1String("bern"), Qt::CaseInsensitive) == 0 ? QStringLiteral("BERN") : w.city]++;
    const ChartModel city = chart(ChartKind::Combo, 1);
    EXPECT_FALSE(city.numeric);
    EXPECT_EQ(city.groups.total, kRecords);
    EXPECT_EQ(byLabel(city.groups), cities);
    for (size_t k = 1; k < city.groups.groups.size(); ++k)
        EXPECT_GE(city.groups.groups[k - 1].count, city.groups.groups[k].count);

    // Whole numbers: 21 values, no "Others"; 0 is "N/A".
    std::map<QString, int64_t> quantities;
    for (const Written &w : values)
        quantities[w.qty == 0 ? QStringLiteral("N/A") : QString::number(w.qty)]++;
    EXPECT_EQ(byLabel(chart(ChartKind::Field, 3).groups), quantities);

    // Forty names: thirty groups and "Others" with the rest.
    const ChartModel names = chart(ChartKind::Field, 1);
    ASSERT_EQ(names.groups.groups.size(), 31u);
    EXPECT_TRUE(names.groups.groups.back().others);
    std::map<QString, int64_t> perName;
    for (const Written &w : values)
        perName[w.name]++;
    int64_t listed = 0;
    for (size_t k = 0; k + 1 < names.groups.groups.size(); ++k) {
        EXPECT_EQ(names.groups.groups[k].count, perName[names.groups.groups[k].label]) << k;
        listed += names.groups.groups[k].count;
    }
    EXPECT_EQ(names.groups.groups.back().count, kRecords - listed);
    std::vector<int64_t> counts;
    for (const auto &entry : perName)
        counts.push_back(entry.second);
    std::sort(counts.rbegin(), counts.rend());
    EXPECT_EQ(names.groups.groups[0].count, counts[0]);
    EXPECT_EQ(names.groups.groups[29].count, counts[29]);

    // Dates show as the short date; money with two decimals.
    std::map<QString, int64_t> days;
    for (const Written &w : values)
        days[QLocale().toString(QDate(1899, 12, 30).addDays(w.day), QLocale::ShortFormat)]++;
    EXPECT_EQ(byLabel(chart(ChartKind::Field, 4).groups), days);
    const ChartModel prices = chart(ChartKind::Field, 2);
    ASSERT_FALSE(prices.groups.groups.empty());
    EXPECT_TRUE(prices.groups.groups[0].label.contains(QRegularExpression(QStringLiteral("^-?[0-9,]+\\.[0-9]{2}$"))))
        << prices.groups.groups[0].label.toStdString();

    // Check fields: the two states.
    const std::map<QString, int64_t> paid{{QStringLiteral("0"), kRecords / 2}, {QStringLiteral("1"), kRecords - kRecords / 2}};
    EXPECT_EQ(byLabel(chart(ChartKind::Check, 0).groups), paid);
}

TEST_P(ChartStore, StopPressKeepsWhatWasRead)
{
    StopAtOnce stop;
    const ChartModel m = chart(ChartKind::Field, 2, &stop);
    EXPECT_TRUE(m.stopped);
    EXPECT_GE(stop.percentCalls, 1);
    // An element without bytes in the record has no chart.
    EXPECT_FALSE(chart(ChartKind::Field, 7).valid);
}

INSTANTIATE_TEST_SUITE_P(PlainAndScrambled, ChartStore, ::testing::Values(0, 1));

} // namespace
