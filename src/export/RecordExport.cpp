#include "export/RecordExport.h"

#include "export/DelimitedTextExport.h"
#include "export/ListingExport.h"
#include "export/RecordCopyExport.h"
#include "export/SpreadsheetExport.h"
#include "export/TemplateExport.h"

#include <QDir>

namespace ff {

QString RecordExport::exportBase(const QString &folder, const QString &name)
{
    return QDir(folder.isEmpty() ? QStringLiteral(".") : folder).filePath(CutExportExtension(name));
}

Result<ExportOutcome> RecordExport::run(const ExportRequest &request, Progress *progress)
{
    const QString name = CutExportExtension(request.name);
    if (name.isEmpty())
        return makeError(ErrorCode::BadFileName, QStringLiteral("no name to export to"));
    if (!IsPlainFileName(name))
        return makeError(ErrorCode::BadFileName, QStringLiteral("\"%1\" is not a file name").arg(request.name));
    if (!QDir(request.folder.isEmpty() ? QStringLiteral(".") : request.folder).exists())
        return makeError(ErrorCode::PathError, QStringLiteral("there is no folder %1").arg(request.folder));
    if (Status s = request.range.check(); !s)
        return s.error();
    const QString base = exportBase(request.folder, name);
    const ExportSource source(store_, context_);

    const ExportChoice &choice = request.choice;
    if (choice.isTemplate()) {
        TemplateExport templates(source, choice.templateIndex, choice.ExportPerRecord);
        return templates.run(request.range, base, progress);
    }
    switch (choice.kind) {
    case ExportKind::DelimitedText: {
        DelimitedTextExport text(source, request.pageAllowed);
        return text.run(request.range, text.fileName(base), progress, request.threads);
    }
    case ExportKind::Spreadsheet: {
        SpreadsheetExport sheet(source, request.pageAllowed);
        return sheet.run(request.range, SpreadsheetExport::fileName(base), progress);
    }
    case ExportKind::Listing: {
        ListingExport listing(source, request.pageAllowed);
        return listing.run(request.range, ListingExport::fileName(base), progress);
    }
    case ExportKind::RecordCopy: {
        RecordCopyExport copy(source);
        return copy.run(request.range, base, progress);
    }
    default: break;
    }
    return makeError(ErrorCode::Invalid, QStringLiteral("this kind of export is not available here"));
}

} // namespace ff
