// Two users pressing New at the same moment each get a record of their own, and nothing is lost:
// a second store in this process, a raw byte lock standing for a user of another program who is
// filling the next slot, and two other processes adding at full speed.

#include "support/StoreFixture.h"

#include <QProcess>
#include <QSet>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr int kLength = 17; // the small design's RecordLength

QString probePath()
{
    return QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR")) + QStringLiteral("/bin/ff_new_records_user");
}

// Another program's user, written from the file format alone: a descriptor of its own and the
// one-byte lock of record r at the 1-based position r * RecordLength of the first file.
struct RawUser {
    int fd;
    explicit RawUser(const QString &data) : fd(::open(QFile::encodeName(data).constData(), O_RDWR | O_CLOEXEC)) {}
    ~RawUser() { ::close(fd); }
    bool lock(int record, short type = F_WRLCK) const
    {
        struct flock fl {};
        fl.l_type = type;
        fl.l_whence = SEEK_SET;
        fl.l_start = off_t(record) * kLength - 1;
        fl.l_len = 1;
        return ::fcntl(fd, F_OFD_SETLK, &fl) == 0;
    }
    bool heldByOther(int record) const
    {
        struct flock fl {};
        fl.l_type = F_WRLCK;
        fl.l_whence = SEEK_SET;
        fl.l_start = off_t(record) * kLength - 1;
        fl.l_len = 1;
        return ::fcntl(fd, F_OFD_GETLK, &fl) == 0 && fl.l_type != F_UNLCK;
    }
    void write(int record, const QByteArray &text) const
    {
        QByteArray slot(kLength, ' ');
        slot.replace(0, text.size(), text);
        ASSERT_EQ(::pwrite(fd, slot.constData(), kLength, off_t(record) * kLength - 1), kLength);
    }
};

qint64 fileLength(const QString &path) { return QFileInfo(path).size(); }

// Field 1 of every record of the file, read back by a store of its own.
QStringList allTexts(const QString &data)
{
    StoreUser reader(smallDesign());
    QStringList texts;
    if (!reader.store.openFileSet(data, OpenMode::Open, QString()))
        return texts;
    for (int r = 1; r <= reader.store.RecordCount(); ++r) {
        if (!reader.store.JumpToRecord(r))
            texts << QStringLiteral("(record %1 unreadable)").arg(r);
        else
            texts << reader.text();
    }
    return texts;
}

} // namespace

TEST(NewRecord, TwoStoresEachGetTheirOwnRecordAndKeepItInEdit)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("New.dat"));
    writeSmallSet(data, 3, 1000);
    StoreUser a(smallDesign()), b(smallDesign());
    ASSERT_TRUE(a.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(b.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_EQ(b.store.RecordCount(), 3); // both counted before either pressed New

    ASSERT_TRUE(a.store.NewRecord());
    EXPECT_EQ(a.store.CurrentRecord(), 4);
    // The new slot is in the file at once and its byte stays locked while A fills it.
    EXPECT_EQ(fileLength(data), 5 * kLength - 1);
    EXPECT_TRUE(a.store.RecordDirty());
    RawUser probe(data);
    EXPECT_TRUE(probe.heldByOther(4));
    ASSERT_TRUE(b.store.NewRecord());
    EXPECT_EQ(b.store.CurrentRecord(), 5);
    EXPECT_TRUE(probe.heldByOther(5));

    a.page.FieldText[1] = QStringLiteral("by A");
    b.page.FieldText[1] = QStringLiteral("by B");
    ASSERT_TRUE(b.store.SaveIfDirty());
    ASSERT_TRUE(a.store.SaveIfDirty());
    EXPECT_FALSE(probe.heldByOther(4));
    EXPECT_EQ(allTexts(data), (QStringList{"r1", "r2", "r3", "by A", "by B"}));
}

TEST(NewRecord, ASlotAnotherProgramIsFillingIsPassedOver)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Raw.dat"));
    writeSmallSet(data, 3, 1000);
    StoreUser a(smallDesign());
    ASSERT_TRUE(a.store.openFileSet(data, OpenMode::Open, QString()));

    // The other user pressed New a moment earlier: it holds slot 4 and has not written it yet.
    RawUser other(data);
    ASSERT_TRUE(other.lock(4));
    const Status made = a.store.NewRecord();
    ASSERT_TRUE(made) << qPrintable(made.error().text);
    EXPECT_EQ(a.store.CurrentRecord(), 5);
    EXPECT_EQ(a.store.RecordCount(), 5);
    EXPECT_EQ(a.text(), QString()); // a blank record, not the other's
    EXPECT_TRUE(a.host.texts().isEmpty());
    a.page.FieldText[1] = QStringLiteral("ours");
    ASSERT_TRUE(a.store.SaveIfDirty());

    other.write(4, "theirs");
    ASSERT_TRUE(other.lock(4, F_UNLCK));
    EXPECT_EQ(allTexts(data), (QStringList{"r1", "r2", "r3", "theirs", "ours"}));

    // A slot written and let go by the other user between our count and our lock is not ours
    // either: the next New takes the slot after it.
    other.write(6, "added");
    ASSERT_TRUE(a.store.NewRecord());
    EXPECT_EQ(a.store.CurrentRecord(), 7);
}

TEST(NewRecord, ProcessesAddingAtOnceLoseNothing)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Many.dat"));
    writeSmallSet(data, 2, 1000000);
    const int each = 60;
    QProcess first, second;
    const QString perPart = QStringLiteral("1000000");
    first.start(probePath(), {data, perPart, QString::number(each), QStringLiteral("a")});
    second.start(probePath(), {data, perPart, QString::number(each), QStringLiteral("b")});
    // This process adds too, between the other two.
    StoreUser here(smallDesign());
    ASSERT_TRUE(here.store.openFileSet(data, OpenMode::Open, QString()));
    for (int k = 0; k < each; ++k) {
        ASSERT_TRUE(here.store.NewRecord());
        here.page.FieldText[1] = QStringLiteral("c%1").arg(k);
        ASSERT_TRUE(here.store.PackRecord());
    }
    ASSERT_TRUE(first.waitForFinished(30000));
    ASSERT_TRUE(second.waitForFinished(30000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardOutput().constData();
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardOutput().constData();

    const QStringList texts = allTexts(data);
    ASSERT_EQ(texts.size(), 2 + 3 * each);
    QSet<QString> expected{QStringLiteral("r1"), QStringLiteral("r2")};
    for (int k = 0; k < each; ++k)
        for (const char *prefix : {"a", "b", "c"})
            expected.insert(QLatin1String(prefix) + QString::number(k));
    EXPECT_EQ(QSet<QString>(texts.begin(), texts.end()), expected); // every record once, none blank
}
