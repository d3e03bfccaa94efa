#pragma once
// Mails a record or a report: its pages as a PDF in the temporary folder, wrapped in an unsent
// ".eml" message addressed from the design's name and address fields of the record on the page;
// the PDF is removed once it is inside the message. The caller hands the message to the desktop.

#include "core/Result.h"
#include "formula/FormulaContext.h"
#include "store/RecordStore.h"

#include <QDate>
#include <QString>
#include <QVector>

namespace ff::pdf {

class RecordMailer {
public:
    RecordMailer(RecordStore &store, const FormulaContext &context, QString pictureFolder)
        : store_(store), context_(context), pictureFolder_(std::move(pictureFolder))
    {
    }

    // Writes the message for `record` into `folder` (with a closing slash; the temporary folder
    // when empty) and returns its path. `mailer` is the main window's caption.
    Result<QString> MailRecord(int record, const QString &mailer, const QDate &today, QString folder = QString());

    // Mails report `reportIndex` (0-based) over all records as an unsent message; the attachment
    // keeps the record box's name, "Record<current record>.pdf", as mail programs have always
    // been given it.
    // With `list`, over those records.
    Result<QString> MailReport(int reportIndex, const QString &mailer, const QDate &today, const QVector<int> *list = nullptr,
                               QString folder = QString());

    // The record's PDF alone, kept: "Record<N>.pdf" in `folder`, for a compose window that
    // attaches files itself.
    Result<QString> RecordPdf(int record, QString folder = QString());

private:
    RecordStore &store_;
    const FormulaContext &context_;
    QString pictureFolder_;
};

} // namespace ff::pdf
