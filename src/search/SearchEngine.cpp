#include "search/SearchEngine.h"

#include "formula/FormulaContext.h"
#include "formula/NumberText.h"
#include "search/CaseFold.h"
#include "search/FieldReader.h"
#include "search/RecordScanner.h"
#include "search/SearchWalk.h"
#include "store/RecordStore.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace ff {

SearchEngine::SearchEngine(const Design &design, const RecordLayout &layout, const RecordCodec &codec,
                           const RecordFile &file, int recordCount, bool readOnly, QChar decimalSeparator,
                           QLocale locale)
    : design_(design), layout_(layout), codec_(codec), file_(file), recordCount_(recordCount), readOnly_(readOnly),
      separator_(decimalSeparator), locale_(locale), names_(design, layout), parser_(names_, decimalSeparator, locale)
{
}

SearchEngine::SearchEngine(RecordStore &store, QChar decimalSeparator, QLocale locale)
    : SearchEngine(store.design(), store.layout(), store.codec(), store.file(), store.RecordCount(),
                   !store.writingAllowed() || store.file().readOnly(), decimalSeparator, std::move(locale))
{
}

CompiledQuery SearchEngine::compile(const QString &line, bool matchCase, const SearchField &focus) const
{
    return parser_.parse(line, matchCase, focus);
}

QStringList SearchEngine::makeRows(const QVector<int> &hits, RecordScanner::Access access, const SearchField *columns,
                                   int count, bool twoThreads) const
{
    // The hits come in walk order, so a walk through the file reads them from mapped windows in
    // the same direction. A long list is made by two threads, each with its own reader.
    const bool scrambled = design_.ScrambleRecords == 1;
    const StoredBytes stored(scrambled);
    QStringList rows;
    rows.resize(hits.size());
    // The columns' numbers and dates are learned once; each thread keeps its own date texts.
    const ResultRowBuilder learned = rowBuilder(columns, count);
    auto make = [&](qsizetype begin, qsizetype end) {
        RecordScanner scanner(file_, recordCount_, scrambled);
        ResultRowBuilder builder = learned.twin();
        std::vector<uint8_t> plain(size_t(layout_.RecordLength));
        for (qsizetype k = begin; k < end; ++k) {
            const int number = hits[k];
            const uint8_t *record = scanner.stored(number, access);
            if (!record) { // gone since the walk: the number alone
                rows[k] = QString::number(number);
                continue;
            }
            if (scrambled) { // only the listed slices: a row reads nothing else
                for (int c = 0; c < count; ++c)
                    stored.copyPlain(record + columns[c].offset, columns[c].length, plain.data() + columns[c].offset);
                record = plain.data();
            }
            rows[k] = builder.row(number, record);
        }
    };
    constexpr qsizetype kTwoThreadRows = 2048;
    if (!twoThreads || hits.size() < kTwoThreadRows) {
        make(0, hits.size());
        return rows;
    }
    const qsizetype middle = hits.size() / 2;
    std::thread helper([&] { make(middle, hits.size()); });
    make(0, middle);
    helper.join();
    return rows;
}

ResultRowBuilder SearchEngine::rowBuilder(const SearchField *columns, int count) const
{
    return ResultRowBuilder(design_, layout_, codec_, columns, count, locale_);
}

QString SearchEngine::totalText(WideFixed fixed, double floating, const QString &decimalSeparator)
{
    if (floating != 0)
        return NumberToText(double(fixed) / 10000.0 + floating, decimalSeparator);
    const bool negative = fixed < 0;
    WideFixedUnsigned v = negative ? static_cast<WideFixedUnsigned>(-fixed) : static_cast<WideFixedUnsigned>(fixed);
    WideFixedUnsigned whole = v / 10000;
    int decimals = int(v % 10000);
    QString digits;
    do {
        digits.prepend(QLatin1Char(char('0' + int(whole % 10))));
        whole /= 10;
    } while (whole != 0);
    QString text = negative ? QLatin1String("-") + digits : digits;
    if (decimals != 0) {
        QString fraction = QStringLiteral("%1").arg(decimals, 4, 10, QLatin1Char('0'));
        while (fraction.endsWith(QLatin1Char('0')))
            fraction.chop(1);
        text += decimalSeparator + fraction;
    }
    return text;
}

