// flatform-cli on damaged record files of the contacts example: what it prints on stderr, its exit
// code, and the file's bytes afterwards. A verb that reads writes nothing; a verb that writes adds
// only what it was asked for; a file that cannot be opened fails with the design's message and the
// system's reason.

#include "cli/CliRunner.h"
#include "support/AsNobody.h"
#include "support/StoreFixture.h"

#include <QDir>

#include <functional>

#include <unistd.h>

using namespace ff::testsupport;

namespace {


void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// Runs the verb in a child process that has given up root for the user nobody.
CliRun cliAsNobody(const QStringList &arguments)
{
    const std::optional<QByteArray> said = runAsNobody([&] {
        const CliRun run = runCli(arguments);
        return QByteArray::number(run.code) + '\n' + run.err.toUtf8();
    });
    CliRun run;
    const qsizetype line = said ? said->indexOf('\n') : -1;
    if (line > 0) {
        run.code = said->left(line).toInt();
        run.err = QString::fromUtf8(said->mid(line + 1));
    }
    return run;
}

class DamagedCli : public ExampleCli {
protected:
    void SetUp() override
    {
        open(QStringLiteral("contacts"));
        for (int k = 0; k < 2; ++k)
            ASSERT_EQ(records({QStringLiteral("new")}).code, 0);
        for (int r = 1; r <= 3; ++r)
            ASSERT_EQ(records({QStringLiteral("set"), QString::number(r), QStringLiteral("F1=name%1").arg(r)}).code, 0);
        good = fileBytes(data);
        length = int((good.size() + 1) / 4); // a header and three records of one length
        ASSERT_EQ((length * 4 - 1), good.size());
    }
    QByteArray good;
    int length = 0;
};

} // namespace

