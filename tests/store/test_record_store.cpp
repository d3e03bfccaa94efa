// The life of records in a file set: parts, counting, navigation, new and cleared records, the
// record limit.

#include "support/LockProbe.h"
#include "support/RecordFileFormat.h"
#include "support/StoreFixture.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

TEST(RecordParts, PositionsAndPartNames)
{
    SmallParts parts(4);
    RecordFile f;
    f.setFileSet(QStringLiteral("/data/my.base.dat"), 17, false);
    EXPECT_EQ(f.DataFileBase(), QStringLiteral("/data/my.base"));
    EXPECT_EQ(f.partName(0), QStringLiteral("/data/my.base.dat"));
    EXPECT_EQ(f.partName(1), QStringLiteral("/data/my.base0001"));
    EXPECT_EQ(f.partName(12), QStringLiteral("/data/my.base0012"));
    EXPECT_EQ(f.readPosition(1).position, 17); // the bytes ahead of record 1 are the header
    EXPECT_EQ(f.readPosition(4).part, 0);      // the exact multiple reads from the previous part
    EXPECT_EQ(f.readPosition(4).position, 68);
    EXPECT_EQ(f.readPosition(5).part, 1);
    EXPECT_EQ(f.readPosition(5).position, 17);
    EXPECT_EQ(f.writePosition(4).part, 1); // the writer makes no correction: position 0
    EXPECT_EQ(f.writePosition(4).position, 0);
    RecordFile::SetRecordsPerPartForTesting(0);
    f.setFileSet(QStringLiteral("x.dat"), 17, false);
    EXPECT_EQ(f.RecordsPerPart(), 2140000000 / 17 - 1);
}

TEST(RecordParts, CountsAndNavigatesAcrossParts)
{
    SmallParts parts(4);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Set.dat"));
    writeSmallSet(data, 12, 4);
    StoreUser u(smallDesign());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(u.store.file().LastPart(), 2);
    EXPECT_EQ(u.store.RecordCount(), 12);
    ASSERT_TRUE(u.store.UnpackRecord());
    EXPECT_EQ(u.text(), QStringLiteral("r1"));

    auto go = [&](NavigationButton button) {
        EXPECT_TRUE(u.store.NavigateRecord(button));
        return u.store.CurrentRecord();
    };
    EXPECT_EQ(go(NavigationButton::OneOn), 2);
    EXPECT_EQ(go(NavigationButton::TenOn), 12);
    EXPECT_EQ(u.text(), QStringLiteral("r12"));
    EXPECT_EQ(u.text(2), QStringLiteral("p2"));
    EXPECT_EQ(u.text(3), QStringLiteral("12"));
    EXPECT_EQ(go(NavigationButton::TenOn), 12); // forward 10 only within the count
    EXPECT_EQ(go(NavigationButton::OneOn), 12);
    EXPECT_EQ(go(NavigationButton::OneBack), 11);
    EXPECT_EQ(go(NavigationButton::TenBack), 1);  // back 10 from 11 reaches 1
    EXPECT_TRUE(u.store.StepBack());
    EXPECT_EQ(go(NavigationButton::TenBack), 1);
    EXPECT_EQ(go(NavigationButton::Last), 12);
    EXPECT_EQ(go(NavigationButton::OneBack), 11);
    EXPECT_EQ(go(NavigationButton::OneBack), 10);
    EXPECT_EQ(go(NavigationButton::TenBack), 10); // back 10 from 10 would reach 0: nothing happens
    EXPECT_EQ(go(NavigationButton::First), 1);
    EXPECT_EQ(u.text(), QStringLiteral("r1"));
    for (int r : {4, 8, 5, 9}) {
        ASSERT_TRUE(u.store.JumpToRecord(r));
        EXPECT_EQ(u.text(), QStringLiteral("r%1").arg(r)) << r;
    }
    ASSERT_TRUE(u.store.StepRecord(StepDirection::On));
    EXPECT_EQ(u.store.CurrentRecord(), 10);
    EXPECT_EQ(u.text(), QStringLiteral("r10"));
    ASSERT_TRUE(u.store.StepRecord(StepDirection::Back));
    ASSERT_TRUE(u.store.StepRecord(StepDirection::Back));
    EXPECT_EQ(u.text(), QStringLiteral("r8"));
    EXPECT_FALSE(u.store.JumpToRecord(13));

    // Sorted browsing: the index in order and reversed.
    const QVector<int> index{0, 7, 3, 12, 1, 5, 2, 4, 6, 8, 9, 10, 11};
    u.store.setBrowseOrder(BrowseOrder::SortIndexDown, index);
    EXPECT_EQ(go(NavigationButton::First), 11); // position 1 shows the last entry
    EXPECT_EQ(go(NavigationButton::OneOn), 10);
    u.store.setBrowseOrder(BrowseOrder::SortIndexUp, index);
    EXPECT_EQ(go(NavigationButton::First), 7);
    EXPECT_EQ(go(NavigationButton::OneOn), 3);
    EXPECT_EQ(u.text(), QStringLiteral("r3"));
}

