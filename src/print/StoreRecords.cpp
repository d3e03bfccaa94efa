#include "print/StoreRecords.h"

namespace ff::print {

Status StoreRecords::load(int record)
{
    if (record == store_.CurrentRecord() && !store_.RecordIsNew())
        return {};
    return store_.JumpToRecord(record);
}

int StoreRecords::SortMode() const
{
    switch (store_.browseOrder()) {
    case BrowseOrder::SortIndexUp: return 1;
    case BrowseOrder::SortIndexDown: return 2;
    default: return 0;
    }
}

} // namespace ff::print
