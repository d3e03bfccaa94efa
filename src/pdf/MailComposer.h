#pragma once
// An unsent mail message with one PDF attached, written as a ".eml" file that the desktop's mail
// program opens as a draft ("X-Unsent: 1"), ready to be checked and sent. The system speaks no
// mail protocol of its own.
//
// The file is "Newmail.eml" in the temporary folder; while that name is in use (it exists and
// cannot be written) "Newmail1.eml", "Newmail2.eml" and on are tried, 20 at most. The header lines
// and the attachment's base64 lines keep the form mail programs have always been given, including
// a date as month-day-year and no closing delimiter after the attachment.

#include "core/Result.h"
#include "design/Page.h"

#include <QByteArray>
#include <QDate>
#include <QString>

namespace ff::pdf {

struct MailMessage {
    QString recipient;     // the "To: " line's text
    QString mailer;        // the main window's caption, for "X-Mailer: "
    QString recordBoxText; // the record box's text: the attachment is "Record<text>.pdf"
    QDate date;
};

class MailComposer {
public:
    // The temporary folder, with its closing slash.
    static QString GetTempFolder();

    // The recipient of the record on `page`: the text of field MailNameField; with
    // MailAddressField above 0, a quote, that name, a quote and the address in angle brackets.
    static QString Recipient(const Design &design, const Page &page);

    // The header lines, each ended by CR LF, and the two empty lines that close them.
    static QByteArray Header(const MailMessage &message);
    // The attachment part for `pdf`, named `attachmentName`: its header lines and the content
    // in base64 lines of 76 characters.
    static QByteArray WriteMimeAttachment(const QByteArray &pdf, const QString &attachmentName);
    // The attachment's name: "Record", the record box's text, ".pdf".
    static QString AttachmentName(const QString &recordBoxText) { return QStringLiteral("Record") + recordBoxText + QStringLiteral(".pdf"); }

    // Writes the message with the PDF at `pdfPath` into `folder` (which ends with a slash) and
    // removes the PDF. Returns the path of the ".eml" file.
    static Result<QString> WriteMail(const QString &folder, const MailMessage &message, const QString &pdfPath);
};

} // namespace ff::pdf
