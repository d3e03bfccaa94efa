// The walk over a real record file: which records each command finds, sums, counts and changes,
// the order of the walk, the row texts, the cap, searches on earlier hits, the stop press, the
// lock rule of replace, scrambled files and the walk split over two threads.

#include "search/SearchFixture.h"

#include "formula/FormulaContext.h"

#include <atomic>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

class SearchEngineTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        db.add({"Anna", "12.50", 3, QDate(2024, 1, 5), 1.25, "09:30:00", "Berlin", "10", 1, "first line"});
        db.add({"Bob", "99.99", 1, QDate(2023, 6, 1), 2.5, "14:00:00", "Paris", "8.5", 0, "likes cheese"});
        db.add({"anne", "100.00", 7, QDate(2024, 3, 9), -4, "23:59:59", "berlin", "", 1, "CHEESE and wine"});
        db.add({"Carl", "0.10", 0, QDate(), 0.00005, "", "Rome", "12", 0, ""});
        ASSERT_EQ(db.store.RecordCount(), 4);
    }
    SearchDb db;
};

TEST_F(SearchEngineTest, SelectListsHitsNewestFirstWithTheirColumns)
{
    SearchResult r = db.run(QStringLiteral("select name price city where price>10"));
    EXPECT_EQ(r.hits, (QVector<int>{3, 2, 1}));
    // "name" names the text field and the combo: a column token fills one slot per field it matches.
    EXPECT_EQ(r.rows, (QStringList{"3~anne~~100.00~berlin", "2~Bob~~99.99~Paris", "1~Anna~~12.50~Berlin"}));
    EXPECT_EQ(db.run(QStringLiteral("select pri* qty where price>99")).rows, (QStringList{"3~100.00~7", "2~99.99~1"}));
    EXPECT_TRUE(db.host.texts().isEmpty()); // select shows no message

    SearchOptions forward;
    forward.forward = true;
    EXPECT_EQ(db.run(QStringLiteral("select name where price>10"), forward).hits, (QVector<int>{1, 2, 3}));
}

TEST_F(SearchEngineTest, ConditionsAllHoldAndCompareByKind)
{
    auto hits = [&](const char *line) { return db.run(QString::fromLatin1(line)).hits; };
    EXPECT_EQ(hits("select name where name=an* city=berlin"), (QVector<int>{3, 1})); // case folded
    EXPECT_EQ(hits("select name where name=an?? qty>=3"), (QVector<int>{3, 1}));
    EXPECT_EQ(hits("select name where name=an?? qty>3"), (QVector<int>{3}));
    EXPECT_EQ(hits("select name where name<>bob"), (QVector<int>{4, 3, 1}));
    EXPECT_EQ(hits("select name where when<2024-02-01 when>0"), (QVector<int>{2, 1})); // a zero date is 0
    EXPECT_EQ(hits("select name where amount<0"), (QVector<int>{3}));
    // A float compares by its first four decimals: the stored 0.00005 is 0 there.
    EXPECT_EQ(hits("select name where amount=0"), (QVector<int>{4}));
    EXPECT_EQ(hits("select name where amount>0.00009"), (QVector<int>{2, 1}));
    EXPECT_EQ(hits("select name where time>=12:00 time<=23:59:59"), (QVector<int>{3, 2}));
    EXPECT_EQ(hits("select name where paid=1"), (QVector<int>{3, 1}));
    EXPECT_EQ(hits("select name where size>9"), (QVector<int>{4, 1})); // a number combo reads by Val
    EXPECT_EQ(hits("select name where memo=*cheese*"), (QVector<int>{3, 2}));
    EXPECT_EQ(hits("select name where city='new york'"), (QVector<int>{}));
    // The name occurs twice: the text field wins over the combo of the same name.
    EXPECT_EQ(hits("select name where name=bob"), (QVector<int>{2}));
}

TEST_F(SearchEngineTest, MatchCaseComparesBytesAsTheyStand)
{
    SearchOptions o;
    o.matchCase = true;
    EXPECT_EQ(db.run(QStringLiteral("select name where name=an*"), o).hits, (QVector<int>{3}));
    EXPECT_EQ(db.run(QStringLiteral("select name where name=An*"), o).hits, (QVector<int>{1}));
    EXPECT_EQ(db.run(QStringLiteral("CHEESE"), o, QStringLiteral("memo")).hits, (QVector<int>{3}));
    EXPECT_EQ(db.run(QStringLiteral("CHEESE"), {}, QStringLiteral("memo")).hits, (QVector<int>{3, 2}));
}

