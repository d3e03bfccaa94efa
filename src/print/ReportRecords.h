#pragma once
// The records a report or a print walks, loaded onto a page one at a time. The window and the
// command line hand the report the open record store through StoreRecords; tests may hand it
// records of their own.

#include "core/Result.h"
#include "design/Page.h"

#include <QVector>

namespace ff::print {

class ReportRecords {
public:
    virtual ~ReportRecords() = default;
    virtual int RecordCount() const = 0;
    // The record on the page now.
    virtual int CurrentRecord() const = 0;
    // Shows `record` (1..RecordCount) on the page with its formulas run.
    virtual Status load(int record) = 0;
    virtual const Page &page() const = 0;
    // The browse order of the main window: 0 file order, 1 the sort index up, 2 the sort index
    // down; the index has entry 0 unused.
    virtual int SortMode() const { return 0; }
    virtual QVector<int> SortIndex() const { return {}; }
};

} // namespace ff::print
