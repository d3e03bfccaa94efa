#pragma once
// The record copy: the chosen records, byte for byte as stored, into a new record file set of the
// program's own format named after the chosen name: the first file with the design's
// DataExtension, later parts with the four-digit part number, RecordsPerPart records a part. The
// copies are numbered 1, 2, 3 ... in the order of the range and placed by the reading rule of the
// record files (a number that is an exact multiple of RecordsPerPart at the end of the part before),
// so that the program reads them back where they were put.
//
// The copy gets a header as a new database does: the date of creation, the design's main
// caption and the source's NextPictureNumber. When the design has per-record pictures, the picture
// folder of the copy is made beside it and the picture files of the copied records are copied
// into it. A file set of the same name is replaced; the database's own files never are.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "export/ExportRecordReader.h"

namespace ff {

class RecordCopyExport {
public:
    explicit RecordCopyExport(const ExportSource &source) : source_(source) {}

    QString fileName(const QString &base) const;
    // The picture folder of a copy whose first file is `dataFileName`: its name in proper case with
    // "." and DataExtension replaced by "Pics".
    QString pictureFolder(const QString &dataFileName) const;
    Result<ExportOutcome> run(const ExportRange &range, const QString &base, Progress *progress);

private:
    const ExportSource &source_;
};

} // namespace ff
