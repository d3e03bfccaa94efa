// The record verbs over the example designs, run in-process: values typed as a user types them,
// elements named by their tags, JSON output read back, formulas tried without writing, and the
// file shared with another user who holds a record through a lock of its own.

#include "cli/CliRunner.h"
#include "design/DesignReader.h"
#include "store/RecordFile.h"
#include "store/RecordLayout.h"

#include <QDir>

#include <QJsonArray>
#include <QJsonObject>

#include <fcntl.h>
#include <unistd.h>

using namespace ff::testsupport;

namespace {

// Another user's hold on record `record`, taken the way every copy of the program takes it: an
// open-file-description write lock on the record's first byte. Record r fills the bytes from
// r * length - 1 on (the header fills those ahead of record 1), so a file of `count` records is
// (count + 1) * length - 1 bytes long.
class RecordHolder {
public:
    RecordHolder(const QString &dataFile, int record, int count)
    {
        fd_ = ::open(QFile::encodeName(dataFile).constData(), O_RDWR);
        const off_t size = fd_ < 0 ? -1 : ::lseek(fd_, 0, SEEK_END);
        if (size <= 0 || (size + 1) % (count + 1) != 0)
            return;
        const off_t recordLength = (size + 1) / (count + 1);
        struct flock fl {};
        fl.l_type = F_WRLCK;
        fl.l_whence = SEEK_SET;
        fl.l_start = record * recordLength - 1;
        fl.l_len = 1;
        held_ = ::fcntl(fd_, F_OFD_SETLK, &fl) == 0;
    }
    ~RecordHolder()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }
    bool held() const { return held_; }

private:
    int fd_ = -1;
    bool held_ = false;
};

class ContactsCli : public ExampleCli {
protected:
    void SetUp() override { open(QStringLiteral("contacts")); }
    void addRecords(int n)
    {
        for (int k = 0; k < n; ++k)
            ASSERT_EQ(records({QStringLiteral("new")}).code, 0);
    }
};

TEST_F(ContactsCli, AddsChangesShowsAndClearsRecords)
{
    EXPECT_EQ(records({QStringLiteral("count")}).code, 1); // no file yet, and counting makes none
    EXPECT_FALSE(QFile::exists(data));
    EXPECT_EQ(records({QStringLiteral("new")}).out, QStringLiteral("2\n")); // record 1 comes with the file
    EXPECT_EQ(records({QStringLiteral("new")}).out, QStringLiteral("3\n"));
    const CliRun set = records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("F1=Müller"),
                                QStringLiteral("k0=1"), QStringLiteral("M1=a\\nb\tc")});
    ASSERT_EQ(set.code, 0) << set.err.toStdString();
    const CliRun shown = records({QStringLiteral("show"), QStringLiteral("2")});
    EXPECT_EQ(shown.out, set.out) << "set prints the record as show does";
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F1")), QStringLiteral("Müller"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("K0")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("M1")), QStringLiteral("a\\nb\\tc")); // one line a value
    EXPECT_EQ(records({QStringLiteral("count")}).out, QStringLiteral("3\n"));
    const CliRun list = records({QStringLiteral("list")});
    EXPECT_EQ(list.out.count(QLatin1Char('\n')), 3);
    EXPECT_TRUE(list.out.contains(QStringLiteral("\n2\tMüller\t")));

    // Bad input writes nothing.
    const QByteArray before = fileBytes(data);
    EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("Z9=x")}).code, 2);
    EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("nosuchname=x")}).code, 2);
    EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("birthday=not a date")}).code, 2);
    EXPECT_EQ(records({QStringLiteral("show"), QStringLiteral("9")}).code, 1);
    const CliRun negative = records({QStringLiteral("show"), QStringLiteral("-1")}); // a number, not an option
    EXPECT_EQ(negative.code, 1);
    EXPECT_TRUE(negative.err.contains(QLatin1String("no record -1"))) << negative.err.toStdString();
    EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("9"), QStringLiteral("F1=x")}).code, 1);
    EXPECT_EQ(fileBytes(data), before);

    EXPECT_EQ(records({QStringLiteral("clear"), QStringLiteral("2")}).code, 0);
    EXPECT_EQ(valueOf(records({QStringLiteral("show"), QStringLiteral("2")}).out, QStringLiteral("F1")), QString());
}