// Files that still open. Reading verbs write nothing and say what is wrong on stderr; a new record
// goes after the records there are and leaves every byte that was there.
TEST_F(DamagedCli, DamagedFilesThatStillOpen)
{
    struct Case {
        const char *name;
        std::function<QByteArray()> damage;
        const char *count;   // what `records count` prints
        const char *warning; // a part of the message on stderr, or null for none
        const char *added;   // what `records new` prints
    };
    const Case cases[] = {
        {"cut inside record 3", [&] { return good.left(3 * length - 1 + 5); }, "3\n", "ends inside a record", "4\n"},
        {"cut inside the header", [&] { return good.left(12); }, "1\n", "ends inside its header", "2\n"},
        {"garbage header",
         [&] {
             QByteArray b = good;
             for (int k = 0; k < 16; ++k)
                 b[k] = char(0xA5 ^ (k * 29));
             return b;
         },
         "3\n", nullptr, "4\n"},
        {"records shifted by an older design", [&] { return good.left(length - 1) + "abc" + good.mid(length - 1); },
         "4\n", "ends inside a record", "5\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray damaged = c.damage();
        writeAll(data, damaged);
        for (const char *verb : {"count", "list"}) {
            const CliRun read = records({QLatin1String(verb)});
            EXPECT_EQ(read.code, 0) << read.err.toStdString();
            if (QLatin1String(verb) == QLatin1String("count")) {
                EXPECT_EQ(read.out, QLatin1String(c.count));
            }
            if (c.warning) {
                EXPECT_TRUE(read.err.contains(QLatin1String(c.warning))) << read.err.toStdString();
            } else {
                EXPECT_EQ(read.err, QString());
            }
            EXPECT_EQ(fileBytes(data), damaged) << verb << " writes nothing";
        }
        const CliRun added = records({QStringLiteral("new")});
        EXPECT_EQ(added.code, 0) << added.err.toStdString();
        EXPECT_EQ(added.out, QLatin1String(c.added));
        const QByteArray after = fileBytes(data);
        EXPECT_EQ(after.left(damaged.size()), damaged) << "the bytes that were there stay";
        EXPECT_EQ((after.size() + 1) % length, 0) << "the file ends on a whole record";
    }
}

// A part missing between the first file and a later part: the records up to the gap are listed,
// stderr names the missing part, and the later part is never touched.
TEST_F(DamagedCli, AMissingPart)
{
    SmallParts parts(4);
    writeAll(data, good.left(3 * length - 1)); // records 1 and 2
    const QString later = dir.filePath(QStringLiteral("people0002"));
    writeAll(later, good);
    const CliRun count = records({QStringLiteral("count")});
    EXPECT_EQ(count.code, 0);
    EXPECT_EQ(count.out, QStringLiteral("2\n"));
    EXPECT_TRUE(count.err.contains(QStringLiteral("The record file %1 is missing").arg(dir.filePath(QStringLiteral("people0001")))))
        << count.err.toStdString();
    EXPECT_EQ(records({QStringLiteral("new")}).out, QStringLiteral("3\n"));
    EXPECT_EQ(fileBytes(later), good);
    EXPECT_EQ(fileBytes(data).size(), 4 * length - 1);
}

// Files that cannot be opened, or not for writing: a non-zero exit, the design's message and the
// system's reason on stderr, and the bytes as they were. File modes do not stop root, so the
// verbs run as the user nobody where the mode is what is tested.
TEST_F(DamagedCli, FilesThatCannotBeOpenedOrWritten)
{
    const QString message = QStringLiteral("The file %1 could not be found.").arg(data);

    // A folder in the data file's place.
    QFile::remove(data);
    ASSERT_TRUE(QDir().mkdir(data));
    for (const char *verb : {"count", "new"}) {
        const CliRun run = records({QLatin1String(verb)});
        EXPECT_EQ(run.code, 1) << verb;
        EXPECT_TRUE(run.err.contains(message)) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QLatin1String("Is a directory"))) << run.err.toStdString();
    }
    EXPECT_TRUE(QDir(data).isEmpty());
    ASSERT_TRUE(QDir().rmdir(data));

    // Read rights only, as root: the writing verbs refuse.
    writeAll(data, good);
    ASSERT_TRUE(QFile::setPermissions(data, QFile::ReadOwner | QFile::ReadOther));
    const CliRun refused = records({QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("F1=x")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.contains(QLatin1String("is read-only; nothing written"))) << refused.err.toStdString();
    EXPECT_EQ(fileBytes(data), good);

    if (::geteuid() != 0)
        GTEST_SKIP() << "the cases of another user need root to become the user nobody";
    ASSERT_TRUE(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                      QFile::ReadOther | QFile::ExeOther));
    const QStringList base{QStringLiteral("records"), image, QStringLiteral("--data"), data};

    // Nobody may read a file of root's with no rights for others.
    ASSERT_TRUE(QFile::setPermissions(data, QFile::ReadOwner | QFile::WriteOwner));
    const CliRun unreadable = cliAsNobody(base + QStringList{QStringLiteral("count")});
    EXPECT_EQ(unreadable.code, 1);
    EXPECT_TRUE(unreadable.err.contains(message)) << unreadable.err.toStdString();
    EXPECT_TRUE(unreadable.err.contains(QLatin1String("Permission denied"))) << unreadable.err.toStdString();

    // Nobody may read a file of root's that others may read, but not write it.
    ASSERT_TRUE(QFile::setPermissions(data, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    const CliRun counted = cliAsNobody(base + QStringList{QStringLiteral("count")});
    EXPECT_EQ(counted.code, 0) << counted.err.toStdString();
    EXPECT_EQ(counted.err, QString());
    for (const QStringList &writing : {QStringList{QStringLiteral("new")},
                                       QStringList{QStringLiteral("set"), QStringLiteral("2"), QStringLiteral("F1=x")}}) {
        const CliRun run = cliAsNobody(base + writing);
        EXPECT_EQ(run.code, 1);
        EXPECT_TRUE(run.err.contains(QLatin1String("is read-only; nothing written"))) << run.err.toStdString();
    }
    EXPECT_EQ(fileBytes(data), good);
}