TEST(RecordParts, OtherUsersRecordsAppearOnNavigating)
{
    SmallParts parts(4);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Grow.dat"));
    writeSmallSet(data, 5, 4);
    StoreUser u(smallDesign());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(u.store.RecordCount(), 5);
    writeSmallSet(data, 8, 4);
    EXPECT_TRUE(u.store.NavigateRecord(NavigationButton::Last));
    EXPECT_EQ(u.store.RecordCount(), 8);
    EXPECT_EQ(u.text(), QStringLiteral("r8"));
    // A part made after opening is found only when the set is opened again.
    writeSmallSet(data, 9, 4);
    EXPECT_TRUE(u.store.NavigateRecord(NavigationButton::First));
    EXPECT_EQ(u.store.RecordCount(), 8);
    StoreUser later(smallDesign());
    ASSERT_TRUE(later.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(later.store.RecordCount(), 9);
}

TEST(RecordParts, AMoveAfterAFailedSaveLeavesNoLockBehind)
{
    SmallParts parts(4);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Move.dat"));
    StoreUser u(smallDesign());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, QStringLiteral("Title")));
    for (int r = 1; r <= 3; ++r) {
        ASSERT_TRUE(u.store.NewRecord());
        ASSERT_TRUE(u.store.SaveIfDirty());
    }
    // Record 4, the exact multiple of the part size, can never be written: leaving it fails.
    EXPECT_FALSE(u.store.NewRecord());
    u.page.FieldText[1] = QStringLiteral("typed");
    EXPECT_TRUE(u.store.JumpToRecord(2));
    ASSERT_EQ(u.host.texts().size(), 1);
    // The page moved on: record 2's first edit takes record 2's own lock byte, as another user
    // sees it, and holds nothing else.
    EXPECT_FALSE(u.store.RecordDirty());
    EXPECT_FALSE(LockProbe::held(recordPlace(data, 2, 17, 4)));
    ASSERT_TRUE(u.store.LockRecord());
    EXPECT_TRUE(LockProbe::held(recordPlace(data, 2, 17, 4)));
    EXPECT_FALSE(LockProbe::held(recordPlace(data, 3, 17, 4)));
    u.page.FieldText[1] = QStringLiteral("n2");
    ASSERT_TRUE(u.store.SaveIfDirty());
    EXPECT_FALSE(LockProbe::held(recordPlace(data, 2, 17, 4)));
}

