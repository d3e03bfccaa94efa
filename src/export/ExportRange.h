#pragma once
// Which records an export walks, and in which order. The walk runs an index from the first to the
// last of the range; each index names a record:
//
//   - a result list: the index-th record of the list (1-based);
//   - otherwise by the browse order: in file order the index itself; in SortIndex order
//     SortIndex(index); in reverse SortIndex(RecordCount - (index - 1)).
//
// The range is checked before the walk starts, so that a number beyond the records is told to
// the user instead of failing half-way.

#include "core/Result.h"
#include "store/RecordStore.h"

#include <QVector>

#include <algorithm>

namespace ff {

class ExportRange {
public:
    // Records `first` to `last` in `order` (FileOrder, SortIndexUp or SortIndexDown; `sortIndex`
    // with entry 0 unused, as the store keeps it).
    static ExportRange Records(int first, int last, int recordCount, BrowseOrder order = BrowseOrder::FileOrder,
                               QVector<int> sortIndex = {});
    // The records of a results window, in the list's order.
    static ExportRange ResultList(QVector<int> records, int recordCount);
    // All records in the store's present browse order.
    static ExportRange AllOf(const RecordStore &store);

    int ExportFirst() const { return first_; }
    int ExportLast() const { return last_; }
    int size() const { return last_ >= first_ ? last_ - first_ + 1 : 0; }
    bool resultList() const { return order_ == BrowseOrder::ResultList; }
    BrowseOrder order() const { return order_; }

    // The record of `index` (ExportFirst..ExportLast); only meaningful after check() passed.
    int recordAt(int index) const
    {
        switch (order_) {
        case BrowseOrder::ResultList: return list_[index - 1];
        case BrowseOrder::SortIndexUp: return list_[index];
        case BrowseOrder::SortIndexDown: return list_[recordCount_ - (index - 1)];
        case BrowseOrder::FileOrder: break;
        }
        return index;
    }

    // The same range cut after its first `count` indexes.
    ExportRange head(int count) const
    {
        ExportRange r = *this;
        r.last_ = std::min(last_, first_ + count - 1);
        return r;
    }

    // Every index of the range maps to a record 1..RecordCount; otherwise an error that says why.
    Status check() const;

    // The percentage shown at `index`: the whole part of 100 * index / ExportLast.
    int percentAt(int index) const { return last_ > 0 ? int(int64_t(100) * index / last_) : 100; }

private:
    int first_ = 1, last_ = 0;
    int recordCount_ = 0;
    BrowseOrder order_ = BrowseOrder::FileOrder;
    QVector<int> list_;
};

} // namespace ff