TEST_F(SearchEngineTest, BareNameAndUnknownNames)
{
    // A bare name among the conditions passes no record.
    SearchResult bare = db.run(QStringLiteral("select name where price>0 qty"));
    EXPECT_TRUE(bare.ran);
    EXPECT_TRUE(bare.hits.isEmpty());
    // Conditions on unknown or global fields are dropped; with none left nothing runs.
    SearchResult unknown = db.run(QStringLiteral("count nothing>1 global=x"));
    EXPECT_FALSE(unknown.ran);
    EXPECT_TRUE(db.host.texts().isEmpty());
    EXPECT_EQ(db.run(QStringLiteral("count nothing>1 qty>2")).CountTotal, 2);
}

TEST_F(SearchEngineTest, SumAddsBareNamesAndPassingTestsAndCountsTwice)
{
    FormulaContext context;
    context.SumAverage = 42;
    SearchEngine e = db.engine();
    auto sum = [&](const char *line) {
        const CompiledQuery q = e.compile(QString::fromLatin1(line), false, {});
        return e.run(q, {}, &db.host, &context);
    };
    SearchResult all = sum("sum price");
    EXPECT_DOUBLE_EQ(all.SumTotal, 212.59);
    EXPECT_EQ(all.message, QStringLiteral("Total: 212.59          Average: 53.1475"));
    EXPECT_DOUBLE_EQ(context.SumTotal, 212.59);

    EXPECT_DOUBLE_EQ(sum("sum price>50").SumTotal, 199.99);
    EXPECT_DOUBLE_EQ(sum("sum price qty").SumTotal, 212.59 + 11);
    // "where" names no field; the comparison adds a second time what the bare name added.
    SearchResult twice = sum("sum price where price>50");
    EXPECT_DOUBLE_EQ(twice.SumTotal, 212.59 + 199.99);
    EXPECT_EQ(twice.sumCount, 6);

    // A negative total shows no average; a count of 0 leaves the average as it was.
    SearchResult negative = sum("sum amount<0");
    EXPECT_EQ(negative.message, QStringLiteral("Total: -4"));
    EXPECT_DOUBLE_EQ(context.SumAverage, -4);
    SearchResult none = sum("sum price>1000");
    EXPECT_FALSE(none.averageSet);
    EXPECT_EQ(none.message, QStringLiteral("Total: 0"));
    EXPECT_DOUBLE_EQ(context.SumAverage, -4);
    EXPECT_EQ(db.host.texts().size(), 6);
}

TEST_F(SearchEngineTest, CountAndTheSilentFlag)
{
    SearchResult r = db.run(QStringLiteral("count city=berlin"));
    EXPECT_EQ(r.CountTotal, 2);
    EXPECT_EQ(db.host.texts(), QStringList{"2 Total"});
    SearchOptions silent;
    silent.silent = true;
    EXPECT_EQ(db.run(QStringLiteral("count qty>0"), silent).CountTotal, 3);
    EXPECT_EQ(db.host.texts().size(), 1);
}

TEST_F(SearchEngineTest, PlainFindTermsAndComparisons)
{
    auto find = [&](const char *line, const char *focus) { return db.run(QString::fromLatin1(line), {}, QString::fromLatin1(focus)).hits; };
    EXPECT_EQ(find("ann", "F1"), (QVector<int>{3, 1}));
    EXPECT_EQ(find("cheese+wine", "memo"), (QVector<int>{3}));
    EXPECT_EQ(find("wine or first", "memo"), (QVector<int>{3, 1}));
    EXPECT_EQ(find("!paris", "F1"), (QVector<int>{2})); // the whole record
    EXPECT_EQ(find(">50", "price"), (QVector<int>{3, 2}));
    EXPECT_EQ(find("1><12.5", "price"), (QVector<int>{1}));
    EXPECT_EQ(find("<>3", "qty"), (QVector<int>{4, 3, 2}));
    EXPECT_EQ(find("-4", "amount"), (QVector<int>{})); // DigitsOnly drops the sign
    EXPECT_EQ(find("2024-01-05", "when"), (QVector<int>{1}));
    EXPECT_EQ(find("93000", "time"), (QVector<int>{1}));
    EXPECT_EQ(find(">=140000", "time"), (QVector<int>{3, 2}));
    EXPECT_EQ(find("1", "paid"), (QVector<int>{3, 1}));
}

