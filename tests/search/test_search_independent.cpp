// Records written by the independent writer (tests/support/independent_record_writer.py, made from
// the file format alone) over several parts, plain and scrambled, searched here; the expected hits
// come from the same values by the search rules, computed in the test and not by the engine. Also
// the sort index over those records: numbers by the Shell sort, texts by the quick sort, each
// checked for order. A scrambled store must give the plain store's results, rows byte for byte.

#include "search/SearchFixture.h"

#include "search/SortIndexBuilder.h"
#include "support/RecordWriterLayout.h"
#include "support/StoreFixture.h"

#include <QRandomGenerator>

#include <algorithm>

using namespace ff;
using namespace ff::testsupport;

namespace {

struct Value {
    QString name, city, memo, time;
    int64_t cents;
    int qty;
    double amount;
    int day;
    int paid;
};

// The parameter: 1 when the records are stored scrambled.
class IndependentStore : public ::testing::TestWithParam<int> {
protected:
    static constexpr int kRecords = 203;
    static constexpr int kPerPart = 17;

    void SetUp() override
    {
        design.ScrambleRecords = GetParam();
        QRandomGenerator rnd(1234);
        const char *names[] = {"Anna", "anton", "Bert", "BERTA", "Cleo", "Dora", "Émile", "emil"};
        const char *cities[] = {"Berlin", "Bern", "Bonn", "Oslo", "Lima"};
        QJsonArray records;
        for (int r = 1; r <= kRecords; ++r) {
            Value v;
            v.name = QString::fromUtf8(names[rnd.bounded(8)]) + QString::number(rnd.bounded(100));
            v.city = QString::fromLatin1(cities[rnd.bounded(5)]);
            v.memo = rnd.bounded(4) == 0 ? QStringLiteral("needs Cheese") : QStringLiteral("plain");
            v.cents = rnd.bounded(100000);
            v.qty = int(rnd.bounded(21)) - 10;
            v.amount = rnd.bounded(1000) / 8.0;
            v.day = 45000 + int(rnd.bounded(400));
            v.paid = int(rnd.bounded(2));
            v.time = QStringLiteral("%1:%2:00").arg(rnd.bounded(24), 2, 10, QLatin1Char('0')).arg(rnd.bounded(60), 2, 10, QLatin1Char('0'));
            values.push_back(v);
            records.append(QJsonObject{{"F1", v.name}, {"F2", double(v.cents) / 100}, {"F3", v.qty}, {"F4", v.day},
                                       {"F5", v.amount}, {"F6", v.time}, {"C1", v.city}, {"C2", "1"}, {"C3", "x"},
                                       {"K0", v.paid}, {"M1", v.memo}, {"stamp", 45000}});
        }
        setup = recordWriterLayout(design, kPerPart);
        setup[QStringLiteral("records")] = records;
        dataFile = dir.filePath(QStringLiteral("ind.dat"));
        writeRecords(setup, dataFile);
        if (GetParam() == 1) { // no record may read as plain text
            QFile part(dataFile);
            ASSERT_TRUE(part.open(QIODevice::ReadOnly));
            ASSERT_FALSE(part.readAll().contains("Berlin"));
        }
        ASSERT_TRUE(store.openFileSet(dataFile, OpenMode::Open, QString()).ok());
        ASSERT_EQ(store.RecordCount(), kRecords);
        ASSERT_GT(store.file().LastPart(), 10);
    }

    void writeRecords(const QJsonObject &layout, const QString &file)
    {
        const ProgramRun run = runRecordWriter(QStringLiteral("write"), layout, file);
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    }

    SearchResult run(const QString &line, SearchOptions o = {}, const QString &focus = QStringLiteral("F1"))
    {
        SearchEngine e(store, QLatin1Char('.'), QLocale(QLocale::English, QLocale::UnitedStates));
        return e.run(e.compile(line, o.matchCase, e.names().byTag(focus)), o);
    }
    // Record numbers whose values pass `test`, newest first, as a select lists them.
    template <typename Test>
    QVector<int> expected(Test test) const
    {
        QVector<int> out;
        for (int r = kRecords; r >= 1; --r)
            if (test(values[size_t(r - 1)]))
                out.append(r);
        return out;
    }

