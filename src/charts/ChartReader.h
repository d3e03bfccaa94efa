#pragma once
// Reads the values of one element of every record straight from the record files, in the browse
// order of the main window (file order, a sort index up or down, a result list), without showing
// any record: the charts' statistics and groups. Records are read through the search's scanner, a
// window of many records at a time, and a scrambled store is turned into plain bytes a slice at a
// time. Every 600 records the progress is told and the stop press learned; a stopped read keeps
// what it has.

#include "core/Progress.h"
#include "search/FieldReader.h"
#include "search/RecordScanner.h"
#include "search/SearchNames.h"
#include "store/RecordStore.h"

#include <QVector>
#include <cstdint>
#include <vector>

namespace ff::charts {

// What the main window charts: a text field, a combo or a check field (ChartKind 1, 2, 3).
enum class ChartKind : uint8_t { Field = 1, Combo = 2, Check = 3 };

// Records between two progress reports and stop tests.
constexpr int kChartYieldStep = 600;
// How many records ahead of the walk the processor is asked to fetch the element's bytes.
constexpr int64_t kPrefetchDistance = 8;

class ChartReader {
public:
    ChartReader(RecordStore &store, ChartKind kind, int index);

    // False when the element has no bytes in the record.
    bool valid() const { return field_.valid(); }
    const SearchField &field() const { return field_; }
    // A text field whose type holds a number (1 to 5): the statistics are made for it.
    bool numeric() const;
    // A field whose stored value is a number or a date (types 1 to 9): grouped by value.
    bool storedNumber() const;
    int64_t recordCount() const { return recordCount_; }

    // Calls `visit(double)` with each value as a number, in browse order. False when stopped.
    template <class Visit>
    bool readNumbers(Visit &&visit, Progress *progress)
    {
        return walk([&](const uint8_t *record) { visit(reader_.numberValue(field_, record)); }, progress);
    }
    // Calls `visit(const uint8_t *plain, int length)` with the plain slice of each record, in browse
    // order. False when stopped.
    template <class Visit>
    bool readSlices(Visit &&visit, Progress *progress);
    // Calls `visit(int64_t fixed)` with each stored number or date in the 4-decimal fixed-point form.
    template <class Visit>
    bool readFixed(Visit &&visit, Progress *progress);

private:
    template <class Visit>
    bool walk(Visit &&visit, Progress *progress);

    RecordStore &store_;
    SearchNames names_;
    SearchField field_;
    FieldReader reader_;
    int64_t recordCount_;
    BrowseOrder order_;
    QVector<int> index_;
};

template <class Visit>
bool ChartReader::walk(Visit &&visit, Progress *progress)
{
    const bool indexed = order_ != BrowseOrder::FileOrder && index_.size() > 1;
    const int64_t total = indexed ? int64_t(index_.size()) - 1 : recordCount_;
    const bool down = order_ == BrowseOrder::SortIndexDown;
    RecordScanner scanner(store_.file(), recordCount_, store_.design().ScrambleRecords == 1);
    const RecordScanner::Access access = indexed ? RecordScanner::Access::Random : RecordScanner::Access::Forward;
    int untilYield = kChartYieldStep;
    for (int64_t i = 1; i <= total; ++i) {
        if (--untilYield == 0) {
            untilYield = kChartYieldStep;
            if (progress) {
                progress->setPercent(int(i * 100 / total));
                if (progress->cancelled())
                    return false;
            }
        }
        const int64_t number = !indexed ? i : index_.at(down ? total + 1 - i : i);
        if (number < 1 || number > recordCount_)
            continue;
        if (!indexed) // the records a few steps ahead, while this one is counted
            scanner.prefetch(number + kPrefetchDistance, field_.offset, field_.length);
        const uint8_t *record = scanner.stored(number, access);
        if (!record)
            continue; // a record that cannot be read adds nothing
        visit(record);
    }
    if (progress)
        progress->setPercent(100);
    return true;
}

template <class Visit>
bool ChartReader::readSlices(Visit &&visit, Progress *progress)
{
    std::vector<uint8_t> plain(size_t(std::max(1, field_.length)));
    const StoredBytes &stored = reader_.stored();
    const int offset = field_.offset, length = field_.length;
    if (!stored.scrambled()) // a plain store's slice is read where it lies
        return walk([&](const uint8_t *record) { visit(record + offset, length); }, progress);
    return walk(
        [&](const uint8_t *record) {
            stored.copyPlain(record + offset, length, plain.data());
            visit(static_cast<const uint8_t *>(plain.data()), length);
        },
        progress);
}

template <class Visit>
bool ChartReader::readFixed(Visit &&visit, Progress *progress)
{
    return walk(
        [&](const uint8_t *record) {
            int64_t v = 0;
            if (!reader_.fixedValue(field_, record, v))
                v = 0; // a value that cannot be read counts as 0
            visit(v);
        },
        progress);
}

} // namespace ff::charts
