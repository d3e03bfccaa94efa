#include "export/ExportRange.h"

namespace ff {

ExportRange ExportRange::Records(int first, int last, int recordCount, BrowseOrder order, QVector<int> sortIndex)
{
    ExportRange r;
    r.first_ = first;
    r.last_ = last;
    r.recordCount_ = recordCount;
    r.order_ = order == BrowseOrder::ResultList ? BrowseOrder::FileOrder : order;
    if (r.order_ != BrowseOrder::FileOrder)
        r.list_ = std::move(sortIndex);
    return r;
}

ExportRange ExportRange::ResultList(QVector<int> records, int recordCount)
{
    ExportRange r;
    r.first_ = 1;
    r.last_ = int(records.size());
    r.recordCount_ = recordCount;
    r.order_ = BrowseOrder::ResultList;
    r.list_ = std::move(records);
    return r;
}

ExportRange ExportRange::AllOf(const RecordStore &store)
{
    if (store.browseOrder() == BrowseOrder::ResultList) {
        const QVector<int> &index = store.SortIndex();
        return ResultList(index.mid(1), store.RecordCount());
    }
    return Records(1, store.RecordCount(), store.RecordCount(), store.browseOrder(), store.SortIndex());
}

Status ExportRange::check() const
{
    if (size() == 0) {
        if (resultList())
            return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("the result list is empty"));
        return makeError(ErrorCode::SubscriptOutOfRange,
                         QStringLiteral("the range %1 to %2 holds no records").arg(first_).arg(last_));
    }
    if (!resultList() && (first_ < 1 || last_ > recordCount_))
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("the range %1 to %2 is outside the records 1 to %3")
                                                             .arg(first_).arg(last_).arg(recordCount_));
    if (order_ == BrowseOrder::SortIndexUp && list_.size() <= last_)
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("the sort order does not reach record %1").arg(last_));
    if (order_ == BrowseOrder::SortIndexDown && (recordCount_ - (first_ - 1) >= list_.size() || recordCount_ - (last_ - 1) < 1))
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("the sort order does not reach position %1").arg(first_));
    if (order_ != BrowseOrder::FileOrder) {
        for (int i = first_; i <= last_; ++i) {
            const int record = recordAt(i);
            if (record < 1 || record > recordCount_)
                return makeError(ErrorCode::SubscriptOutOfRange,
                                 QStringLiteral("place %1 of the list names record %2, outside the records 1 to %3")
                                     .arg(i).arg(record).arg(recordCount_));
        }
    }
    return {};
}

} // namespace ff
