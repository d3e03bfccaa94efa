#pragma once
// ReportRecords over the open record store: a record is shown by jumping to it, which saves a
// changed record first, as every move does.

#include "print/ReportRecords.h"
#include "store/RecordStore.h"

namespace ff::print {

class StoreRecords : public ReportRecords {
public:
    explicit StoreRecords(RecordStore &store) : store_(store) {}
    int RecordCount() const override { return store_.RecordCount(); }
    int CurrentRecord() const override { return store_.CurrentRecord(); }
    Status load(int record) override;
    const Page &page() const override { return store_.page(); }
    int SortMode() const override;
    QVector<int> SortIndex() const override { return store_.SortIndex(); }

private:
    RecordStore &store_;
};

} // namespace ff::print
