#pragma once
// The import of delimited text: a head row naming the columns, then one record per row at the end
// of the store.
//
// The head row is read as it stands: made upper case, double quotes removed, split at the
// design's FieldSeparator. A column whose name is the upper-cased tag of a field, combo, check
// box or note (or the name of a record picture) feeds that element, whatever the order; other
// columns, "No." of the program's own export among them, are dropped. The rows are taken apart by
// ImportLineMachine and stored by ImportRecordMaker: each row a new record with the new record's
// defaults, its values, its formulas run, saved. The first row fills the store's one blank record
// when the store was empty.
//
// The file is read in large blocks and the records are written in large blocks; the rows of a
// block are made on two threads when the formulas allow it. Progress is told once a line, and a
// stop keeps every row read before it. The record limit ends the import with its message and
// keeps what was added. A file that names no element of the design adds nothing.

#include "core/Result.h"
#include "export/ImportSetup.h"

#include <QString>

namespace ff {

class TextImport {
public:
    static Result<ImportReport> run(const QString &fileName, const ImportSetup &setup);
};

} // namespace ff
