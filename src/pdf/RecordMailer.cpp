#include "pdf/RecordMailer.h"

#include "export/ExportRecordReader.h"
#include "pdf/MailComposer.h"
#include "pdf/PdfRecordExport.h"

namespace ff::pdf {

Result<QString> RecordMailer::RecordPdf(int record, QString folder)
{
    if (folder.isEmpty())
        folder = MailComposer::GetTempFolder();
    if (record < 1 || record > store_.RecordCount())
        return makeError(ErrorCode::Overflow,
                         QStringLiteral("no record %1 (the data file holds %2)").arg(record).arg(store_.RecordCount()));
    const QString path = folder + MailComposer::AttachmentName(QString::number(record));
    PdfRecordExport exporter(store_, context_, pictureFolder_);
    const Result<PdfOutcome> done =
        exporter.PrintPDF(path, PdfMode::OneDocument, ExportRange::Records(record, record, store_.RecordCount()));
    if (!done)
        return done.error();
    return path;
}

Result<QString> RecordMailer::MailRecord(int record, const QString &mailer, const QDate &today, QString folder)
{
    if (folder.isEmpty())
        folder = MailComposer::GetTempFolder();
    const Result<QString> pdf = RecordPdf(record, folder);
    if (!pdf)
        return pdf.error();
    // The recipient as the record shows it, formulas run.
    ExportSource source(store_, context_);
    ExportRecordReader reader(source, ExportRecordReader::Mode::Page, ExportRecordReader::Access::Jumping);
    if (Status s = reader.load(record); !s)
        return s.error();
    MailMessage message;
    message.recipient = MailComposer::Recipient(store_.design(), reader.page());
    message.mailer = mailer;
    message.recordBoxText = QString::number(record);
    message.date = today;
    return MailComposer::WriteMail(folder, message, *pdf);
}

} // namespace ff::pdf