namespace {

// Runs one visitor per half of the walk: the whole walk on this thread, or, for a long read-only
// walk, the first half here and the second on a helper thread with its own scanner. The first
// half's hits come first, so the hits and rows are those of the one-thread walk, in the same
// order. Progress and the stop test stay on this thread; after a stop only a leading run of the
// walk order counts, as it would alone. `makeVisitor(part, scanner)` makes a half's visitor.
template <class MakeVisitor>
void RunHalves(const walk::WalkOrder &order, int64_t recordCount, const RecordFile &file, bool scrambled, bool split,
               const SearchOptions &o, walk::Prefetch prefetch, walk::WalkPart &first, walk::WalkPart &second,
               MakeVisitor &&makeVisitor)
{
    const int64_t total = order.size();
    const int step = std::max(1, o.progressStep);
    auto report = [&](int64_t done) {
        if (!o.progress)
            return true;
        o.progress->setPercent(int(done * 100 / std::max<int64_t>(1, total)));
        return !o.progress->cancelled();
    };
    RecordScanner scanner(file, recordCount, scrambled);
    auto visitor = makeVisitor(first, scanner);
    if (!split) {
        walk::WalkPlaces(0, total, order, recordCount, scanner, visitor, first, step, prefetch, report);
        return;
    }
    const int64_t middle = total / 2;
    std::atomic<bool> stop{false};
    std::atomic<int64_t> helperDone{0};
    std::mutex mutex;
    std::condition_variable finished;
    bool helperFinished = false;
    std::thread helper([&] {
        RecordScanner own(file, recordCount, scrambled);
        auto helperVisitor = makeVisitor(second, own);
        walk::WalkPlaces(middle, total, order, recordCount, own, helperVisitor, second, step, prefetch, [&](int64_t k) {
            helperDone.store(k - middle, std::memory_order_relaxed);
            return !stop.load(std::memory_order_relaxed);
        });
        std::lock_guard<std::mutex> lock(mutex);
        helperFinished = true;
        finished.notify_one();
    });
    walk::WalkPlaces(0, middle, order, recordCount, scanner, visitor, first, step, prefetch, [&](int64_t k) {
        if (report(k + helperDone.load(std::memory_order_relaxed)))
            return true;
        stop = true;
        return false;
    });
    // Waiting for the second half, still reporting progress and testing the stop press.
    if (!first.stopped) {
        for (;;) {
            {
                std::unique_lock<std::mutex> lock(mutex);
                if (finished.wait_for(lock, std::chrono::milliseconds(20), [&] { return helperFinished; }))
                    break;
            }
            if (!report(middle + helperDone.load(std::memory_order_relaxed))) {
                stop = true;
                break;
            }
        }
    }
    helper.join();
}

} // namespace