TEST_F(SearchEngineTest, DateValuesAreReadInTheOrderOfTheSearchLocale)
{
    db.add({"Dora", "1.00", 1, QDate(1815, 12, 10), 0, "", "Rome", "", 0, ""});
    const QLocale us(QLocale::English, QLocale::UnitedStates), gb(QLocale::English, QLocale::UnitedKingdom),
        de(QLocale::German, QLocale::Germany), c = QLocale::c();
    const struct {
        const QLocale &locale;
        const char *line;
        const char *focus; // empty for a command
        QVector<int> hits;
    } rows[] = {
        // The C locale reads as en_US: 1/6/2024 is 6 January. Carl's empty date is 0, after 1800.
        {c, "select name where when>1/1/1800", "", {5, 4, 3, 2, 1}},
        {c, "select name where when<1/6/2024 when>0", "", {2, 1}},
        {us, "select name where when<1/6/2024 when>0", "", {2, 1}},
        {gb, "select name where when<1/6/2024 when>0", "", {3, 2, 1}},
        {de, "select name where when<1.6.2024 when>0", "", {3, 2, 1}},
        {de, "select name where when<1.2.24 when>0", "", {2, 1}},
        {c, "select name where when>=December~10,~1815 when<1/1/1816", "", {5}},
        {c, "<1/1/1900", "when", {5, 4}},
        {gb, "1/1/2024><31/3/2024", "when", {3, 1}},
        {de, "05.01.2024", "when", {1}},
    };
    for (const auto &row : rows) {
        SearchEngine e(db.store, row.locale.decimalPoint().at(0), row.locale);
        const QString focus = *row.focus ? QString::fromLatin1(row.focus) : QStringLiteral("F1");
        const CompiledQuery q = e.compile(QString::fromLatin1(row.line), false, e.names().byTag(focus));
        EXPECT_EQ(e.run(q, {}, &db.host).hits, row.hits) << row.line << " in " << row.locale.name().toStdString();
    }
}

TEST(SearchDefaultCap, ASearchWithTheDefaultOptionsListsExactly32000RowsAndCountsEveryHit)
{
    // The cap a user gets, not one a test sets: 32,000 rows. Copies of one record are written
    // straight into the file, so that the walk meets more hits than that.
    SearchDb db;
    db.add({"Anna", "12.50", 3, QDate(2024, 1, 5), 1.25, "09:30:00", "Berlin", "10", 1, "first line"});
    auto stored = db.store.readPlainRecord(1); // the design does not scramble: as stored
    ASSERT_TRUE(stored.ok());
    const int total = 32000 + 777;
    for (int n = 2; n <= total; ++n)
        ASSERT_TRUE(db.store.file().writeRecord(n, *stored).ok());
    ASSERT_TRUE(db.store.refreshCount().ok());
    ASSERT_EQ(db.store.RecordCount(), total);

    for (const char *line : {"select name price where qty=3", "anna"}) {
        SCOPED_TRACE(line);
        const SearchResult r = db.run(QString::fromLatin1(line));
        EXPECT_EQ(r.hits.size(), 32000);
        EXPECT_EQ(r.rows.size(), 32000);
        EXPECT_EQ(r.found, total);
        EXPECT_EQ(r.walked, total);
        // Newest first: the rows kept are those of the last 32,000 records.
        EXPECT_EQ(r.hits.first(), total);
        EXPECT_EQ(r.hits.last(), total - 32000 + 1);
        EXPECT_TRUE(r.rows.last().startsWith(QString::number(total - 32000 + 1) + QLatin1Char('~')));
    }
}

TEST_F(SearchEngineTest, SearchOnEarlierHitsCoversOnlyThose)
{
    SearchResult first = db.run(QStringLiteral("select name where city=berlin"));
    ASSERT_EQ(first.hits, (QVector<int>{3, 1}));
    SearchOptions o;
    o.within = &first.hits;
    SearchResult second = db.run(QStringLiteral("select name where qty>=0"), o);
    EXPECT_EQ(second.walked, 2);
    EXPECT_EQ(second.hits, (QVector<int>{1, 3})); // walked from the last position of the list down
    EXPECT_EQ(db.run(QStringLiteral("bob"), o).hits, (QVector<int>{}));
}

