#pragma once
// The listing export (".rtf"): plain lines, no control words of the rich text format, ended by
// CR LF, in the design's code page. For each record an empty line, "Record No." and the number, an
// empty line; then in tab order (text, combo, check, note at each position) each text field and
// combo that is not empty on a line of its own, each check field's number in the same line as
// what follows it, padded to the next tab zone of 14 characters, and each note that is not empty
// between two empty lines. Pictures and labels are not written. A stop ends the listing at a
// record's end.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportColumns.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "export/ExportRecordReader.h"

namespace ff {

class ListingExport {
public:
    ListingExport(const ExportSource &source, const PageAllowed &allowed);

    static QString fileName(const QString &base) { return base + QStringLiteral(".rtf"); }
    Result<ExportOutcome> run(const ExportRange &range, const QString &path, Progress *progress);

    static constexpr int kTabZone = 14;

private:
    const ExportSource &source_;
    std::vector<ExportColumn> columns_;
};

} // namespace ff
