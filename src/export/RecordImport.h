#pragma once
// The import of record files of the program's own format: the raw records of another file set
// (the chosen first file and its numbered parts) appended to this store as they are, in large
// blocks. The records must have this design's length: a file set whose records are of another
// length is refused with a message, and nothing is written.

#include "core/Result.h"
#include "export/ImportSetup.h"

#include <QString>

namespace ff {

class RecordImport {
public:
    static Result<ImportReport> run(const QString &fileName, const ImportSetup &setup);

    // The length the header of a first file gives, when it holds one (a file made with a title
    // has the title's characters there instead): nothing when it is not a plausible length.
    static std::optional<int> headerRecordLength(const QString &firstFile);
};

} // namespace ff
