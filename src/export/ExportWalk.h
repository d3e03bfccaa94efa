#pragma once
// The loop of the exports that write record by record: at every `step`-th index (index modulo
// step 0) the percentage is shown and the stop is tested; a stop leaves the loop before that
// index, and what was written stays. `body(index, record)` writes one record; an error from it
// ends the walk.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportRange.h"

namespace ff {

struct WalkEnd {
    int done = 0;        // indexes written
    bool stopped = false;
};

template <typename Body>
Result<WalkEnd> WalkExportRange(const ExportRange &range, Progress *progress, int step, Body &&body)
{
    WalkEnd end;
    for (int index = range.ExportFirst(); index <= range.ExportLast(); ++index) {
        if (progress && index % step == 0) {
            progress->setPercent(range.percentAt(index));
            if (progress->cancelled()) {
                end.stopped = true;
                break;
            }
        }
        if (Status s = body(index, range.recordAt(index)); !s)
            return s.error();
        ++end.done;
    }
    return end;
}

} // namespace ff
