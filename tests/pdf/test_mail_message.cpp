// The unsent mail message: its attachment read back by Python's email parser byte for byte, the
// base64 lines at the edges of their groups, the recipient's forms and the name that moves on
// while a message file is in use.

#include "pdf/MailComposer.h"
#include "support/Programs.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;
using pdf::MailComposer;
using pdf::MailMessage;

namespace {

// Reads each message with Python's email parser and compares its one attachment with the bytes
// beside it; prints one line per message: the attachment's name and "same" or "differs".
const char kReader[] = R"(
import email, email.policy, sys
for eml, original in zip(sys.argv[1::2], sys.argv[2::2]):
    m = email.message_from_bytes(open(eml, 'rb').read(), policy=email.policy.default)
    parts = list(m.iter_parts())
    data = parts[0].get_payload(decode=True) if len(parts) == 1 else None
    print(parts[0].get_filename() if parts else None, 'same' if data == open(original, 'rb').read() else 'differs')
)";

QByteArray randomBytes(int size, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &c : bytes)
        c = char(random.bounded(256));
    return bytes;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

MailMessage message(const QString &record)
{
    return MailMessage{QStringLiteral("\"Ada\"<ada@example.org>"), QStringLiteral("Contacts"), record, QDate(2026, 3, 7)};
}

} // namespace

TEST(MailMessage, AttachmentsOfEveryLengthDecodeByteForByte)
{
    QTemporaryDir dir;
    // The lengths around the groups of three and the line of 57 bytes (76 characters).
    const std::vector<int> lengths{0, 1, 2, 3, 4, 56, 57, 58, 59, 114, 1000, 4099};
    QStringList arguments{QStringLiteral("-c"), QString::fromLatin1(kReader)};
    for (const int length : lengths) {
        const QString folder = dir.filePath(QString::number(length)) + QLatin1Char('/');
        ASSERT_TRUE(QDir().mkpath(folder));
        const QByteArray content = randomBytes(length, quint32(length) + 7);
        const QString original = dir.filePath(QStringLiteral("original%1").arg(length));
        for (const QString &path : {original, folder + QStringLiteral("Record9.pdf")}) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        const Result<QString> eml = MailComposer::WriteMail(folder, message(QStringLiteral("9")), folder + QStringLiteral("Record9.pdf"));
        ASSERT_TRUE(eml.ok()) << eml.error().text.toStdString();
        EXPECT_EQ(*eml, folder + QStringLiteral("Newmail.eml"));
        EXPECT_FALSE(QFile::exists(folder + QStringLiteral("Record9.pdf"))) << "the PDF is removed once it is in the message";
        arguments << *eml << original;

        // The encoded lines: 76 characters; the last holds the rest, with "=" or "==" for 2 or 1
        // bytes over; an empty file has none, and the message ends after the part's header.
        const QByteArray text = readFile(*eml);
        const QByteArray body = text.mid(text.indexOf("filename=\"Record9.pdf\"\r\n\r\n") + 26);
        QList<QByteArray> lines = body.split('\n');
        ASSERT_TRUE(lines.takeLast().isEmpty()) << "the message ends with a line end";
        // 19 groups of three bytes fill a line; the one or two bytes over join the last line.
        const int fullGroups = length / 3;
        ASSERT_EQ(lines.size(), qMax((fullGroups + 18) / 19, length % 3 ? 1 : 0)) << "length " << length;
        for (qsizetype i = 0; i + 1 < lines.size(); ++i)
            EXPECT_EQ(lines[i].size(), 77) << "length " << length << " line " << i; // 76 and the CR
        if (!lines.isEmpty()) {
            const QByteArray last = lines.last().chopped(1);
            EXPECT_EQ(last.endsWith("=="), length % 3 == 1) << length;
            EXPECT_EQ(last.endsWith("=") && !last.endsWith("=="), length % 3 == 2) << length;
            EXPECT_LE(last.size(), 80);
        }
    }
    const testsupport::ProgramRun read = testsupport::runProgram(QStringLiteral("python3"), arguments);
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    const QList<QByteArray> verdicts = read.out.trimmed().split('\n');
    ASSERT_EQ(verdicts.size(), qsizetype(lengths.size()));
    for (size_t i = 0; i < lengths.size(); ++i)
        EXPECT_EQ(verdicts[qsizetype(i)], QByteArray("Record9.pdf same")) << "length " << lengths[i];
}