TEST_F(SearchEngineTest, WalkFollowsASortIndex)
{
    const QVector<int> index{0, 4, 2, 1, 3};
    SearchOptions o;
    o.sortIndex = &index;
    o.order = BrowseOrder::SortIndexUp;
    o.forward = true;
    EXPECT_EQ(db.run(QStringLiteral("select name where qty>=0"), o).hits, (QVector<int>{4, 2, 1, 3}));
    o.order = BrowseOrder::SortIndexDown;
    EXPECT_EQ(db.run(QStringLiteral("select name where qty>=0"), o).hits, (QVector<int>{3, 1, 2, 4}));
}

struct StopAfter : Progress {
    int calls = 0, stopAt;
    explicit StopAfter(int n) : stopAt(n) {}
    void setPercent(int) override {}
    bool cancelled() override { return ++calls > stopAt; }
};

TEST_F(SearchEngineTest, StopKeepsWhatWasFound)
{
    StopAfter stop(2);
    SearchOptions o;
    o.progress = &stop;
    o.progressStep = 1;
    SearchResult r = db.run(QStringLiteral("select name where qty>=0"), o);
    EXPECT_TRUE(r.aborted);
    EXPECT_EQ(r.hits, (QVector<int>{4, 3}));

    StopAfter replaceStop(1);
    o.progress = &replaceStop;
    SearchResult rep = db.run(QStringLiteral("replace city=Oslo where qty>=0"), o);
    EXPECT_TRUE(rep.aborted);
    EXPECT_EQ(rep.Replacements, 1);
    EXPECT_EQ(db.run(QStringLiteral("count city=oslo")).CountTotal, 1);
}

TEST_F(SearchEngineTest, ReplaceWritesPreparedBytesAndSkipsHeldRecords)
{
    // Another user holds record 2: an open-file-description lock on its first byte.
    const QByteArray path = QFile::encodeName(db.store.file().partName(0));
    const int other = ::open(path.constData(), O_RDWR);
    ASSERT_GE(other, 0);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 2 * db.store.layout().RecordLength - 1;
    lock.l_len = 1;
    ASSERT_EQ(::fcntl(other, F_OFD_SETLK, &lock), 0);

    SearchResult r = db.run(QStringLiteral("replace price=5.5 city='Los Angeles' when=2020-02-29 paid=0 where qty<5"));
    ::close(other);
    EXPECT_EQ(r.Replacements, 2);
    EXPECT_EQ(r.skippedLocked, 1);
    EXPECT_EQ(db.host.texts(), QStringList{"2 Replacements"});
    EXPECT_TRUE(r.hits.isEmpty());
    EXPECT_EQ(db.run(QStringLiteral("select name price city where price=5.5")).rows,
              (QStringList{"4~Carl~~5.50~los angele", "1~Anna~~5.50~los angele"})); // lower-cased line, cut to the slot
    EXPECT_EQ(db.run(QStringLiteral("count when=2020-02-29 paid=0")).CountTotal, 2);
    EXPECT_EQ(db.run(QStringLiteral("count name=bob price=99.99")).CountTotal, 1);
}

// Watches the record file from another user's descriptor at every progress report of a walk.
struct LockWatcher : Progress {
    int fd;
    int length;
    int records;
    int heldSeen = 0;
    int reports = 0;
    LockWatcher(const QString &path, int recordLength, int count)
        : fd(::open(QFile::encodeName(path).constData(), O_RDWR)), length(recordLength), records(count)
    {
    }
    ~LockWatcher() override { ::close(fd); }
    void setPercent(int) override {}
    bool cancelled() override
    {
        ++reports;
        for (int r = 2; r <= records; ++r) {
            struct flock lock {};
            lock.l_type = F_WRLCK;
            lock.l_whence = SEEK_SET;
            lock.l_start = off_t(r) * length - 1;
            lock.l_len = 1;
            if (::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK)
                ++heldSeen;
        }
        return false;
    }
};

TEST_F(SearchEngineTest, ReplaceHoldsEachRecordOnlyWhileWritingIt)
{
    // Between two records of the walk no lock of the replace is left: a user can take any record
    // the walk has passed, and the walk's own claims do not pile up.
    LockWatcher watcher(db.store.file().partName(0), db.store.layout().RecordLength, db.store.RecordCount());
    SearchOptions o;
    o.progress = &watcher;
    o.progressStep = 1;
    const SearchResult r = db.run(QStringLiteral("replace city=Oslo where qty>=0"), o);
    EXPECT_EQ(r.Replacements, db.store.RecordCount());
    EXPECT_GE(watcher.reports, db.store.RecordCount() - 1);
    EXPECT_EQ(watcher.heldSeen, 0);
}

