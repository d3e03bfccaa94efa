#pragma once
// The web exports, driven over a range of records as the export command does for its other kinds:
//
//   - HtmlPages ("*.htm's"): a folder of the chosen name holding each record's pages (17.htm,
//     17b.htm, ...), the page backgrounds, the tab and check pictures, the copied pictures, the
//     flow layer's images and the paging viewer index.php;
//   - HtmlCurrent ("*.htm"): the same folder with only the given record, its pages named after
//     the folder (Name.htm, bName.htm, ...);
//   - PhpSite ("*.php"): in the chosen folder, the page backgrounds, the stacked form page
//     Name.htm, the posting script Name.php and the data file Name.<TextExtension> with its head
//     row. No record goes into the site.
//
// Records are unpacked onto a page of the export's own, so the record on screen is left as it
// was. Progress is told at every tenth index; a stop keeps what was written.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportKinds.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "formula/FormulaContext.h"
#include "store/RecordStore.h"

#include <QString>

namespace ff::web {

class WebExport {
public:
    // `pictureFolder`: the app's folder, where the design's pictures and its Images folder are.
    WebExport(RecordStore &store, const FormulaContext &context, const QString &pictureFolder)
        : store_(store), context_(context), pictureFolder_(pictureFolder)
    {
    }

    static bool handles(ExportKind kind)
    {
        return kind == ExportKind::HtmlPages || kind == ExportKind::HtmlCurrent || kind == ExportKind::PhpSite;
    }

    // `name` is the chosen name; its extension is cut. HtmlCurrent writes the first record of
    // `range` (give it the record on screen).
    Result<ExportOutcome> run(ExportKind kind, const ExportRange &range, const QString &folder, const QString &name,
                              Progress *progress = nullptr);

private:
    Result<ExportOutcome> writeSite(const QString &folder, const QString &name);
    Result<ExportOutcome> writePages(ExportKind kind, const ExportRange &range, const QString &folder, const QString &name,
                                     Progress *progress);

    RecordStore &store_;
    const FormulaContext &context_;
    QString pictureFolder_;
};

} // namespace ff::web
