#pragma once
// An export without windows: the chosen kind driven over a range of records. The window's export
// command and `flatform-cli export` both make one, hand it the choice, the folder and name and the
// range, and show what it returns.
//
// The chosen name loses its extension (cut at its last "."); each kind adds its own. Records are
// read as the page shows them (see ExportRecordReader), through a page of the export's own, so the
// record on screen is left as it was. Progress is reported through ff::Progress at every tenth
// index (every hundredth for the spreadsheet); a stop keeps what was written. Names read from the
// design or from records never make a file outside the chosen folder.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportColumns.h"
#include "export/ExportKinds.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "formula/FormulaContext.h"
#include "store/RecordStore.h"

#include <QString>

namespace ff {

struct ExportRequest {
    ExportChoice choice;
    QString folder; // where the files go
    QString name;   // ExportName as chosen; an extension is cut
    ExportRange range;
    PageAllowed pageAllowed = AllPagesAllowed();
    int threads = 0; // the delimited text: 0 lets the export choose
};

class RecordExport {
public:
    // `context`: the formula context of the database, copied for each reader.
    RecordExport(RecordStore &store, const FormulaContext &context) : store_(store), context_(context) {}

    Result<ExportOutcome> run(const ExportRequest &request, Progress *progress = nullptr);

    // The chosen folder and name with its extension cut: the base each kind adds to.
    static QString exportBase(const QString &folder, const QString &name);

private:
    RecordStore &store_;
    const FormulaContext &context_;
};

} // namespace ff
