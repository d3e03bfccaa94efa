#include "pdf/MailComposer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace ff::pdf {

namespace {

const char kLineEnd[] = "\r\n";
constexpr int kNameTries = 20;

// The base64 alphabet, as the encoder has always built it: A to Z, a to z, 0 to 9, "+", "/".
const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

QByteArray line(const QString &text) { return text.toUtf8() + kLineEnd; }

} // namespace

QString MailComposer::GetTempFolder()
{
    QString folder = QDir::tempPath();
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    return folder;
}

QString MailComposer::Recipient(const Design &design, const Page &page)
{
    QString recipient;
    if (design.MailNameField > 0)
        recipient = page.FieldText.value(design.MailNameField);
    if (design.MailAddressField > 0)
        recipient = QLatin1Char('"') + recipient + QStringLiteral("\"<") + page.FieldText.value(design.MailAddressField)
                    + QLatin1Char('>');
    return recipient;
}

QByteArray MailComposer::Header(const MailMessage &message)
{
    QByteArray out;
    out += line(QStringLiteral("Reply-To: "));
    out += line(QStringLiteral("To: ") + message.recipient);
    out += line(QStringLiteral("From: "));
    out += line(QStringLiteral("Subject: Attached, "));
    out += line(QStringLiteral("Date: ") + message.date.toString(QStringLiteral("MM-dd-yyyy")));
    out += line(QStringLiteral("X-Mailer: ") + message.mailer);
    out += line(QStringLiteral("MIME-Version: 1.0"));
    out += line(QStringLiteral("Content-Type: multipart/related; type=\"multipart/alternative\"; boundary=\"NextMimePart\""));
    out += line(QStringLiteral("X-Unsent: 1")); // the mail program opens the message as a draft
    out += line(QStringLiteral("X-MimeOLE: Produced By Tolvane"));
    out += kLineEnd;
    out += kLineEnd;
    return out;
}

QByteArray MailComposer::WriteMimeAttachment(const QByteArray &pdf, const QString &attachmentName)
{
    QByteArray out;
    out += kLineEnd;
    out += line(QStringLiteral("--NextMimePart"));
    out += line(QStringLiteral("Content-Type: application/pdf; Name=\"%1\"").arg(attachmentName));
    out += line(QStringLiteral("Content-Transfer-Encoding: base64"));
    out += line(QStringLiteral("Content-ID: <%1>").arg(attachmentName));
    out += line(QStringLiteral("Content-Disposition: attachment; filename=\"%1\"").arg(attachmentName));
    out += kLineEnd;

    const auto *bytes = reinterpret_cast<const uint8_t *>(pdf.constData());
    const qsizetype whole = pdf.size() - pdf.size() % 3;
    QByteArray current;
    for (qsizetype i = 0; i < whole; i += 3) {
        // A line is written before a group would make it longer than 76 characters.
        if (current.size() > 72) {
            out += current + kLineEnd;
            current.clear();
        }
        const uint8_t a = bytes[i], b = bytes[i + 1], c = bytes[i + 2];
        current += kAlphabet[a >> 2];
        current += kAlphabet[((a & 0x03) << 4) | (b >> 4)];
        current += kAlphabet[((b & 0x0F) << 2) | (c >> 6)];
        current += kAlphabet[c & 0x3F];
    }
    // The one or two bytes left join the last line, whatever its length.
    if (pdf.size() % 3 == 2) {
        const uint8_t a = bytes[whole], b = bytes[whole + 1];
        current += kAlphabet[a >> 2];
        current += kAlphabet[((a & 0x03) << 4) | (b >> 4)];
        current += kAlphabet[(b & 0x0F) << 2];
        current += '=';
    } else if (pdf.size() % 3 == 1) {
        const uint8_t a = bytes[whole];
        current += kAlphabet[a >> 2];
        current += kAlphabet[(a & 0x03) << 4];
        current += "==";
    }
    if (!current.isEmpty())
        out += current + kLineEnd;
    // No closing delimiter: mail programs have always been given the message so.
    return out;
}

Result<QString> MailComposer::WriteMail(const QString &folder, const MailMessage &message, const QString &pdfPath)
{
    QFile pdf(pdfPath);
    if (!pdf.open(QIODevice::ReadOnly))
        return makeError(ErrorCode::FileNotFound, QStringLiteral("%1: %2").arg(pdfPath, pdf.errorString()));
    const QByteArray content = pdf.readAll();
    pdf.close();

    // "Newmail.eml" first; a name in use (there, and not writable) moves on to the next number.
    QFile mail;
    for (int n = 0; n <= kNameTries; ++n) {
        const QString name = folder + QStringLiteral("Newmail") + (n == 0 ? QString() : QString::number(n)) + QStringLiteral(".eml");
        mail.setFileName(name);
        if (mail.open(QIODevice::WriteOnly | QIODevice::Truncate))
            break;
        if (!QFileInfo::exists(name) || n == kNameTries)
            return makeError(ErrorCode::PermissionDenied, QStringLiteral("%1: %2").arg(name, mail.errorString()));
    }
    const QByteArray text = Header(message) + WriteMimeAttachment(content, AttachmentName(message.recordBoxText));
    const bool written = mail.write(text) == text.size();
    mail.close();
    QFile::remove(pdfPath);
    if (!written)
        return makeError(ErrorCode::PathError, QStringLiteral("%1: %2").arg(mail.fileName(), mail.errorString()));
    return mail.fileName();
}

} // namespace ff::pdf
