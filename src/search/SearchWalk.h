#pragma once
// The walk of a search over stored records: the order of the places, the tests of condition rows
// and find terms on stored bytes, one small visitor per command, and the loop that drives a
// visitor over a run of places. The loop is a template, so each command's test is inlined into it;
// the engine (SearchEngine.cpp) picks the visitor, splits long walks over two threads and words
// the outcome.

#include "search/FieldReader.h"
#include "search/RecordScanner.h"
#include "search/ResultRowBuilder.h"
#include "search/SearchEngine.h"
#include "search/SearchPattern.h"

#include <memory>
#include <vector>

namespace ff::walk {

// Which records a walk visits, in which order: all records, a browse order or the hits of an
// earlier search, from the last place to the first unless it goes up.
class WalkOrder {
public:
    WalkOrder(const SearchOptions &options, int64_t recordCount, bool ascending)
        : options_(options), ascending_(ascending)
    {
        within_ = options.within && !options.within->isEmpty();
        sorted_ = !within_ && options.sortIndex
                  && (options.order == BrowseOrder::SortIndexUp || options.order == BrowseOrder::SortIndexDown);
        size_ = within_ ? options.within->size()
                : sorted_ ? std::min<int64_t>(options.sortIndex->size() - 1, recordCount)
                          : recordCount;
    }

    int64_t size() const { return size_; }
    bool ascending() const { return ascending_; }
    RecordScanner::Access access() const
    {
        return (within_ || sorted_) ? RecordScanner::Access::Random
               : ascending_         ? RecordScanner::Access::Forward
                                    : RecordScanner::Access::Backward;
    }
    // The record at walk step k (0-based).
    int64_t recordAt(int64_t k) const
    {
        const int64_t pos = ascending_ ? k + 1 : size_ - k; // 1..size
        if (within_)
            return options_.within->at(pos - 1);
        if (sorted_)
            return options_.order == BrowseOrder::SortIndexDown ? options_.sortIndex->at(size_ + 1 - pos)
                                                                : options_.sortIndex->at(pos);
        return pos;
    }

private:
    const SearchOptions &options_;
    bool ascending_;
    bool within_ = false;
    bool sorted_ = false;
    int64_t size_ = 0;
};

// What one thread's walk over a run of places found.
struct WalkPart {
    QVector<int> hits;
    int64_t found = 0;
    int64_t walked = 0;
    int64_t sumCount = 0;
    WideFixed sumFixed = 0;
    double sumFloat = 0;
    int skippedLocked = 0;
    int replacements = 0;
    bool stopped = false; // the stop press ended this part
};

// Condition rows on stored bytes. Texts are folded through `fold`, the case table composed with
// the store's byte substitution, so a scrambled record is compared where it lies.
class ConditionTester {
public:
    // `rows`: the query's rows, read by allHold(); a "*text*" pattern among them is searched for
    // sixteen places at a time, like a find term.
    ConditionTester(const FieldReader &reader, const uint8_t *fold, const QVector<ConditionRow> &rows);