TEST_F(ContactsCli, TagsNameElementsAsCodesDo)
{
    addRecords(2);
    // Each pair sets one element by name and by code; both must land in the same place.
    struct Case {
        const char *name, *code, *typed, *shown;
    };
    const Case cases[] = {
        {"firstname", "F1", "Ada", "Ada"},
        {"LastName", "F2", "Lovelace", "Lovelace"}, // names ignore case
        {"category", "C1", "Customer", "Customer"},
        {"vip", "K1", "1", "1"},
        {"notes", "M1", "first line", "first line"},
        {"visits", "F9", "1000+1", "1,001"}, // typed as into the field: evaluated
    };
    for (const Case &c : cases) {
        const CliRun byName = records({QStringLiteral("set"), QStringLiteral("2"),
                                       QLatin1String(c.name) + QLatin1Char('=') + QLatin1String(c.typed)});
        ASSERT_EQ(byName.code, 0) << c.name << ": " << byName.err.toStdString();
        EXPECT_EQ(valueOf(byName.out, QLatin1String(c.code)), QLatin1String(c.shown)) << c.name;
        const CliRun byCode = records({QStringLiteral("set"), QStringLiteral("3"),
                                       QLatin1String(c.code) + QLatin1Char('=') + QLatin1String(c.typed)});
        ASSERT_EQ(byCode.code, 0) << c.code;
        EXPECT_EQ(valueOf(byCode.out, QLatin1String(c.code)), QLatin1String(c.shown)) << c.code;
    }
}

TEST_F(ContactsCli, JsonOutputReadsBack)
{
    addRecords(2);
    ASSERT_EQ(records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("firstname=Zoë \"Z\""),
                       QStringLiteral("notes=one\\ntwo"), QStringLiteral("newsletter=1")})
                  .code,
              0);
    ASSERT_EQ(records({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("firstname=Bo\tb")}).code, 0);

    const QJsonObject shown = parsedJson(records({QStringLiteral("show"), QStringLiteral("2"), QStringLiteral("--json")})).object();
    EXPECT_EQ(shown.value(QLatin1String("record")).toInt(), 2);
    const QJsonObject values = shown.value(QLatin1String("values")).toObject();
    EXPECT_EQ(values.value(QLatin1String("F1")).toString(), QStringLiteral("Zoë \"Z\""));
    EXPECT_EQ(values.value(QLatin1String("M1")).toString(), QStringLiteral("one\ntwo")); // a real line break
    EXPECT_EQ(values.value(QLatin1String("K0")).toString(), QStringLiteral("1"));
    EXPECT_TRUE(values.contains(QLatin1String("C1")));

    const QJsonArray list = parsedJson(records({QStringLiteral("list"), QStringLiteral("--json")})).array();
    ASSERT_EQ(list.size(), 3);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(list[k].toObject().value(QLatin1String("record")).toInt(), k + 1);
    EXPECT_EQ(list[1].toObject().value(QLatin1String("values")).toObject(), values);
    EXPECT_EQ(list[2].toObject().value(QLatin1String("values")).toObject().value(QLatin1String("F1")).toString(),
              QStringLiteral("Bo\tb"));

    EXPECT_EQ(parsedJson(records({QStringLiteral("--json"), QStringLiteral("count")})).object().value(QLatin1String("count")).toInt(), 3);
}

TEST_F(ContactsCli, ARecordThatCannotBeReadIsAnErrorNotAnotherRecord)
{
    addRecords(1);
    ASSERT_EQ(records({QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("F1=first")}).code, 0);
    // A damaged file set: part 1 is a folder, part 2 a (sparse) file of three records, so the
    // count reaches into part 1 but its records cannot be read.
    const ff::DesignLoad load = ff::ReadDesign(image);
    ASSERT_TRUE(load.complete());
    const int length = ff::ComputeRecordLayout(load.design).RecordLength;
    const int64_t perPart = ff::RecordFile::DefaultRecordsPerPart(length);
    const QString base = dir.filePath(QStringLiteral("people"));
    ASSERT_TRUE(QDir().mkdir(base + QStringLiteral("0001")));
    QFile last(base + QStringLiteral("0002"));
    ASSERT_TRUE(last.open(QIODevice::WriteOnly) && last.resize(3 * int64_t(length)));
    last.close();
    EXPECT_EQ(records({QStringLiteral("count")}).out, QString::number(2 * perPart + 3) + QLatin1Char('\n'));

    const CliRun unreadable = records({QStringLiteral("show"), QString::number(perPart + 1)});
    EXPECT_EQ(unreadable.code, 1);
    EXPECT_TRUE(unreadable.err.contains(QStringLiteral("could not be read"))) << unreadable.err.toStdString();
    EXPECT_FALSE(unreadable.out.contains(QStringLiteral("First"))); // never record 1's values
    const CliRun blank = records({QStringLiteral("show"), QString::number(2 * perPart + 1)});
    EXPECT_EQ(blank.code, 0) << blank.err.toStdString(); // a readable part still shows its records
}

