#include "search/SearchEngine.h"

#include "formula/FormulaContext.h"
#include "formula/NumberText.h"
#include "search/CaseFold.h"
#include "search/FieldReader.h"
#include "search/RecordScanner.h"
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

namespace {

bool compareFixed(int64_t value, int op, int64_t target)
{
    switch (op) {
    case kOpEqual: return value == target;
    case kOpNotEqual: return value != target;
    case kOpLessEqual: return value <= target;
    case kOpGreaterEqual: return value >= target;
    case kOpLess: return value < target;
    case kOpGreater: return value > target;
    default: return false;
    }
}

bool compareFind(int64_t value, const FindTerm &t)
{
    switch (t.op) {
    case kFindEqual: return value == t.low;
    case kFindGreater: return value > t.low;
    case kFindLess: return value < t.low;
    case kFindNotEqual: return value != t.low;
    case kFindLessEqual: return value <= t.low;
    case kFindGreaterEqual: return value >= t.low;
    case kFindBetween: return value >= t.low && value <= t.high;
    default: return false;
    }
}

// One condition row against a plain record.
struct RowTester {
    const FieldReader &reader;
    const uint8_t *fold;

    bool holds(const ConditionRow &row, const uint8_t *record) const
    {
        if (row.op == kOpName)
            return false; // a bare name has no test
        const SearchField &f = row.field;
        if (f.value == ValueKind::Text) {
            const uint8_t *p = record + f.offset;
            if (row.op == kOpEqual)
                return row.pattern.matchesPadded(p, f.length, fold);
            const int n = FieldReader::trimmedLength(p, f.length);
            if (row.op == kOpNotEqual) {
                if (n != row.text.size())
                    return true;
                const auto *t = reinterpret_cast<const uint8_t *>(row.text.constData());
                for (int k = 0; k < n; ++k)
                    if (fold[p[k]] != t[k])
                        return true;
                return false;
            }
            return compareFixed(FieldReader::toFixed(reader.valBytes(p, n)), row.op, row.fixed);
        }
        int64_t v = 0;
        if (!reader.fixedValue(f, record, v))
            return false;
        return compareFixed(v, row.op, row.fixed);
    }
};

// What one thread's walk over a run of the walk order found.
struct WalkPart {
    QVector<int> hits;
    QStringList rows;
    int64_t found = 0;
    int64_t walked = 0;
    int64_t sumCount = 0;
    WideFixed sumFixed = 0;
    double sumFloat = 0;
    int skippedLocked = 0;
    int replacements = 0;
    bool stopped = false; // the stop press ended this part
};

} // namespace