    bool holds(const ConditionRow &row, const uint8_t *record) const;
    // All the query's rows hold.
    bool allHold(const uint8_t *record) const
    {
        for (qsizetype k = 0; k < rows_.size(); ++k) {
            const ConditionRow &row = rows_[k];
            if (const FoldedNeedle *needle = contains_[size_t(k)].get()) {
                if (!needle->foundIn(record + row.field.offset, row.field.length))
                    return false;
            } else if (!holds(row, record)) {
                return false;
            }
        }
        return true;
    }
    const FieldReader &reader() const { return reader_; }

private:
    const FieldReader &reader_;
    const uint8_t *fold_;
    const QVector<ConditionRow> &rows_;
    std::vector<std::unique_ptr<FoldedNeedle>> contains_; // per row; null for other tests
};

// The plain find: text terms in the focused field or the whole record, or comparisons of a
// number, date or time.
class FindTester {
public:
    FindTester(const CompiledQuery &query, const FieldReader &reader, const uint8_t *fold, int recordLength);
    bool matches(const uint8_t *record) const;

private:
    const CompiledQuery &query_;
    const FieldReader &reader_;
    std::vector<FoldedNeedle> needles_;
    bool trimForTerms_ = false;
    int recordLength_;
};

// The visitors: `visit` takes each stored record of the walk.

// Select and the plain find: the hits, up to the cap; the walk goes on past it and counts them.
// Their rows are made after the walk (MakeRows), for the hits that are kept only.
template <class Test>
class ListVisitor {
public:
    ListVisitor(const Test &test, WalkPart &part, int cap) : test_(test), part_(part), cap_(cap) {}
    void visit(int64_t number, const uint8_t *record)
    {
        if (!test_(record))
            return;
        ++part_.found;
        if (part_.hits.size() < cap_)
            part_.hits.append(int(number));
    }

private:
    const Test &test_;
    WalkPart &part_;
    int cap_;
};

template <class Test>
class CountVisitor {
public:
    CountVisitor(const Test &test, WalkPart &part) : test_(test), part_(part) {}
    void visit(int64_t, const uint8_t *record)
    {
        if (test_(record))
            ++part_.found;
    }

private:
    const Test &test_;
    WalkPart &part_;
};

// Sum: every row's field is added where the row's own test holds (a bare name always adds).
class SumVisitor {
public:
    SumVisitor(const ConditionTester &tester, const QVector<ConditionRow> &rows, WalkPart &part)
        : tester_(tester), rows_(rows), part_(part)
    {
    }
    void visit(int64_t, const uint8_t *record)
    {
        const StoredBytes &stored = tester_.reader().stored();
        for (const ConditionRow &row : rows_) {
            if (row.op != ConditionOp::Name && !tester_.holds(row, record))
                continue;
            const SearchField &f = row.field;
            const uint8_t *p = record + f.offset;
            switch (f.value) {
            case ValueKind::Currency: part_.sumFixed += stored.readInt64(p); break;
            case ValueKind::Whole: part_.sumFixed += WideFixed(stored.readInt32(p)) * 10000; break;
            case ValueKind::Float: part_.sumFloat += stored.readDouble(p); break;
            default: {
                int64_t v = 0;
                if (tester_.reader().fixedValue(f, record, v))
                    part_.sumFixed += v;
                break;
            }
            }
            ++part_.sumCount;
        }
    }

private:
    const ConditionTester &tester_;
    const QVector<ConditionRow> &rows_;
    WalkPart &part_;
};

// Replace: the prepared bytes go into every matching record no other user holds.
class ReplaceVisitor {
public:
    ReplaceVisitor(const ConditionTester &tester, const CompiledQuery &query, WalkPart &part, RecordScanner &scanner,
                   bool canWrite)
        : tester_(tester), query_(query), part_(part), scanner_(scanner), canWrite_(canWrite)
    {
    }
    void visit(int64_t number, const uint8_t *record)
    {
        if (!tester_.allHold(record))
            return;
        ++part_.found;
        if (!canWrite_ || query_.replacements.isEmpty())
            return;
        // The record's lock is held across the write, as a user's save holds it: a user who
        // takes the record a moment after the test would otherwise have it written under them.
        if (!scanner_.claim(number)) {
            ++part_.skippedLocked;
            return;
        }
        bool written = true;
        for (const ReplacementRow &row : query_.replacements)
            written = scanner_.write(number, row.field.offset, row.bytes).ok() && written;
        scanner_.release(number);
        if (written)
            ++part_.replacements;
    }

private:
    const ConditionTester &tester_;
    const CompiledQuery &query_;
    WalkPart &part_;
    RecordScanner &scanner_;
    bool canWrite_;
};

// Where the walk's tests first read, fetched a few records ahead of the walk.
struct Prefetch {
    int offset = 0;
    int length = 1;
    static constexpr int64_t kDistance = 6;
};

// Walks places [begin, end) of `order` into `visitor`. `check(k)` runs before place k and every
// `step` places after it; false ends the walk there.
template <class Visitor, class Check>
void WalkPlaces(int64_t begin, int64_t end, const WalkOrder &order, int64_t recordCount, RecordScanner &scanner,
                Visitor &visitor, WalkPart &part, int step, Prefetch prefetch, Check &&check)
{
    const RecordScanner::Access access = order.access();
    const bool ahead = access != RecordScanner::Access::Random;
    const int64_t distance = order.ascending() ? Prefetch::kDistance : -Prefetch::kDistance;
    int untilCheck = 0;
    for (int64_t k = begin; k < end; ++k) {
        if (untilCheck-- <= 0) {
            untilCheck = step - 1;
            if (!check(k)) {
                part.stopped = true;
                return;
            }
        }
        const int64_t number = order.recordAt(k);
        if (ahead)
            scanner.prefetch(number + distance, prefetch.offset, prefetch.length);
        if (number < 1 || number > recordCount)
            continue;
        const uint8_t *record = scanner.stored(number, access);
        if (!record)
            continue; // a record that cannot be read ends its test
        ++part.walked;
        visitor.visit(number, record);
    }
}

} // namespace ff::walk
