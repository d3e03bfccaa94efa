// flatform-cli import on the contacts example: each kind of file by its extension, the records it
// adds read back with `records`, and bad input refused with a message and nothing lost.

#include "CliRunner.h"
#include "cli/ImportCommand.h"

#include <QJsonObject>

using namespace ff::testsupport;
using ff::cli::ImportCommand;

namespace {

class CliImport : public ExampleCli {
protected:
    void SetUp() override { open(QStringLiteral("contacts")); }
    QString write(const QString &name, const QByteArray &bytes)
    {
        QFile f(dir.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return f.fileName();
    }
    CliRun import(const QStringList &files) const { return cli(QStringLiteral("import"), files); }
    QString count() const { return records({QStringLiteral("count")}).out.trimmed(); }
    QString show(int record) const { return records({QStringLiteral("show"), QString::number(record)}).out; }
};

TEST_F(CliImport, DelimitedTextFillsTheNewStoreFromRecordOne)
{
    const QString file = write(QStringLiteral("people.txt"),
                               "No.;FirstName;lastname;birthday;creditlimit;balance;vip;notes\r\n"
                               "1;Ada;\"Mo;reau\";1978-03-14;25000;4380.5;1;\"two\r\nlines\"\r\n"
                               "2;Jonas;Berg;;40000;100;0;plain\r\n");
    const CliRun run = import({file});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, file + QStringLiteral(": 2 records added (1 to 2)\n"));
    EXPECT_EQ(count(), QStringLiteral("2"));
    const QString first = show(1);
    EXPECT_EQ(valueOf(first, QStringLiteral("F2")), QStringLiteral("Mo;reau"));
    EXPECT_EQ(valueOf(first, QStringLiteral("F7")), QStringLiteral("Tuesday, March 14, 1978"));
    EXPECT_EQ(valueOf(first, QStringLiteral("F11")), QStringLiteral("20,619.50")); // the formula F8~F10
    EXPECT_EQ(valueOf(first, QStringLiteral("F14")), QStringLiteral("Ada Mo;reau")); // F1 F2
    EXPECT_EQ(valueOf(first, QStringLiteral("K1")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(first, QStringLiteral("M1")), QStringLiteral("two\\nlines"));
    EXPECT_EQ(valueOf(show(2), QStringLiteral("F1")), QStringLiteral("Jonas"));

    // A second file goes after them.
    const CliRun again = import({write(QStringLiteral("more.csv"), "firstname\r\nKarla\r\n")});
    ASSERT_EQ(again.code, 0);
    EXPECT_TRUE(again.out.contains(QLatin1String("1 record added (3 to 3)")));
}

TEST_F(CliImport, XmlAndRecordFilesByTheirExtension)
{
    ASSERT_EQ(import({write(QStringLiteral("a.txt"), "firstname\r\nAda\r\n")}).code, 0);
    const QString xml = write(QStringLiteral("b.XML"), "<?xml version=\"1.0\" ?>\r\n<Contacts_Record_9>\r\n"
                                                       "  <firstname>Bea &amp; Co</firstname>\r\n</Contacts_Record_9>\r\n");
    QFile::copy(data, dir.filePath(QStringLiteral("copy.dat")));
    const CliRun run = import({xml, dir.filePath(QStringLiteral("copy.dat"))});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(count(), QStringLiteral("3"));
    EXPECT_EQ(valueOf(show(2), QStringLiteral("F1")), QStringLiteral("Bea & Co"));
    EXPECT_EQ(valueOf(show(3), QStringLiteral("F1")), QStringLiteral("Ada"));

    const CliRun json = import({write(QStringLiteral("c.csv"), "firstname\r\nCy\r\nDee\r\n"), QStringLiteral("--json")});
    ASSERT_EQ(json.code, 0);
    const QJsonObject o = parsedJson(json).object();
    EXPECT_EQ(o.value(QStringLiteral("added")).toInt(), 2);
    EXPECT_EQ(o.value(QStringLiteral("count")).toInt(), 5);
}

TEST_F(CliImport, ARecordExportedAsXmlComesBackAsANewRecord)
{
    ASSERT_EQ(import({write(QStringLiteral("a.txt"), "firstname;company;notes;vip\r\nAda;\"A & B <C>\";\"one\r\ntwo\";1\r\n")}).code, 0);
    const CliRun text = cli(QStringLiteral("export"), {QStringLiteral("xml"), QStringLiteral("-"), QStringLiteral("--record"), QStringLiteral("1")});
    ASSERT_EQ(text.code, 0) << text.err.toStdString();
    EXPECT_TRUE(text.out.startsWith(QLatin1String("<?xml version=\"1.0\" ?>\r\n<Contacts_Record_1>\r\n")));
    EXPECT_TRUE(text.out.contains(QLatin1String("  <company>A &amp; B &lt;C&gt;</company>\r\n")));
    const QString file = dir.filePath(QStringLiteral("one.xml"));
    ASSERT_EQ(cli(QStringLiteral("export"), {QStringLiteral("xml"), file, QStringLiteral("--record"), QStringLiteral("1")}).code, 0);
    ASSERT_EQ(import({file}).code, 0);
    const QString first = show(1), second = show(2);
    for (const char *tag : {"F1", "F3", "F14", "K1", "M1"})
        EXPECT_EQ(valueOf(second, QLatin1String(tag)), valueOf(first, QLatin1String(tag))) << tag;
    EXPECT_EQ(cli(QStringLiteral("export"), {QStringLiteral("xml"), QStringLiteral("-"), QStringLiteral("--record"), QStringLiteral("9")}).code, 1);
    EXPECT_EQ(cli(QStringLiteral("export"), {QStringLiteral("xml"), QStringLiteral("-")}).code, 2);
}

TEST_F(CliImport, BadInputIsRefusedAndNothingIsLost)
{
    ASSERT_EQ(import({write(QStringLiteral("a.txt"), "firstname\r\nAda\r\n")}).code, 0);
    const QByteArray before = fileBytes(data);
    struct {
        const char *what;
        QString file;
        const char *message;
    } cases[] = {
        {"no column names a field", write(QStringLiteral("x.csv"), "No.;other\r\n1;2\r\n"), "names a field"},
        {"no such file", dir.filePath(QStringLiteral("none.txt")), "no such file"},
        {"records of another length", write(QStringLiteral("y.dat"), QByteArray(1000, 'x')), "nothing was imported"},
        {"an XML file naming nothing", write(QStringLiteral("z.xml"), "<html>hello</html>"), "names no field"},
    };
    for (const auto &c : cases) {
        const CliRun run = import({c.file});
        EXPECT_EQ(run.code, 1) << c.what;
        EXPECT_TRUE(run.err.contains(QLatin1String(c.message))) << c.what << ": " << run.err.toStdString();
        EXPECT_EQ(fileBytes(data), before) << c.what;
    }
    EXPECT_EQ(import({}).code, 2);
}

TEST(CliImportKinds, ByExtensionAsTheChooserTellsThem)
{
    using Kind = ImportCommand::Kind;
    const QString txt = QStringLiteral("txt"), dat = QStringLiteral("dat");
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("a.txt"), txt, dat), Kind::DelimitedText);
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("a.Xml"), txt, dat), Kind::Xml);
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("a.DAT"), txt, dat), Kind::RecordFile);
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("a.csv"), txt, dat), Kind::DelimitedText);
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("dat"), txt, dat), Kind::DelimitedText);
    EXPECT_EQ(ImportCommand::kindOf(QStringLiteral("a.xml"), QStringLiteral("xml"), dat), Kind::DelimitedText);
}

} // namespace