TEST(SearchScrambled, ScrambledRecordsReadAndWriteThroughTheTable)
{
    SearchDb db(true);
    db.add({"Zed", "1.00", 1, QDate(2024, 1, 1), 0, "", "Kyiv", "", 0, "note"});
    db.add({"Amy", "2.00", 2, QDate(2024, 1, 2), 0, "", "Lviv", "", 1, "note"});
    EXPECT_EQ(db.run(QStringLiteral("select name city where city=*iv")).rows, (QStringList{"2~Amy~~Lviv", "1~Zed~~Kyiv"}));
    EXPECT_EQ(db.run(QStringLiteral("replace city=Odesa where name=zed")).Replacements, 1);
    ASSERT_TRUE(db.store.JumpToRecord(1).ok());
    EXPECT_EQ(db.page.ComboText[1], QStringLiteral("odesa"));
    EXPECT_EQ(db.run(QStringLiteral("!odesa")).hits, (QVector<int>{1}));
}

TEST(SearchReadOnly, ReplaceWritesNothingWhenTheStoreMayNotWrite)
{
    SearchDb db;
    db.add({"Zed", "1.00", 1, QDate(2024, 1, 1), 0, "", "Kyiv", "", 0, ""});
    db.store.setViewOnly(true);
    SearchResult r = db.run(QStringLiteral("replace city=Odesa where qty=1"));
    EXPECT_EQ(r.Replacements, 0);
    EXPECT_EQ(db.run(QStringLiteral("count city=kyiv")).CountTotal, 1);
}


// The long walks split over two threads: the same hits, rows and counts as one thread, in the
// same order, for every kind of walk; a stop keeps a leading run of the walk order.
class TwoThreadWalkTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const char *cities[] = {"Berlin", "Paris", "Rome", "Oslo"};
        for (int k = 1; k <= kRecords; ++k)
            db.add({QStringLiteral("N%1").arg(k), QString::number(k % 50) + QStringLiteral(".25"), k % 7,
                    QDate(2020, 1, 1).addDays(k), k * 0.5, "", cities[k % 4], "", k % 2,
                    k % 9 == 0 ? "has cheese" : "plain"});
        ASSERT_EQ(db.store.RecordCount(), kRecords);
    }
    SearchResult run(const char *line, SearchOptions o, bool split)
    {
        o.twoThreadsFrom = split ? 2 : 0;
        return db.run(QString::fromLatin1(line), o);
    }
    static constexpr int kRecords = 301; // an odd count: halves of unequal size
    SearchDb db;
};

TEST_F(TwoThreadWalkTest, SameHitsRowsAndCountsAsOneThread)
{
    const QVector<int> within{5, 300, 17, 18, 150, 151, 2, 299};
    QVector<int> index{0};
    for (int k = kRecords; k >= 1; --k)
        index.append(k % 2 ? k : kRecords + 1 - k); // a scrambled but complete order
    for (const char *line : {"select name price city where price>=20", "select name where city=ber*", "cheese",
                             "count paid=1", "select name where qty=3 price<10", "count price>1000"}) {
        for (int variant = 0; variant < 5; ++variant) {
            SearchOptions o;
            o.forward = variant == 1;
            o.hitCap = variant == 2 ? 40 : variant == 3 ? 200 : 32000; // the cap in the first, in the second half
            if (variant == 4) {
                o.within = &within;
                o.sortIndex = &index; // the earlier hits win over a sort order
                o.order = BrowseOrder::SortIndexUp;
            }
            const SearchResult one = run(line, o, false), two = run(line, o, true);
            SCOPED_TRACE(std::string(line) + ", variant " + std::to_string(variant));
            EXPECT_FALSE(two.aborted);
            EXPECT_EQ(two.hits, one.hits);
            EXPECT_EQ(two.rows, one.rows);
            EXPECT_EQ(two.found, one.found);
            EXPECT_EQ(two.walked, one.walked);
            EXPECT_EQ(two.CountTotal, one.CountTotal);
            EXPECT_EQ(two.message, one.message);
        }
    }
    SearchOptions sorted;
    sorted.sortIndex = &index;
    sorted.order = BrowseOrder::SortIndexDown;
    EXPECT_EQ(run("select name where qty>=0", sorted, true).hits, run("select name where qty>=0", sorted, false).hits);
    EXPECT_EQ(run("select name where qty>=0", {}, true).hits.size(), kRecords);
}

