// The one-byte record lock between two users: two stores in one process (open-file-description
// locks conflict between two descriptors of one process) and a second process that knows only the
// lock protocol (ff_lock_probe).

#include "support/LockProbe.h"
#include "support/StoreFixture.h"

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr int kSmallRecordLength = 17; // field 1 text 6, field 2 text 6, field 3 whole

RecordPlace placeOf(const QString &data, int record, int perPart)
{
    return recordPlace(data, record, kSmallRecordLength, perPart);
}

// Field 1 of the small design as stored: the text padded with spaces to its 6 bytes.
QByteArray field1(const QString &text) { return text.toLatin1().leftJustified(6, ' '); }

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
    EXPECT_TRUE(b.host.texts().isEmpty());

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
    EXPECT_FALSE(LockProbe::held(placeOf(data, 20, 16)));
    ASSERT_TRUE(a.store.LockRecord());
    a.page.FieldText[1] = QStringLiteral("mine");

    // The store holds the first byte of record 20, in its second part: the other user is refused.
    EXPECT_TRUE(LockProbe::held(placeOf(data, 20, 16)));
    EXPECT_FALSE(LockProbe::held(placeOf(data, 19, 16)));
    EXPECT_FALSE(LockProbe::write({{placeOf(data, 20, 16), field1(QStringLiteral("theirs"))}}, false));
    EXPECT_EQ(storedText(data, 20), QStringLiteral("r20"));
    ASSERT_TRUE(a.store.PackRecord());
    EXPECT_EQ(storedText(data, 20), QStringLiteral("mine"));
    EXPECT_FALSE(LockProbe::held(placeOf(data, 20, 16))); // saving let go of it

    // The other process holds record 21: this user's edit snaps back until it saves.
    LockProbe hold;
    ASSERT_TRUE(hold.hold(placeOf(data, 21, 16), field1(QStringLiteral("held"))));
    ASSERT_TRUE(a.store.JumpToRecord(21));
    a.page.FieldText[1] = QStringLiteral("typed");
    EXPECT_FALSE(a.store.LockRecord());
    EXPECT_EQ(a.text(), QStringLiteral("r21"));
    ASSERT_TRUE(hold.release());
    ASSERT_TRUE(a.store.JumpToRecord(21));
    EXPECT_EQ(a.text(), QStringLiteral("held"));
    EXPECT_TRUE(a.store.LockRecord());
    ASSERT_TRUE(a.store.PackRecord());

    // Both processes edit at once, across parts: odd records there, even records here. Exact
    // multiples of the part size cannot be written by the store (its position is 0) and are
    // skipped; the other user writes where a reader looks for them.
    QVector<LockProbe::Write> odd;
    for (int k = 0; k < 20; ++k)
        odd.append({placeOf(data, 1 + 2 * k, 16), field1(QStringLiteral("o%1").arg(k))});
    LockProbe many;
    many.startWrites(odd, true);
    for (int k = 0; k < 20; ++k) {
        const int record = 2 + 2 * k;
        if (record % 16 == 0)
            continue;
        ASSERT_TRUE(a.store.JumpToRecord(record));
        ASSERT_TRUE(a.store.LockRecord());
        a.page.FieldText[1] = QStringLiteral("e%1").arg(k);
        ASSERT_TRUE(a.store.PackRecord());
    }
    ASSERT_TRUE(many.finishWrites());
    for (int k = 0; k < 20; ++k) {
        EXPECT_EQ(storedText(data, 1 + 2 * k), QStringLiteral("o%1").arg(k));
        const int even = 2 + 2 * k;
        EXPECT_EQ(storedText(data, even), even % 16 ? QStringLiteral("e%1").arg(k) : QStringLiteral("r%1").arg(even));
    }
}