TEST_F(ContactsCli, HeldRecordAndReadOnlyFileAreNotWritten)
{
    addRecords(3);
    ASSERT_EQ(records({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=old")}).code, 0);
    {
        const RecordHolder other(data, 3, 4);
        ASSERT_TRUE(other.held());
        const QByteArray before = fileBytes(data);
        for (const QStringList &args : {QStringList{QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=new")},
                                        QStringList{QStringLiteral("clear"), QStringLiteral("3")}}) {
            const CliRun refused = records(args);
            EXPECT_EQ(refused.code, 1) << args.first().toStdString();
            EXPECT_TRUE(refused.err.contains(QStringLiteral("in use by another user"))) << refused.err.toStdString();
        }
        EXPECT_EQ(fileBytes(data), before);
        // Reading is free, and so is another record.
        EXPECT_EQ(valueOf(records({QStringLiteral("show"), QStringLiteral("3")}).out, QStringLiteral("F1")), QStringLiteral("old"));
        EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("4"), QStringLiteral("F1=free")}).code, 0);
    }
    EXPECT_EQ(records({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=new")}).code, 0);

    const QByteArray after = fileBytes(data);
    QFile::setPermissions(data, QFileDevice::ReadOwner);
    const CliRun readOnly = records({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=x")});
    EXPECT_EQ(readOnly.code, 1);
    EXPECT_TRUE(readOnly.err.contains(QStringLiteral("read-only")));
    EXPECT_EQ(records({QStringLiteral("new")}).code, 1);
    EXPECT_EQ(valueOf(records({QStringLiteral("show"), QStringLiteral("3")}).out, QStringLiteral("F1")), QStringLiteral("new"));
    EXPECT_EQ(fileBytes(data), after);
    QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

class InvoiceCli : public ExampleCli {
protected:
    void SetUp() override { open(QStringLiteral("invoice")); }
};

TEST_F(InvoiceCli, SetConvertsTypedValuesAndRunsFormulas)
{
    // The first write makes the data file with its first record.
    const CliRun written = records({QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("F2=3/4/2026"),
                                    QStringLiteral("F6=2"), QStringLiteral("F7=3.5"), QStringLiteral("F10=1"),
                                    QStringLiteral("F11=999+1"), QStringLiteral("F22=10")});
    ASSERT_EQ(written.code, 0) << written.err.toStdString();
    const CliRun shown = records({QStringLiteral("show"), QStringLiteral("1")});
    struct Case {
        const char *tag, *shown;
    };
    const Case cases[] = {
        {"F2", "3/4/2026"},
        {"F7", "3.50"},
        {"F11", "1,000.00"}, // evaluated as typed
        {"F8", "7.00"},      // formulas ran before the write
        {"F24", "1,107.70"},
        {"F25", "One Thousand One Hundred Seven Dollars and Seventy Cents"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(valueOf(shown.out, QLatin1String(c.tag)), QLatin1String(c.shown)) << c.tag;
}

TEST_F(InvoiceCli, FormulasTriesValuesWithoutWriting)
{
    ASSERT_EQ(records({QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("F6=4"), QStringLiteral("F7=2.5"),
                       QStringLiteral("F22=10")})
                  .code,
              0);
    const QByteArray before = fileBytes(data);
    const CliRun tried = cli(QStringLiteral("formulas"), {QStringLiteral("1"), QStringLiteral("--set"), QStringLiteral("F22=50")});
    ASSERT_EQ(tried.code, 0) << tried.err.toStdString();
    EXPECT_EQ(valueOf(tried.out, QStringLiteral("F24")), QStringLiteral("15.00"));
    EXPECT_EQ(valueOf(tried.out, QStringLiteral("F25")), QStringLiteral("Fifteen Dollars and No Cents"));
    const QJsonObject json =
        parsedJson(cli(QStringLiteral("formulas"), {QStringLiteral("1"), QStringLiteral("--json"), QStringLiteral("--set=F22=50")}))
            .object();
    EXPECT_EQ(json.value(QLatin1String("values")).toObject().value(QLatin1String("F24")).toString(), QStringLiteral("15.00"));
    EXPECT_EQ(fileBytes(data), before);
    EXPECT_EQ(valueOf(records({QStringLiteral("show"), QStringLiteral("1")}).out, QStringLiteral("F24")), QStringLiteral("11.00"));

    EXPECT_EQ(cli(QStringLiteral("formulas"), {QStringLiteral("9")}).code, 1); // no such record
    EXPECT_EQ(cli(QStringLiteral("formulas"), {QStringLiteral("1"), QStringLiteral("--set"), QStringLiteral("Z9=1")}).code, 2);
}

} // namespace