QString SearchEngine::rowText(int record, const uint8_t *plain, const SearchField *columns, int count) const
{
    QString row = QString::number(record);
    const CodePage &cp = codec_.codePage();
    for (int k = 0; k < count; ++k) {
        const SearchField &f = columns[k];
        row += QLatin1Char('~');
        const uint8_t *p = plain + f.offset;
        switch (f.kind) {
        case SearchKind::Field: {
            const QByteArray raw = QByteArray::fromRawData(reinterpret_cast<const char *>(plain), layout_.RecordLength);
            row += codec_.fieldDisplayText(raw, f.index);
            break;
        }
        case SearchKind::Check:
            row += QString::number((p[0] >= '0' && p[0] <= '9') ? p[0] - '0' : 0);
            break;
        case SearchKind::Note: {
            QString text = cp.decode(reinterpret_cast<const char *>(p), FieldReader::trimmedLength(p, f.length));
            text.replace(QLatin1String("\r\n"), QLatin1String(" "));
            text.replace(QLatin1Char('\r'), QLatin1Char(' '));
            text.replace(QLatin1Char('\n'), QLatin1Char(' '));
            row += text;
            break;
        }
        case SearchKind::Picture: {
            int lead = 0;
            while (lead < f.length && p[lead] == ' ')
                ++lead;
            row += cp.decode(reinterpret_cast<const char *>(p + lead), f.length - lead);
            break;
        }
        default:
            row += cp.decode(reinterpret_cast<const char *>(p), FieldReader::trimmedLength(p, f.length));
            break;
        }
    }
    return row;
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

    const CodePage &cp = codec_.codePage();
    const CaseFold fold = q.matchCase ? CaseFold::identity() : CaseFold(cp);
    const uint8_t *table = fold.table();
    const FieldReader reader(separator_.isEmpty() ? QLatin1Char('.') : separator_.at(0), locale_);
    const RowTester tester{reader, table};

    // Which records, in which order.
    const bool useWithin = o.within && !o.within->isEmpty();
    const bool useSort = !useWithin && o.sortIndex && (o.order == BrowseOrder::SortIndexUp || o.order == BrowseOrder::SortIndexDown);
    const int64_t total = useWithin ? o.within->size() : useSort ? std::min<int64_t>(o.sortIndex->size() - 1, recordCount_)
                                                               : recordCount_;
    const bool ascending = q.command == CommandKind::Sum || o.forward;
    const RecordScanner::Access access = (useWithin || useSort) ? RecordScanner::Access::Random
                                         : ascending            ? RecordScanner::Access::Forward
                                                                : RecordScanner::Access::Backward;
    auto recordAt = [&](int64_t pos) -> int64_t { // pos 1..total
        if (useWithin)
            return o.within->at(pos - 1);
        if (useSort)
            return o.order == BrowseOrder::SortIndexDown ? o.sortIndex->at(total + 1 - pos) : o.sortIndex->at(pos);
        return pos;
    };

    std::vector<FoldedNeedle> needles;
    bool trimForTerms = false;
    for (const FindTerm &t : q.terms) {
        needles.emplace_back(t.text, table);
        trimForTerms = trimForTerms || t.text.isEmpty() || t.text.endsWith(' ');
    }

    // The first byte the tests read, fetched a few records ahead of the walk.
    constexpr int64_t kPrefetchDistance = 6;
    const int prefetchOffset = !q.conditions.isEmpty() ? q.conditions.front().field.offset
                               : q.findField.valid() && !q.wholeRecord ? q.findField.offset : 0;
    const int prefetchLength = !q.conditions.isEmpty() ? 1
                               : q.findField.valid() && !q.wholeRecord ? q.findField.length : layout_.RecordLength;

    const bool canWrite = !readOnly_;
    const int step = std::max(1, o.progressStep);

    // Walks places [begin, end) of the walk order into `part`. `check(k)` runs before place k
    // and every `step` places after it; false ends the walk there.
    auto walk = [&](int64_t begin, int64_t end, WalkPart &part, RecordScanner &scanner, auto &&check) {
        int untilCheck = 0;
        for (int64_t k = begin; k < end; ++k) {
            if (untilCheck-- <= 0) {
                untilCheck = step - 1;
                if (!check(k)) {
                    part.stopped = true;
                    return;
                }
            }
            const int64_t pos = ascending ? k + 1 : total - k;
            const int64_t number = recordAt(pos);
            if (access != RecordScanner::Access::Random)
                scanner.prefetch(ascending ? number + kPrefetchDistance : number - kPrefetchDistance, prefetchOffset,
                                 prefetchLength);
            if (number < 1 || number > recordCount_)
                continue;
            const uint8_t *rec = scanner.record(number, access);
            if (!rec)
                continue; // a record that cannot be read ends its test
            ++part.walked;

            bool hit = false;
            switch (q.command) {
            case CommandKind::Sum:
                for (const ConditionRow &row : q.conditions) {
                    if (row.op != kOpName && !tester.holds(row, rec))
                        continue;
                    const SearchField &f = row.field;
                    const uint8_t *p = rec + f.offset;
                    switch (f.value) {
                    case ValueKind::Currency: part.sumFixed += FieldReader::readInt64(p); break;
                    case ValueKind::Whole: part.sumFixed += WideFixed(FieldReader::readInt32(p)) * 10000; break;
                    case ValueKind::Float: part.sumFloat += FieldReader::readDouble(p); break;
                    default: {
                        int64_t v = 0;
                        if (reader.fixedValue(f, rec, v))
                            part.sumFixed += v;
                        break;
                    }
                    }
                    ++part.sumCount;
                }
                continue;
            case CommandKind::Find: {
                if (q.comparison) {
                    int64_t v = 0;
                    if (!reader.fixedValue(q.findField, rec, v))
                        break;
                    hit = q.allTerms;
                    for (const FindTerm &t : q.terms) {
                        const bool ok = compareFind(v, t);
                        if (ok != q.allTerms) {
                            hit = ok;
                            break;
                        }
                    }
                    break;
                }
                const uint8_t *hay = q.wholeRecord ? rec : rec + q.findField.offset;
                const int full = q.wholeRecord ? scanner.recordLength() : q.findField.length;
                // The slice is right-trimmed; that can only matter to a term ending in a blank.
                const int n = trimForTerms ? FieldReader::trimmedLength(hay, full) : full;
                hit = q.allTerms;
                for (const FoldedNeedle &needle : needles) {
                    const bool ok = needle.foundIn(hay, n);
                    if (ok != q.allTerms) { // the first missing "+" term, or the first "or" term found
                        hit = ok;
                        break;
                    }
                }
                break;
            }
            default:
                hit = true;
                for (const ConditionRow &row : q.conditions)
                    if (!tester.holds(row, rec)) {
                        hit = false;
                        break;
                    }
                break;
            }
            if (!hit)
                continue;
            ++part.found;
            if (q.command == CommandKind::Count)
                continue;
            if (q.command == CommandKind::Replace) {
                if (!canWrite || q.replacements.isEmpty())
                    continue;
                if (scanner.heldByOther(number)) {
                    ++part.skippedLocked;
                    continue;
                }
                bool written = true;
                for (const ReplacementRow &row : q.replacements)
                    written = scanner.write(number, row.field.offset, row.bytes).ok() && written;
                if (written)
                    ++part.replacements;
                continue;
            }
            if (part.hits.size() >= o.hitCap)
                continue; // the row is lost, the walk goes on
            part.hits.append(int(number));
            part.rows.append(rowText(int(number), rec, r.columns.data(), r.columnCount));
        }
    };

    // Select, the find, count and sum read only, and what they find does not depend on the order
    // the records are looked at in: a long walk is split into two halves, the second one walked on
    // a helper thread with its own scanner. The first half's hits come first, so the hits and rows
    // are those of the one-thread walk, in the same order. Progress and the stop test stay on
    // this thread; after a stop only a leading run of the walk order counts, as it would alone.
    // Totals in fixed point add up alike in any order; a float total does not, so a sum over a
    // float field keeps the one walk.
    bool floatSum = false;
    for (const ConditionRow &row : q.conditions)
        floatSum = floatSum || row.field.value == ValueKind::Float;
    const bool readOnlyWalk = q.command == CommandKind::Select || q.command == CommandKind::Find
                              || q.command == CommandKind::Count || (q.command == CommandKind::Sum && !floatSum);
    const bool split = readOnlyWalk && o.twoThreadsFrom > 0 && total >= o.twoThreadsFrom
                       && std::thread::hardware_concurrency() >= 2;
    auto report = [&](int64_t done) {
        if (!o.progress)
            return true;
        o.progress->setPercent(int(done * 100 / std::max<int64_t>(1, total)));
        return !o.progress->cancelled();
    };
    WalkPart first, second;
    RecordScanner scanner(file_, recordCount_, design_.ScrambleRecords == 1);
    if (!split) {
        walk(0, total, first, scanner, report);
    } else {
        const int64_t middle = total / 2;
        std::atomic<bool> stop{false};
        std::atomic<int64_t> helperDone{0};
        std::mutex mutex;
        std::condition_variable finished;
        bool helperFinished = false;
        std::thread helper([&] {
            RecordScanner own(file_, recordCount_, design_.ScrambleRecords == 1);
            walk(middle, total, second, own, [&](int64_t k) {
                helperDone.store(k - middle, std::memory_order_relaxed);
                return !stop.load(std::memory_order_relaxed);
            });
            std::lock_guard<std::mutex> lock(mutex);
            helperFinished = true;
            finished.notify_one();
        });
        walk(0, middle, first, scanner, [&](int64_t k) {
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
    r.aborted = first.stopped || second.stopped;
    r.hits = std::move(first.hits);
    r.rows = std::move(first.rows);
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
        for (qsizetype i = 0; i < second.hits.size() && r.hits.size() < o.hitCap; ++i) {
            r.hits.append(second.hits.at(i));
            r.rows.append(second.rows.at(i));
        }
    }

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