    SmallParts parts{kPerPart};
    QTemporaryDir dir;
    QString dataFile;
    Design design = searchDesign();
    Page page{design};
    RecordStore store{design, page};
    std::vector<Value> values;
    QJsonObject setup;
};

TEST_P(IndependentStore, SearchesFindWhatTheRulesSay)
{
    EXPECT_EQ(run(QStringLiteral("select name where price>500")).hits, expected([](const Value &v) { return v.cents > 50000; }));
    EXPECT_EQ(run(QStringLiteral("select name where qty<=0 paid=1")).hits,
              expected([](const Value &v) { return v.qty <= 0 && v.paid == 1; }));
    EXPECT_EQ(run(QStringLiteral("select name where name=b* city<>bern")).hits, expected([](const Value &v) {
                  return v.name.toLower().startsWith(QLatin1Char('b')) && v.city != QLatin1String("Bern");
              }));
    EXPECT_EQ(run(QStringLiteral("select name where when>=45200 time<12:00")).hits,
              expected([](const Value &v) { return v.day >= 45200 && v.time < QLatin1String("12:00"); }));
    // Windows-1252 "É" folds to "é" in the bytes.
    EXPECT_EQ(run(QStringLiteral("émile")).hits, expected([](const Value &v) { return v.name.startsWith(QStringLiteral("Émile")); }));
    EXPECT_EQ(run(QStringLiteral("cheese"), {}, QStringLiteral("memo")).hits,
              expected([](const Value &v) { return v.memo.contains(QLatin1String("Cheese")); }));

    int64_t cents = 0;
    int count = 0;
    for (const Value &v : values) {
        cents += v.cents;
        count += v.qty > 5;
    }
    EXPECT_DOUBLE_EQ(run(QStringLiteral("sum price")).SumTotal, double(cents) / 100);
    EXPECT_EQ(run(QStringLiteral("count qty>5")).CountTotal, count);
}

TEST_P(IndependentStore, SortIndexOrdersEveryKind)
{
    const SortIndexBuilder builder(design, store.file(), store.RecordCount());
    const SearchNames names(design, store.layout());
    auto index = [&](const char *tag) {
        Result<SortIndexBuilder::Outcome> r = builder.build(names.byTag(QString::fromLatin1(tag)));
        EXPECT_TRUE(r.ok());
        EXPECT_EQ(r->SortIndex.size(), kRecords + 1);
        QVector<int> sorted = r->SortIndex.mid(1);
        QVector<int> all = sorted;
        std::sort(all.begin(), all.end());
        for (int k = 0; k < kRecords; ++k)
            EXPECT_EQ(all[k], k + 1); // every record once
        return sorted;
    };
    auto ordered = [&](const QVector<int> &order, auto key) {
        for (int k = 1; k < order.size(); ++k)
            if (key(values[size_t(order[k - 1] - 1)]) > key(values[size_t(order[k] - 1)]))
                return false;
        return true;
    };
    EXPECT_TRUE(ordered(index("price"), [](const Value &v) { return v.cents; }));
    EXPECT_TRUE(ordered(index("qty"), [](const Value &v) { return v.qty; }));
    EXPECT_TRUE(ordered(index("amount"), [](const Value &v) { return v.amount; }));
    EXPECT_TRUE(ordered(index("when"), [](const Value &v) { return v.day; }));
    const CodePage cp(0);
    EXPECT_TRUE(ordered(index("name"), [&](const Value &v) { return CaseFold(cp).fold(cp.encode(v.name)); }));
    EXPECT_TRUE(ordered(index("city"), [](const Value &v) { return v.city.toLower(); }));

    ASSERT_TRUE(SortIndexBuilder::BuildSortIndex(store, names.byTag(QStringLiteral("qty")), BrowseOrder::SortIndexDown).ok());
    EXPECT_EQ(store.browseOrder(), BrowseOrder::SortIndexDown);
    EXPECT_EQ(store.SortIndex().size(), kRecords + 1);
    EXPECT_FALSE(SortIndexBuilder::BuildSortIndex(store, names.byTag(QStringLiteral("global")), BrowseOrder::SortIndexUp).ok());
}

struct StopNow : Progress {
    void setPercent(int) override {}
    bool cancelled() override { return true; }
};

TEST_P(IndependentStore, StoppedSortLeavesFileOrder)
{
    store.setBrowseOrder(BrowseOrder::SortIndexUp, QVector<int>{0, 2, 1});
    StopNow stop;
    const SearchNames names(design, store.layout());
    ASSERT_TRUE(SortIndexBuilder::BuildSortIndex(store, names.byTag(QStringLiteral("name")), BrowseOrder::SortIndexUp, &stop).ok());
    EXPECT_EQ(store.browseOrder(), BrowseOrder::FileOrder);
}

// Rows, totals and hits of the same lines over the plain and the scrambled copy of the records.
TEST_P(IndependentStore, ScrambledStoreGivesThePlainStoresResults)
{
    if (GetParam() == 0)
        GTEST_SKIP() << "compared from the scrambled side";
    Design plainDesign = searchDesign();
    Page plainPage{plainDesign};
    RecordStore plain{plainDesign, plainPage};
    const QString plainFile = dir.filePath(QStringLiteral("plain.dat"));
    QJsonObject plainSetup = setup;
    plainSetup[QStringLiteral("scramble")] = 0;
    writeRecords(plainSetup, plainFile);
    ASSERT_TRUE(plain.openFileSet(plainFile, OpenMode::Open, QString()).ok());
    SearchEngine scrambledEngine(store, QLatin1Char('.'), QLocale(QLocale::English, QLocale::UnitedStates));
    SearchEngine plainEngine(plain, QLatin1Char('.'), QLocale(QLocale::English, QLocale::UnitedStates));
    const char *lines[] = {"select name price qty when amount time city paid memo where price>200",
                           "select name city where name=b* city<>bern",
                           "select name where name<>anna3",
                           "select city when where when>=45200 time<12:00",
                           "select name where qty<=0 paid=1",
                           "select name where name=*a?",
                           "sum price",
                           "sum qty where city=b*",
                           "sum amount",
                           "count city=berlin",
                           "count name>5",
                           "!cheese",
                           "+ber +lin",
                           "anna"};
    for (const char *line : lines) {
        for (bool forward : {false, true}) {
            SearchOptions o;
            o.forward = forward;
            o.twoThreadsFrom = forward ? 50 : 0; // both the split walk and the single one
            const QString text = QString::fromLatin1(line);
            const SearchField focus = plainEngine.names().byTag(QStringLiteral("name"));
            const SearchResult a = scrambledEngine.run(scrambledEngine.compile(text, false, focus), o);
            const SearchResult b = plainEngine.run(plainEngine.compile(text, false, focus), o);
            EXPECT_TRUE(a.ran) << line;
            EXPECT_EQ(a.hits, b.hits) << line;
            EXPECT_EQ(a.rows, b.rows) << line;
            EXPECT_EQ(a.found, b.found) << line;
            EXPECT_EQ(a.message, b.message) << line;
        }
    }
    // Sort keys are read through the substitution too.
    const SearchNames names(design, store.layout());
    for (const char *tag : {"name", "price", "amount", "qty", "city"}) {
        const SortIndexBuilder scrambledSort(design, store.file(), store.RecordCount());
        const SortIndexBuilder plainSort(plainDesign, plain.file(), plain.RecordCount());
        const SearchField field = names.byTag(QString::fromLatin1(tag));
        const Result<SortIndexBuilder::Outcome> a = scrambledSort.build(field);
        const Result<SortIndexBuilder::Outcome> b = plainSort.build(field);
        ASSERT_TRUE(a.ok() && b.ok());
        EXPECT_EQ(a->SortIndex, b->SortIndex) << tag;
    }
}

INSTANTIATE_TEST_SUITE_P(PlainAndScrambled, IndependentStore, ::testing::Values(0, 1));

TEST(SortAlgorithms, ShellAndTextSortKeepKeysWithTheirEntries)
{
    QRandomGenerator rnd(99);
    for (int n : {0, 1, 2, 10, 11, 500}) {
        std::vector<int64_t> keys;
        std::vector<int> order;
        std::vector<uint8_t> texts;
        for (int k = 0; k < n; ++k) {
            keys.push_back(rnd.bounded(50)); // many equal keys
            order.push_back(k);
            const char a = char('a' + rnd.bounded(3)), b = char('a' + rnd.bounded(3));
            texts.push_back(uint8_t(a));
            texts.push_back(uint8_t(b));
        }
        const std::vector<int64_t> originalKeys = keys;
        const std::vector<uint8_t> originalTexts = texts;
        std::vector<int> textOrder = order;
        SortIndexBuilder::ShellSort(keys, order);
        SortIndexBuilder::SortTextIndex(texts, 2, textOrder);
        EXPECT_EQ(texts, originalTexts); // the slots stay where they are
        for (int k = 0; k < n; ++k) {
            EXPECT_EQ(keys[size_t(k)], originalKeys[size_t(order[size_t(k)])]);
            if (k > 0) {
                EXPECT_LE(keys[size_t(k - 1)], keys[size_t(k)]);
                const int a = textOrder[size_t(k - 1)], b = textOrder[size_t(k)];
                const int c = std::memcmp(&texts[size_t(2 * a)], &texts[size_t(2 * b)], 2);
                EXPECT_LE(c, 0);
                if (c == 0) {
                    EXPECT_LT(a, b); // equal texts keep their order
                }
            }
        }
    }
}

TEST(SortAlgorithms, TextSortOrdersLongKeysLikeMemcmpAndIsStable)
{
    // Widths around the eight-byte steps, shared prefixes longer than a step, bytes above 127,
    // and counts on both sides of the small-run threshold.
    QRandomGenerator rnd(7);
    for (int width : {1, 7, 8, 9, 17, 40}) {
        for (int n : {2, 31, 33, 3000}) {
            std::vector<uint8_t> texts(size_t(n) * size_t(width));
            for (int k = 0; k < n; ++k)
                for (int b = 0; b < width; ++b) {
                    const bool shared = b < width - 3; // most bytes alike: long equal runs
                    texts[size_t(k * width + b)] = shared ? uint8_t(rnd.bounded(2) ? 'a' : 0xE9)
                                                          : uint8_t(rnd.bounded(3) * 100);
                }
            std::vector<int> order;
            for (int k = 0; k < n; ++k)
                order.push_back(k + 1); // record numbers
            std::vector<int> expected = order;
            std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) {
                return std::memcmp(&texts[size_t((a - 1) * width)], &texts[size_t((b - 1) * width)], size_t(width)) < 0;
            });
            SortIndexBuilder::SortTextIndex(texts, width, order);
            EXPECT_EQ(order, expected) << "width " << width << ", " << n << " keys";
        }
    }
}

} // namespace