SearchResult SearchEngine::run(const CompiledQuery &q, const SearchOptions &o, MessageSink *messages, FormulaContext *context)
{
    SearchResult r;
    r.command = q.command;
    if (q.command == CommandKind::Find) {
        r.columns = q.columns;
        r.columnCount = 0;
        for (const SearchField &f : names_.defaultColumns())
            r.columns[size_t(r.columnCount++)] = f;
        if (r.columnCount == 0 && q.findField.valid())
            r.columns[size_t(r.columnCount++)] = q.findField;
    } else {
        r.columns = q.columns;
        r.columnCount = q.columnCount;
    }
    if (context)
        context->SearchLine = q.line;
    if (!q.runnable())
        return r; // nothing to walk, no message
    if (q.command == CommandKind::Find && !q.wholeRecord && !q.findField.valid())
        return r;
    r.ran = true;

    // Stored bytes are compared where they lie: the case table folds them through the store's
    // byte substitution first.
    const bool scrambled = design_.ScrambleRecords == 1;
    const StoredBytes stored(scrambled);
    const CaseFold fold = q.matchCase ? CaseFold::identity() : CaseFold(codec_.codePage());
    const std::array<uint8_t, 256> table = stored.composed(fold.table());
    const FieldReader reader(separator_.isEmpty() ? QLatin1Char('.') : separator_.at(0), locale_, stored);
    const walk::ConditionTester tester(reader, table.data(), q.conditions);
    const walk::FindTester finder(q, reader, table.data(), layout_.RecordLength);

    const bool ascending = q.command == CommandKind::Sum || o.forward;
    const walk::WalkOrder order(o, recordCount_, ascending);
    walk::Prefetch prefetch;
    if (!q.conditions.isEmpty()) {
        prefetch.offset = q.conditions.front().field.offset;
    } else if (q.findField.valid() && !q.wholeRecord) {
        prefetch.offset = q.findField.offset;
        prefetch.length = q.findField.length;
    } else {
        prefetch.length = layout_.RecordLength;
    }

    // Select, the find, count and sum read only, and what they find does not depend on the order
    // the records are looked at in: a long walk is split into two halves. Totals in fixed point
    // add up alike in any order; a float total does not, so a sum over a float field keeps the one
    // walk.
    bool floatSum = false;
    for (const ConditionRow &row : q.conditions)
        floatSum = floatSum || row.field.value == ValueKind::Float;
    const bool readOnlyWalk = q.command == CommandKind::Select || q.command == CommandKind::Find
                              || q.command == CommandKind::Count || (q.command == CommandKind::Sum && !floatSum);
    const bool split = readOnlyWalk && o.twoThreadsFrom > 0 && order.size() >= o.twoThreadsFrom
                       && std::thread::hardware_concurrency() >= 2;

    walk::WalkPart first, second;
    auto conditions = [&](const uint8_t *record) { return tester.allHold(record); };
    auto terms = [&](const uint8_t *record) { return finder.matches(record); };
    auto runWith = [&](auto &&makeVisitor) {
        RunHalves(order, recordCount_, file_, scrambled, split, o, prefetch, first, second, makeVisitor);
    };
    switch (q.command) {
    case CommandKind::Select:
        runWith([&](walk::WalkPart &part, RecordScanner &) {
            return walk::ListVisitor<decltype(conditions)>(conditions, part, o.hitCap);
        });
        break;
    case CommandKind::Find:
        runWith([&](walk::WalkPart &part, RecordScanner &) { return walk::ListVisitor<decltype(terms)>(terms, part, o.hitCap); });
        break;
    case CommandKind::Count:
        runWith([&](walk::WalkPart &part, RecordScanner &) { return walk::CountVisitor<decltype(conditions)>(conditions, part); });
        break;
    case CommandKind::Sum:
        runWith([&](walk::WalkPart &part, RecordScanner &) { return walk::SumVisitor(tester, q.conditions, part); });
        break;
    case CommandKind::Replace:
        runWith([&](walk::WalkPart &part, RecordScanner &scanner) {
            return walk::ReplaceVisitor(tester, q, part, scanner, !readOnly_);
        });
        break;
    }

    r.aborted = first.stopped || second.stopped;
    r.hits = std::move(first.hits);
    r.found = first.found;
    r.walked = first.walked;
    r.sumCount = first.sumCount;
    r.skippedLocked = first.skippedLocked;
    r.Replacements = first.replacements;
    WideFixed sumFixed = first.sumFixed;
    const double sumFloat = first.sumFloat; // a float sum is never split
    if (split && !first.stopped) { // the first half is whole: the second half's lead follows it
        r.found += second.found;
        r.walked += second.walked;
        r.sumCount += second.sumCount;
        sumFixed += second.sumFixed;
        for (qsizetype i = 0; i < second.hits.size() && r.hits.size() < o.hitCap; ++i)
            r.hits.append(second.hits.at(i));
    }
    if (q.command == CommandKind::Select || q.command == CommandKind::Find)
        r.rows = makeRows(r.hits, order.access(), r.columns.data(), r.columnCount, split);

    const QString caption = design_.AppTitle;
    switch (q.command) {
    case CommandKind::Sum: {
        r.SumTotal = double(sumFixed) / 10000.0 + sumFloat;
        r.message = QStringLiteral("Total: ") + totalText(sumFixed, sumFloat, separator_);
        if (context)
            context->SumTotal = r.SumTotal;
        if (r.sumCount > 0) {
            // A count of 0 leaves the average as it was: the division fails and is passed over.
            r.SumAverage = r.SumTotal / double(r.sumCount);
            r.averageSet = true;
            if (context)
                context->SumAverage = r.SumAverage;
        }
        if (r.SumTotal > 0 && r.averageSet)
            r.message += QStringLiteral("          Average: ") + NumberToText(r.SumAverage, separator_);
        break;
    }
    case CommandKind::Count:
        r.CountTotal = int(r.found);
        r.message = QString::number(r.CountTotal) + QStringLiteral(" Total");
        if (context)
            context->CountTotal = r.CountTotal;
        break;
    case CommandKind::Replace:
        r.message = QString::number(r.Replacements) + QStringLiteral(" Replacements");
        break;
    default:
        break;
    }
    if (!r.message.isEmpty() && !o.silent && messages)
        messages->ShowMessage(caption, r.message, kMessageColour);
    return r;
}

} // namespace ff