TEST(RecordParts, AppendingAcrossThePartBoundary)
{
    SmallParts parts(4);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("New.dat"));
    {
        StoreUser u(smallDesign());
        ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, QStringLiteral("Title")));
        EXPECT_EQ(u.store.RecordCount(), 0);
        for (int r = 1; r <= 3; ++r) {
            ASSERT_TRUE(u.store.NewRecord());
            EXPECT_EQ(u.store.CurrentRecord(), r);
            EXPECT_TRUE(u.store.RecordDirty() && u.store.RecordLocked()); // a new record stays in edit
            u.page.FieldText[1] = QStringLiteral("n%1").arg(r);
            ASSERT_TRUE(u.store.SaveIfDirty());
        }
        EXPECT_EQ(QFileInfo(data).size(), 4 * 17 - 1);
        // Record 4, the exact multiple, would be written at position 0 of part 1: the write fails,
        // nothing is written, and the part file now exists.
        EXPECT_FALSE(u.store.NewRecord());
        EXPECT_TRUE(u.store.RecordDirty());
        EXPECT_TRUE(QFileInfo::exists(partFileName(data, 1)));
        EXPECT_EQ(QFileInfo(partFileName(data, 1)).size(), 0);
        // The next new record goes to part 1; the record left behind says it was not saved.
        ASSERT_TRUE(u.host.texts().isEmpty());
        ASSERT_TRUE(u.store.NewRecord());
        ASSERT_EQ(u.host.texts().size(), 1);
        EXPECT_TRUE(u.host.texts().first().startsWith(QStringLiteral("The record could not be saved"))) << u.host.texts().first().toStdString();
        EXPECT_EQ(u.store.CurrentRecord(), 5);
        u.page.FieldText[1] = QStringLiteral("n5");
        ASSERT_TRUE(u.store.SaveIfDirty());
        EXPECT_EQ(QFileInfo(partFileName(data, 1)).size(), 2 * 17 - 1);

    }
    StoreUser again(smallDesign());
    ASSERT_TRUE(again.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(again.store.file().LastPart(), 1);
    EXPECT_EQ(again.store.RecordCount(), 5);
    ASSERT_TRUE(again.store.JumpToRecord(4));
    EXPECT_EQ(again.text(), QString()); // beyond the end of part 0: a blank record
    ASSERT_TRUE(again.store.JumpToRecord(5));
    EXPECT_EQ(again.text(), QStringLiteral("n5"));
    ASSERT_TRUE(again.store.NewRecord());
    EXPECT_EQ(again.store.CurrentRecord(), 6);
    again.page.FieldText[1] = QStringLiteral("n6");
    ASSERT_TRUE(again.store.SaveIfDirty());
    ASSERT_TRUE(again.store.JumpToRecord(3));
    EXPECT_EQ(again.text(), QStringLiteral("n3"));
    ASSERT_TRUE(again.store.JumpToRecord(6));
    EXPECT_EQ(again.text(), QStringLiteral("n6"));
}

TEST(RecordParts, NewFileHeader)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("H.dat"));
    StoreUser u(fullDesign());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, QStringLiteral("My Title")));
    ASSERT_TRUE(u.store.NewRecord());
    ASSERT_TRUE(u.store.SaveIfDirty());
    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll();
    ASSERT_EQ(bytes.size(), 2 * 155 - 1);
    const double created = RecordCodec::readDouble(bytes, 1);
    EXPECT_DOUBLE_EQ(created, 45429.4375); // the clock's 17 May 2024, 10:30
    EXPECT_EQ(bytes.at(8), 'M');                      // first byte of the title
    EXPECT_EQ(RecordCodec::readInt32(bytes, 10), 0); // NextPictureNumber
    EXPECT_EQ(bytes.mid(13, 6), QByteArray("tle   ")); // the title overwrote the length
    // An existing file keeps its header; a file under 9 bytes gets the date and length.
    QTemporaryDir dir2;
    const QString tiny = dir2.filePath(QStringLiteral("T.dat"));
    { QFile t(tiny); ASSERT_TRUE(t.open(QIODevice::WriteOnly)); t.write("abc"); }
    StoreUser w(fullDesign());
    ASSERT_TRUE(w.store.openFileSet(tiny, OpenMode::Open, QString()));
    QFile t(tiny);
    ASSERT_TRUE(t.open(QIODevice::ReadOnly));
    EXPECT_EQ(RecordCodec::readInt32(t.readAll(), 16), 155);
}

