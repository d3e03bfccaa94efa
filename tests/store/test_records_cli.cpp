// flatform-cli records: adding, changing and showing records of an app image, honouring another
// process's lock and read-only files.

#include "design/DesignReader.h"
#include "store/RecordLayout.h"
#include "support/StoreFixture.h"
#include "support/StoreFixture.h"

#include <QProcess>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

QString bin(const char *name) { return QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR")) + QStringLiteral("/bin/") + QLatin1String(name); }

struct CliRun {
    int code = -1;
    QString out, err;
};

CliRun cli(const QStringList &args)
{
    QProcess p;
    p.start(bin("flatform-cli"), QStringList{QStringLiteral("records")} + args);
    p.waitForFinished(30000);
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

QByteArray bytesOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class RecordsCli : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString source = QString::fromLocal8Bit(qgetenv("FLATFORM_SOURCE_DIR")) + QStringLiteral("/examples/contacts/");
        for (const char *name : {"contacts.json", "logo.gif", "paper.gif"})
            QFile::copy(source + QLatin1String(name), dir.filePath(QLatin1String(name)));
        QProcess build;
        build.start(bin("flatform-build"), {dir.filePath(QStringLiteral("contacts.json")), QStringLiteral("-o"), image,
                                            QStringLiteral("--runtime"), bin("flatform-cli")});
        ASSERT_TRUE(build.waitForFinished(30000));
        ASSERT_EQ(build.exitCode(), 0) << build.readAllStandardError().constData();
    }
    // flatform-cli records IMAGE --data DATA args...
    CliRun onData(const QStringList &args) const { return cli(QStringList{image, QStringLiteral("--data"), data} + args); }

    QTemporaryDir dir;
    QString image = dir.filePath(QStringLiteral("contacts.exe"));
    QString data = dir.filePath(QStringLiteral("people.dat"));
};

} // namespace

TEST_F(RecordsCli, AddsChangesAndShowsRecords)
{
    EXPECT_NE(onData({QStringLiteral("count")}).code, 0); // no file yet
    EXPECT_EQ(onData({QStringLiteral("new")}).out, QStringLiteral("2\n"));
    EXPECT_EQ(onData({QStringLiteral("new")}).out, QStringLiteral("3\n"));
    CliRun set = onData({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("F1=Müller"),
                          QStringLiteral("k0=0"), QStringLiteral("M1=a\\nb")});
    ASSERT_EQ(set.code, 0) << set.err.toStdString();
    const CliRun shown = onData({QStringLiteral("show"), QStringLiteral("2")});
    EXPECT_TRUE(shown.out.startsWith(QStringLiteral("F1\tMüller\n"))) << shown.out.toStdString();
    EXPECT_TRUE(shown.out.contains(QStringLiteral("\nK0\t0\n")));
    EXPECT_TRUE(shown.out.contains(QStringLiteral("\nM1\ta\\nb\n")));
    EXPECT_EQ(onData({QStringLiteral("count")}).out, QStringLiteral("3\n"));
    const CliRun list = onData({QStringLiteral("list")});
    EXPECT_EQ(list.out.count(QLatin1Char('\n')), 3);
    EXPECT_TRUE(list.out.contains(QStringLiteral("\n2\tMüller\t")));

    // Bad input writes nothing.
    const QByteArray before = bytesOf(data);
    EXPECT_EQ(onData({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("Z9=x")}).code, 2);
    EXPECT_NE(onData({QStringLiteral("show"), QStringLiteral("9")}).code, 0);
    EXPECT_EQ(bytesOf(data), before);

    EXPECT_EQ(onData({QStringLiteral("clear"), QStringLiteral("2")}).code, 0);
    EXPECT_TRUE(onData({QStringLiteral("show"), QStringLiteral("2")}).out.startsWith(QStringLiteral("F1\t\n")));
}

TEST_F(RecordsCli, ARecordThatCannotBeReadIsAnErrorNotAnotherRecord)
{
    ASSERT_EQ(onData({QStringLiteral("new")}).code, 0);
    ASSERT_EQ(onData({QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("F1=first")}).code, 0);
    // A damaged file set: part 1 is a folder, part 2 a (sparse) file of three records, so the
    // count reaches into part 1 but its records cannot be read.
    const DesignLoad load = ReadDesign(image);
    ASSERT_TRUE(load.complete());
    const int length = ComputeRecordLayout(load.design).RecordLength;
    const int64_t perPart = RecordFile::DefaultRecordsPerPart(length);
    const QString base = dir.filePath(QStringLiteral("people"));
    ASSERT_TRUE(QDir().mkdir(base + QStringLiteral("0001")));
    QFile last(base + QStringLiteral("0002"));
    ASSERT_TRUE(last.open(QIODevice::WriteOnly) && last.resize(3 * int64_t(length)));
    last.close();
    EXPECT_EQ(onData({QStringLiteral("count")}).out, QString::number(2 * perPart + 3) + QLatin1Char('\n'));

    const CliRun unreadable = onData({QStringLiteral("show"), QString::number(perPart + 1)});
    EXPECT_EQ(unreadable.code, 1);
    EXPECT_TRUE(unreadable.err.contains(QStringLiteral("could not be read"))) << unreadable.err.toStdString();
    EXPECT_FALSE(unreadable.out.contains(QStringLiteral("First"))); // never record 1's values
    const CliRun blank = onData({QStringLiteral("show"), QString::number(2 * perPart + 1)});
    EXPECT_EQ(blank.code, 0) << blank.err.toStdString(); // a readable part still shows its records
}

TEST_F(RecordsCli, HeldRecordAndReadOnlyFileAreNotWritten)
{
    for (int k = 0; k < 3; ++k)
        ASSERT_EQ(onData({QStringLiteral("new")}).code, 0);
    ASSERT_EQ(onData({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=old")}).code, 0);

    // This process holds record 3.
    const DesignLoad load = ReadDesign(image);
    ASSERT_TRUE(load.complete());
    StoreUser holder{Design(load.design)};
    ASSERT_TRUE(holder.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(holder.store.JumpToRecord(3));
    ASSERT_TRUE(holder.store.LockRecord());
    const QByteArray before = bytesOf(data);
    const CliRun refused = onData({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=new")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("in use by another user"))) << refused.err.toStdString();
    EXPECT_EQ(bytesOf(data), before);
    // Another record is free.
    EXPECT_EQ(onData({QStringLiteral("set"), QStringLiteral("4"), QStringLiteral("F1=free")}).code, 0);
    ASSERT_TRUE(holder.store.UnlockRecord());
    EXPECT_EQ(onData({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=new")}).code, 0);

    const QByteArray after = bytesOf(data);
    QFile::setPermissions(data, QFileDevice::ReadOwner);
    const CliRun readOnly = onData({QStringLiteral("set"), QStringLiteral("3"), QStringLiteral("F1=x")});
    EXPECT_EQ(readOnly.code, 1);
    EXPECT_TRUE(readOnly.err.contains(QStringLiteral("read-only")));
    EXPECT_NE(onData({QStringLiteral("new")}).code, 0);
    EXPECT_TRUE(onData({QStringLiteral("show"), QStringLiteral("3")}).out.startsWith(QStringLiteral("F1\tnew\n")));
    EXPECT_EQ(bytesOf(data), after);
    QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}
