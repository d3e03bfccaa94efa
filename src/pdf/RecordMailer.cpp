#include "pdf/RecordMailer.h"

#include "export/ExportRecordReader.h"
#include "pdf/MailComposer.h"
#include "pdf/PdfRecordExport.h"
#include "pdf/PdfReportExport.h"
#include "print/StoreRecords.h"

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

Result<QString> RecordMailer::MailReport(int reportIndex, const QString &mailer, const QDate &today, const QVector<int> *list,
                                         QString folder)
{
    if (folder.isEmpty())
        folder = MailComposer::GetTempFolder();
    const Design &design = store_.design();
    if (reportIndex < 0 || size_t(reportIndex) >= design.Reports.size())
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("no report %1").arg(reportIndex + 1));
    const QString path = folder + QString(design.Reports[size_t(reportIndex)].Caption).remove(QLatin1Char('.'))
                         + QStringLiteral("Report.PDF");
    print::StoreRecords records(store_);
    PdfReportExport exporter(design, pictureFolder_, store_.RecordPictureFolder());
    const Result<int> done = exporter.ExportPDFreport(reportIndex, records, path, list);
    if (!done)
        return done.error();
    MailMessage message;
    message.recipient = MailComposer::Recipient(design, store_.page());
    message.mailer = mailer;
    message.recordBoxText = QString::number(store_.CurrentRecord());
    message.date = today;
    return MailComposer::WriteMail(folder, message, path);
}

} // namespace ff::pdf
