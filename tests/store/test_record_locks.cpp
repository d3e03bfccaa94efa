// The one-byte record lock between two users: two stores in one process (open-file-description
// locks conflict between two descriptors of one process) and a second process.

#include "store/StoreFixture.h"

#include <QCoreApplication>
#include <QProcess>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testing;

namespace {

QString probePath()
{
    return QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR")) + QStringLiteral("/bin/ff_lock_probe");
}

QString storedText(const QString &data, int record)
{
    StoreUser reader(smallDesign());
    if (!reader.store.openFileSet(data, OpenMode::Open, QString()) || !reader.store.JumpToRecord(record))
        return QStringLiteral("<unreadable>");
    return reader.text();
}

} // namespace

TEST(RecordLock, SecondUserSnapsBackWhileTheFirstEdits)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Two.dat"));
    writeSmallSet(data, 6, 1000);
    StoreUser a(smallDesign()), b(smallDesign());
    ASSERT_TRUE(a.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(b.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(a.store.JumpToRecord(3));
    ASSERT_TRUE(b.store.JumpToRecord(3));

    ASSERT_TRUE(a.store.LockRecord());
    a.page.FieldText[1] = QStringLiteral("by A");
    b.page.FieldText[1] = QStringLiteral("by B"); // B types ...
    const Status denied = b.store.LockRecord();
    EXPECT_EQ(denied.error().code, ErrorCode::PermissionDenied);
    EXPECT_EQ(b.text(), QStringLiteral("r3")); // ... and the text snaps back to the stored one
    EXPECT_FALSE(b.store.RecordDirty());
    EXPECT_FALSE(b.store.RecordLocked());
    EXPECT_TRUE(b.host.messages.isEmpty());

    // B can still read the record and lock another one.
    ASSERT_TRUE(b.store.JumpToRecord(4));
    EXPECT_TRUE(b.store.LockRecord());
    b.page.FieldText[1] = QStringLiteral("B4");
    ASSERT_TRUE(b.store.PackRecord());

    // Once A saves, the lock is gone and B's edit holds.
    ASSERT_TRUE(a.store.PackRecord());
    ASSERT_TRUE(b.store.JumpToRecord(3));
    EXPECT_EQ(b.text(), QStringLiteral("by A"));
    EXPECT_TRUE(b.store.LockRecord());
    b.page.FieldText[1] = QStringLiteral("by B");
    ASSERT_TRUE(b.store.PackRecord());
    EXPECT_EQ(storedText(data, 3), QStringLiteral("by B"));
    EXPECT_EQ(storedText(data, 4), QStringLiteral("B4"));
}

TEST(RecordLock, RecordOneIsNeverLockedAndClosingReleases)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("One.dat"));
    writeSmallSet(data, 6, 4);
    SmallParts parts(4);
    StoreUser a(smallDesign()), b(smallDesign());
    ASSERT_TRUE(a.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(b.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(a.store.JumpToRecord(1));
    ASSERT_TRUE(b.store.JumpToRecord(1));
    EXPECT_TRUE(a.store.LockRecord());
    EXPECT_TRUE(b.store.LockRecord()); // both edit record 1 at once

    ASSERT_TRUE(a.store.JumpToRecord(2)); // saves record 1 first
    ASSERT_TRUE(a.store.LockRecord());
    ASSERT_TRUE(b.store.JumpToRecord(2));
    EXPECT_FALSE(b.store.LockRecord());
    // A reads a record of another part: the part's handle closes and the lock dies with it.
    ASSERT_TRUE(a.store.readPlainRecord(6));
    EXPECT_NE(a.store.file().OpenPart(), 0);
    EXPECT_TRUE(b.store.LockRecord());
}

TEST(RecordLock, SecondProcessIsRefusedAndNothingIsLost)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Proc.dat"));
    writeSmallSet(data, 40, 16);
    SmallParts parts(16);
    StoreUser a(smallDesign());
    ASSERT_TRUE(a.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(a.store.JumpToRecord(20));
    ASSERT_TRUE(a.store.LockRecord());
    a.page.FieldText[1] = QStringLiteral("mine");

    QProcess edit;
    edit.start(probePath(), {data, QStringLiteral("16"), QStringLiteral("edit"), QStringLiteral("20"), QStringLiteral("theirs")});
    ASSERT_TRUE(edit.waitForFinished(10000));
    EXPECT_EQ(edit.exitCode(), 3);
    EXPECT_EQ(storedText(data, 20), QStringLiteral("r20"));
    ASSERT_TRUE(a.store.PackRecord());
    EXPECT_EQ(storedText(data, 20), QStringLiteral("mine"));

    // The other process holds record 21: this user's edit snaps back until it saves.
    QProcess hold;
    hold.start(probePath(), {data, QStringLiteral("16"), QStringLiteral("hold"), QStringLiteral("21"), QStringLiteral("held")});
    ASSERT_TRUE(hold.waitForReadyRead(10000));
    EXPECT_EQ(hold.readLine().trimmed(), QByteArray("locked"));
    ASSERT_TRUE(a.store.JumpToRecord(21));
    a.page.FieldText[1] = QStringLiteral("typed");
    EXPECT_FALSE(a.store.LockRecord());
    EXPECT_EQ(a.text(), QStringLiteral("r21"));
    hold.write("go\n");
    hold.closeWriteChannel();
    ASSERT_TRUE(hold.waitForFinished(10000));
    EXPECT_EQ(hold.exitCode(), 0);
    ASSERT_TRUE(a.store.JumpToRecord(21));
    EXPECT_EQ(a.text(), QStringLiteral("held"));

    // Both processes edit at once, across parts: odd records there, even records here. Exact
    // multiples of the part size cannot be written (the writer's position is 0) and are skipped.
    QProcess many;
    many.start(probePath(), {data, QStringLiteral("16"), QStringLiteral("edits"), QStringLiteral("1"), QStringLiteral("2"),
                             QStringLiteral("20"), QStringLiteral("o")});
    for (int k = 0; k < 20; ++k) {
        const int record = 2 + 2 * k;
        if (record % 16 == 0)
            continue;
        ASSERT_TRUE(a.store.JumpToRecord(record));
        ASSERT_TRUE(a.store.LockRecord());
        a.page.FieldText[1] = QStringLiteral("e%1").arg(k);
        ASSERT_TRUE(a.store.PackRecord());
    }
    ASSERT_TRUE(many.waitForFinished(30000));
    EXPECT_EQ(many.exitCode(), 0) << many.readAllStandardError().constData();
    for (int k = 0; k < 20; ++k) {
        EXPECT_EQ(storedText(data, 1 + 2 * k), QStringLiteral("o%1").arg(k));
        const int even = 2 + 2 * k;
        EXPECT_EQ(storedText(data, even), even % 16 ? QStringLiteral("e%1").arg(k) : QStringLiteral("r%1").arg(even));
    }
}
