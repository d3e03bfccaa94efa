#pragma once
// Records as PDF documents: each included page of the design becomes one PDF page whose background
// is one picture (the page's colour and tiled picture, shapes, lines, fixed pictures and the boxes
// and frames behind fields, as the window paints them, drawn once per export), with the record's texts on
// top as real text, links over pictures, labels and addresses, notes as fillable text fields and
// the check fields as small pictures on the page's own background.
//
// Pdf writes one document for the whole range; PdfPerRecord one document a record, named with the
// record's place in ten digits. A page is included when it lies in the page range (all pages by
// default).

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportRange.h"
#include "formula/FormulaContext.h"
#include "store/RecordStore.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <array>

namespace ff::pdf {

class PdfDocumentWriter;

enum class PdfMode { OneDocument = 20, DocumentPerRecord = 21 };

struct PdfOutcome {
    int records = 0;
    int pages = 0;        // pages written in all documents
    bool stopped = false; // the stop was pressed; the documents finished so far stay
    QStringList files;
};

class PdfRecordExport {
public:
    // `pictureFolder`: where the design's pictures are (the app's folder).
    PdfRecordExport(RecordStore &store, const FormulaContext &context, QString pictureFolder);

    // Pages `from` to `to` (0-based, clamped to the design's pages) are included.
    void setPageRange(int from, int to);
    bool PageIncluded(int page) const { return page >= pageFrom_ && page <= pageTo_; }

    // The fixed part of design page `page` at one pixel for 15 twips.
    QImage CreateBackGround(int page) const;

    // The name of the document of the record at `position` in DocumentPerRecord mode:
    // `fileName`, the position in ten digits, ".pdf".
    static QString DocumentName(const QString &fileName, int position);

    // Writes the records of `range`. OneDocument: `fileName` is the document's path as it stands;
    // DocumentPerRecord: the path without the position and ".pdf".
    Result<PdfOutcome> PrintPDF(const QString &fileName, PdfMode mode, const ExportRange &range,
                                Progress *progress = nullptr);

private:
    Status writeRecordPages(PdfDocumentWriter &writer, const Page &page, int position,
                            const std::array<QImage, 5> &backgrounds, bool firstOfDocument);
    Status startDocument(PdfDocumentWriter &writer, const QString &path) const;

    RecordStore &store_;
    const FormulaContext &context_;
    QString pictureFolder_;
    int pageFrom_ = 0, pageTo_ = 0;
};

} // namespace ff::pdf