TEST(MailMessage, HeaderLinesAsMailProgramsAreGivenThem)
{
    const QByteArray header = MailComposer::Header(message(QStringLiteral("12")));
    EXPECT_EQ(header, QByteArray("Reply-To: \r\n"
                                 "To: \"Ada\"<ada@example.org>\r\n"
                                 "From: \r\n"
                                 "Subject: Attached, \r\n"
                                 "Date: 03-07-2026\r\n"
                                 "X-Mailer: Contacts\r\n"
                                 "MIME-Version: 1.0\r\n"
                                 "Content-Type: multipart/related; type=\"multipart/alternative\"; boundary=\"NextMimePart\"\r\n"
                                 "X-Unsent: 1\r\n"
                                 "X-MimeOLE: Produced By Tolvane\r\n"
                                 "\r\n\r\n"));
    EXPECT_TRUE(MailComposer::WriteMimeAttachment("abc", QStringLiteral("Record12.pdf"))
                    .startsWith("\r\n--NextMimePart\r\nContent-Type: application/pdf; Name=\"Record12.pdf\"\r\n"));
}

TEST(MailMessage, RecipientFromTheNameAndAddressFields)
{
    Design design;
    design.Fields.resize(4);
    Page page(design);
    page.FieldText[1] = QStringLiteral("Ada Moreau");
    page.FieldText[3] = QStringLiteral("ada@example.org");
    struct Case {
        int16_t name, address;
        const char *recipient;
    };
    for (const Case &c : {Case{0, 0, ""}, Case{1, 0, "Ada Moreau"}, Case{0, 3, "\"\"<ada@example.org>"},
                          Case{1, 3, "\"Ada Moreau\"<ada@example.org>"}}) {
        design.MailNameField = c.name;
        design.MailAddressField = c.address;
        EXPECT_EQ(MailComposer::Recipient(design, page), QString::fromUtf8(c.recipient)) << c.name << " " << c.address;
    }
}

TEST(MailMessage, ANameInUseMovesOnAndTwentyOneAreTheEnd)
{
    QTemporaryDir dir;
    const QString folder = dir.path() + QLatin1Char('/');
    const auto writePdf = [&] {
        QFile file(folder + QStringLiteral("Record1.pdf"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("%PDF-1.3\n");
    };
    // A folder under the name cannot be opened as a file, whoever runs the test.
    ASSERT_TRUE(QDir(folder).mkdir(QStringLiteral("Newmail.eml")));
    ASSERT_TRUE(QDir(folder).mkdir(QStringLiteral("Newmail1.eml")));
    writePdf();
    Result<QString> eml = MailComposer::WriteMail(folder, message(QStringLiteral("1")), folder + QStringLiteral("Record1.pdf"));
    ASSERT_TRUE(eml.ok());
    EXPECT_EQ(*eml, folder + QStringLiteral("Newmail2.eml"));

    for (int n = 2; n <= 20; ++n) {
        QFile::remove(folder + QStringLiteral("Newmail%1.eml").arg(n));
        ASSERT_TRUE(QDir(folder).mkdir(QStringLiteral("Newmail%1.eml").arg(n)));
    }
    writePdf();
    eml = MailComposer::WriteMail(folder, message(QStringLiteral("1")), folder + QStringLiteral("Record1.pdf"));
    EXPECT_FALSE(eml.ok()) << "after Newmail20.eml no further name is tried";
}