struct CountingProgress : Progress {
    std::atomic<int> calls{0};
    int stopAt;
    QVector<int> percents; // touched by one thread only: the one that called run()
    std::thread::id owner = std::this_thread::get_id();
    bool otherThread = false;
    explicit CountingProgress(int n) : stopAt(n) {}
    void setPercent(int p) override
    {
        otherThread = otherThread || std::this_thread::get_id() != owner;
        percents.append(p);
    }
    bool cancelled() override
    {
        otherThread = otherThread || std::this_thread::get_id() != owner;
        return ++calls > stopAt;
    }
};

TEST_F(TwoThreadWalkTest, StopAndProgressStayOnTheCallingThread)
{
    SearchOptions o;
    o.progressStep = 1;
    // A stop in the first half ends the walk where one thread would end it.
    for (int stopAt : {0, 1, 40, 149}) {
        CountingProgress a(stopAt), b(stopAt);
        o.progress = &a;
        const SearchResult one = run("select name where qty>=0", o, false);
        o.progress = &b;
        const SearchResult two = run("select name where qty>=0", o, true);
        EXPECT_TRUE(one.aborted);
        EXPECT_TRUE(two.aborted);
        EXPECT_EQ(two.hits, one.hits) << "stop at " << stopAt;
        EXPECT_EQ(two.found, one.found);
        EXPECT_FALSE(b.otherThread);
    }
    // A stop while the helper walks the second half: what stands is a leading run of the walk.
    o.progress = nullptr;
    const QVector<int> all = run("select name where qty>=0", o, false).hits;
    CountingProgress late(151);
    o.progress = &late;
    const SearchResult r = run("select name where qty>=0", o, true);
    EXPECT_FALSE(late.otherThread);
    ASSERT_LE(r.hits.size(), all.size());
    EXPECT_GE(r.hits.size(), 151); // the whole first half
    EXPECT_EQ(r.hits, all.mid(0, r.hits.size()));
    EXPECT_EQ(r.aborted, r.hits.size() < all.size());
    EXPECT_EQ(r.found, r.hits.size());
    // The percentages only grow.
    for (qsizetype i = 1; i < late.percents.size(); ++i)
        EXPECT_LE(late.percents[i - 1], late.percents[i]);
}

TEST_F(TwoThreadWalkTest, SumsInFixedPointSplitFloatSumsAndReplaceDoNot)
{
    SearchOptions o;
    o.twoThreadsFrom = 2;
    // Money, whole numbers and dates add up exactly in any order; the split sum is the same.
    for (const char *line : {"sum price", "sum price qty where paid=1", "sum qty when where city=rome"}) {
        const SearchResult one = db.run(QString::fromLatin1(line)), two = db.run(QString::fromLatin1(line), o);
        EXPECT_EQ(two.message, one.message) << line;
        EXPECT_EQ(two.sumCount, one.sumCount) << line;
        EXPECT_EQ(two.walked, kRecords) << line;
    }
    // A float total depends on the order of the additions: sum keeps the single walk.
    EXPECT_EQ(db.run(QStringLiteral("sum amount price"), o).message, db.run(QStringLiteral("sum amount price")).message);
    CountingProgress early(5);
    o.progress = &early;
    o.progressStep = 1;
    const SearchResult stopped = db.run(QStringLiteral("sum qty"), o);
    EXPECT_TRUE(stopped.aborted);
    EXPECT_EQ(stopped.sumCount, 5); // records 1 to 5: a sum walks up
    EXPECT_FALSE(early.otherThread);
    o.progress = nullptr;
    o.progressStep = 4096;
    CountingProgress stop(3);
    o.progress = &stop;
    o.progressStep = 1;
    const SearchResult rep = db.run(QStringLiteral("replace city=Lima where qty>=0"), o);
    EXPECT_TRUE(rep.aborted);
    EXPECT_EQ(rep.Replacements, 3); // records 301, 300, 299: a leading run, written by one walk
    EXPECT_EQ(db.run(QStringLiteral("select name where city=lima")).hits, (QVector<int>{301, 300, 299}));
}

} // namespace
