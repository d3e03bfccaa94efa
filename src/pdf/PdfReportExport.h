#pragma once
// A report as a PDF document, one PDF page a report page: the report's shapes, lines and pictures
// painted into the page's background picture, its labels as real text, its check labels as small
// pictures on that background. The report pages through its records as the preview and the print
// do.

#include "core/Progress.h"
#include "core/Result.h"
#include "design/Design.h"
#include "print/ReportEngine.h"
#include "print/ReportRecords.h"

#include <QString>
#include <QVector>

namespace ff::pdf {

class PdfReportExport {
public:
    // `pictureFolder`: the design's pictures; `recordPictureFolder`: the record pictures (with a
    // trailing '/', empty for none).
    PdfReportExport(const Design &design, QString pictureFolder, QString recordPictureFolder)
        : design_(design), pictureFolder_(std::move(pictureFolder)), recordPictureFolder_(std::move(recordPictureFolder))
    {
    }

    // Report `reportIndex` (0-based) over all records, or over `list` when it is given, into the
    // document `path`. Returns the pages written. The record shown before comes back.
    Result<int> ExportPDFreport(int reportIndex, print::ReportRecords &records, const QString &path,
                                const QVector<int> *list = nullptr, Progress *progress = nullptr);

    // The name the preview's save button gives a chosen name: everything behind the last "." cut,
    // ".PDF" added.
    static QString ReportFileName(const QString &chosen);

private:
    const Design &design_;
    QString pictureFolder_, recordPictureFolder_;
};

} // namespace ff::pdf
