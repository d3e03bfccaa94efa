// flatform-cli export over the contacts example, run in-process: the kinds by name, the range
// options giving the records in their order, templates, and bad input refused with a message.

#include "cli/CliRunner.h"

#include <QDir>

using namespace ff::testsupport;

namespace {

class ExportCli : public ExampleCli {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        image = buildExample(QStringLiteral("contacts"), dir.path(), [](ff::Design &d) {
                    d.Templates[1].TemplateExtension = QStringLiteral("*.html"); // no text
                    d.Templates[2].TemplateExtension = QStringLiteral("*.vcf");
                    d.Templates[2].TemplateText = QStringLiteral("N:F2:;F1:LF$NOTE:M1:LF$No ID:");
                }).path;
        data = dir.filePath(QStringLiteral("people.dat"));
        // Record 1 comes with the file; 2 to 4 get people.
        const char *const people[][2] = {{"Cy", "Customer"}, {"Ada", "Supplier"}, {"Bo", "Customer"}};
        for (const auto &p : people) {
            const CliRun added = records({QStringLiteral("new")});
            ASSERT_EQ(added.code, 0);
            const CliRun set = records({QStringLiteral("set"), added.out.trimmed(), QStringLiteral("firstname=") + QLatin1String(p[0]),
                                        QStringLiteral("lastname=Lee"), QStringLiteral("category=") + QLatin1String(p[1])});
            ASSERT_EQ(set.code, 0) << set.err.toStdString();
        }
    }
    CliRun exportAs(const QString &kind, const QString &out, const QStringList &more = {}) const
    {
        return cli(QStringLiteral("export"), QStringList{kind, dir.filePath(out)} + more);
    }
    // The record numbers at the start of the text export's rows.
    QStringList numbers(const QString &file) const
    {
        QStringList found;
        const QList<QByteArray> rows = fileBytes(dir.filePath(file)).split('\n');
        for (qsizetype k = 1; k < rows.size(); ++k)
            if (!rows[k].isEmpty())
                found << QString::fromLatin1(rows[k].left(rows[k].indexOf(';')));
        return found;
    }
};

} // namespace

TEST_F(ExportCli, RangesSortsAndSearchesGiveTheirOrder)
{
    struct Case {
        QStringList options;
        QStringList records;
    } cases[] = {
        {{}, {"1", "2", "3", "4"}},
        {{"--from", "2", "--to", "3"}, {"2", "3"}},
        {{"--sort", "firstname"}, {"1", "3", "4", "2"}}, // the empty name of record 1 first
        {{"--sort", "firstname", "--down"}, {"2", "4", "3", "1"}},
        {{"--sort", "firstname", "--from", "2", "--to", "3"}, {"3", "4"}},
        {{"--search", "select firstname where category=customer"}, {"4", "2"}}, // from the last record down
        {{"--search", "Ada", "--threads", "1"}, {"3"}},
    };
    for (const Case &c : cases) {
        const CliRun run = exportAs(QStringLiteral("text"), QStringLiteral("list.csv"), c.options);
        ASSERT_EQ(run.code, 0) << run.err.toStdString();
        EXPECT_EQ(run.out, QStringLiteral("exported %1 %2 to %3\n")
                               .arg(c.records.size())
                               .arg(c.records.size() == 1 ? QStringLiteral("record") : QStringLiteral("records"),
                                    dir.filePath(QStringLiteral("list.txt"))));
        EXPECT_EQ(numbers(QStringLiteral("list.txt")), c.records) << c.options.join(QLatin1Char(' ')).toStdString();
    }
}

TEST_F(ExportCli, EveryKindWritesItsFile)
{
    const struct {
        const char *kind;
        const char *file;
    } kinds[] = {{"xls", "book.xls"}, {"listing", "book.rtf"}, {"copy", "book.dat"}, {"template:2", "book1.vcf"},
                 {"templates:2", "book/3.vcf"}};
    for (const auto &k : kinds) {
        const CliRun run = exportAs(QLatin1String(k.kind), QStringLiteral("book.any"));
        ASSERT_EQ(run.code, 0) << k.kind << run.err.toStdString();
        EXPECT_TRUE(QFile::exists(dir.filePath(QLatin1String(k.file)))) << k.file;
    }
    EXPECT_EQ(fileBytes(dir.filePath(QStringLiteral("book/3.vcf"))), QByteArray("N:Lee;Ada\r\nNOTE:\r\nNo 3\r\n"));
    EXPECT_EQ(QDir(dir.filePath(QStringLiteral("book"))).entryList(QDir::Files).size(), 4);
    const CliRun json = exportAs(QStringLiteral("text"), QStringLiteral("short"), {"--json", "--to", "2"});
    ASSERT_EQ(json.code, 0);
    EXPECT_EQ(parsedJson(json)[QStringLiteral("records")].toInt(), 2);
    EXPECT_EQ(parsedJson(json)[QStringLiteral("path")].toString(), dir.filePath(QStringLiteral("short.txt")));
    // One file: the first record of the range alone.
    ASSERT_EQ(exportAs(QStringLiteral("template:2"), QStringLiteral("one"), {"--from", "4"}).code, 0);
    EXPECT_EQ(fileBytes(dir.filePath(QStringLiteral("one4.vcf"))), QByteArray("N:Lee;Bo\r\nNOTE:\r\nNo 4\r\n"));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("one1.vcf"))));
}

TEST_F(ExportCli, BadInputIsRefusedWithAMessage)
{
    const struct {
        QString kind;
        QStringList options;
        int code;
        const char *message;
    } cases[] = {
        {"csv", {}, 2, "unknown kind \"csv\""},
        {"template:10", {}, 2, "unknown kind"},
        {"text", {"--to", "9"}, 1, "the range 1 to 9 is outside the records 1 to 4"},
        {"text", {"--from", "x"}, 1, "--from takes a number"},
        {"text", {"--from", "3", "--to", "2"}, 1, "holds no records"},
        {"template:1", {}, 1, "template 1 (*.html) is empty"},
        {"template:5", {}, 1, "the design has no template 5"},
        {"text", {"--search", "count category=customer"}, 1, "must select or find"},
        {"text", {"--search", "select firstname where category=nobody"}, 1, "found no records"},
        {"text", {"--search", "Ada", "--sort", "firstname"}, 1, "takes no --from, --to or --sort"},
        {"text", {"--down"}, 1, "--down goes with --sort"},
        {"text", {"--sort", "nothing"}, 1, "no stored element nothing"},
    };
    for (const auto &c : cases) {
        const CliRun run = exportAs(c.kind, QStringLiteral("bad"), c.options);
        EXPECT_EQ(run.code, c.code) << c.message;
        EXPECT_TRUE(run.err.contains(QLatin1String(c.message))) << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_TRUE(QDir(dir.path()).entryList({QStringLiteral("bad*")}).isEmpty());
    // The copy never replaces the database's own file.
    const CliRun own = cli(QStringLiteral("export"), {QStringLiteral("copy"), data});
    EXPECT_EQ(own.code, 1);
    EXPECT_TRUE(own.err.contains(QLatin1String("own file set"))) << own.err.toStdString();
}