TEST(RecordLife, NewRecordDefaultsAndClearRecord)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Life.dat"));
    StoreUser u(fullDesign());
    u.store.setRecordPictureFolder(dir.filePath(QStringLiteral("LifePics/")));
    QDir().mkpath(u.store.RecordPictureFolder());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, QStringLiteral("T")));
    ASSERT_TRUE(u.store.NewRecord());
    EXPECT_EQ(u.page.CheckValue[1], 1);                 // CheckDefault
    EXPECT_DOUBLE_EQ(u.page.FieldDate[6], 45429.4375);  // a date field starts now
    EXPECT_EQ(u.page.FieldDate[13], 0);                 // ... unless FieldDefault says empty
    EXPECT_EQ(u.page.FieldText[8], QStringLiteral("00:00:00"));
    EXPECT_EQ(u.page.RecordStamp, 45429);             // today, no time
    EXPECT_EQ(u.page.TitleCaption[2], QStringLiteral("No. 0000001"));
    u.page.FieldText[12] = QStringLiteral("first");
    u.page.PictureRecordName[1] = QStringLiteral("3.jpg");
    { QFile pic(u.store.RecordPictureFolder() + QStringLiteral("3.jpg")); ASSERT_TRUE(pic.open(QIODevice::WriteOnly)); }
    ASSERT_TRUE(u.store.NewRecord()); // saves record 1 first
    ASSERT_TRUE(u.store.JumpToRecord(1));
    EXPECT_EQ(u.page.FieldText[12], QStringLiteral("first"));
    EXPECT_TRUE(u.page.FieldLocked[12]); // write-once once the record is not new
    EXPECT_EQ(u.page.PictureRecordName[1], QStringLiteral("3.jpg"));

    ASSERT_TRUE(u.store.ClearRecord());
    EXPECT_EQ(u.store.RecordIsNew(), 1);
    EXPECT_FALSE(u.page.FieldLocked[12]); // open until the user moves away
    EXPECT_TRUE(u.page.FieldText[12].isEmpty());
    EXPECT_FALSE(QFileInfo::exists(u.store.RecordPictureFolder() + QStringLiteral("3.jpg")));
    EXPECT_EQ(u.store.CurrentRecord(), 1); // the slot keeps its number
    u.page.FieldText[12] = QStringLiteral("second");
    EXPECT_TRUE(u.store.NavigateRecord(NavigationButton::Last));
    EXPECT_EQ(u.store.RecordIsNew(), 0);
    ASSERT_TRUE(u.store.JumpToRecord(1));
    EXPECT_EQ(u.page.FieldText[12], QStringLiteral("second"));
    EXPECT_TRUE(u.page.FieldLocked[12]);
}

TEST(RecordLife, RecordLimitMessage)
{
    // With 1,070,000,001 records per part the limit is one part: a set whose second part exists
    // is full, and no record is added.
    SmallParts parts(1070000001);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Full.dat"));
    writeSmallSet(data, 2, 1070000001);
    { QFile p(partFileName(data, 1)); ASSERT_TRUE(p.open(QIODevice::WriteOnly)); }
    StoreUser u(smallDesign());
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(u.store.RecordCount(), 1070000001);
    EXPECT_FALSE(u.store.NewRecord());
    EXPECT_EQ(u.host.texts(), QStringList{QStringLiteral("Maximum Record Limited Reached")});
    EXPECT_EQ(u.store.RecordCount(), 1070000001);
}

TEST(RecordLife, ReadOnlyModeWritesNothing)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Ro.dat"));
    writeSmallSet(data, 3, 1000);
    const QByteArray before = [&] { QFile f(data); f.open(QIODevice::ReadOnly); return f.readAll(); }();
    StoreUser u(smallDesign());
    u.store.setViewOnly(true);
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Open, QString()));
    ASSERT_TRUE(u.store.JumpToRecord(2));
    EXPECT_TRUE(u.page.FieldLocked[1]); // every element locked
    EXPECT_TRUE(u.store.LockRecord()); // nothing to guard
    u.page.FieldText[1] = QStringLiteral("changed");
    EXPECT_TRUE(u.store.PackRecord()); // skipped, not failed
    EXPECT_TRUE(u.store.NavigateRecord(NavigationButton::First));
    EXPECT_TRUE(u.store.NewRecord());
    EXPECT_TRUE(u.store.ClearRecord());
    EXPECT_TRUE(u.store.SaveIfDirty());
    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), before);
    EXPECT_FALSE(QFileInfo::exists(partFileName(data, 1)));
}
