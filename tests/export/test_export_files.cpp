// The record copy read back from the record file format by the test's own reading, and the
// listing's lines.

#include "test_export_fixture.h"

#include "support/RecordFileFormat.h"

#include <cstring>

using namespace ff;
using namespace ff::testsupport;

namespace {

QByteArray readAt(const RecordPlace &place, int length)
{
    QFile f(place.file);
    if (!f.open(QIODevice::ReadOnly) || !f.seek(place.offset))
        return {};
    return f.read(length);
}

} // namespace

TEST(ExportCopy, ChosenRecordsGoIntoANewFileSetInTheirOrder)
{
    SmallParts parts(4);
    ShopStore shop(shopDesign(0, true)); // scrambled records stay scrambled
    std::vector<ShopRecord> records(10);
    for (int k = 0; k < 10; ++k) {
        records[size_t(k)].name = QStringLiteral("n%1").arg(k + 1);
        records[size_t(k)].photo = k == 4 ? QStringLiteral("p5.jpg") : QString();
    }
    shop.write(records);
    QFile picture(shop.dir.filePath(QStringLiteral("ShopPics/p5.jpg")));
    ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    picture.write("jpeg");
    picture.close();
    const QString copy = shop.dir.filePath(QStringLiteral("Copy.dat"));
    for (int part = 0; part <= 2; ++part) { // an earlier, longer copy of the same name
        QFile stale(partFileName(copy, part));
        ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
        stale.write(QByteArray(5000, 'x'));
    }

    const QVector<int> chosen{9, 2, 7, 4, 5, 1};
    const Result<ExportOutcome> done =
        shop.run(request(ExportChoice{ExportKind::RecordCopy, -1, true}, ExportRange::ResultList(chosen, 10), QStringLiteral("Copy.xyz")));
    ASSERT_TRUE(done) << done.error().text.toStdString();
    EXPECT_EQ(done->records, 6);
    EXPECT_EQ(done->path, copy);
    EXPECT_EQ(done->pictures, 1);
    const int length = shop.store.layout().RecordLength;
    for (int n = 1; n <= 6; ++n) {
        const QByteArray source = readAt(recordPlace(shop.data, chosen[n - 1], length, 4), length);
        ASSERT_EQ(source.size(), length);
        EXPECT_EQ(readAt(recordPlace(copy, n, length, 4), length), source) << n;
    }
    EXPECT_FALSE(QFile::exists(partFileName(copy, 2)));
    EXPECT_EQ(QFileInfo(partFileName(copy, 1)).size(), qint64(3) * length - 1); // copies 5 and 6, offsets from L - 1
    // The header of a new database: the date of creation, the title, NextPictureNumber.
    QFile first(copy);
    ASSERT_TRUE(first.open(QIODevice::ReadOnly));
    const QByteArray header = first.read(length - 1);
    double created;
    std::memcpy(&created, header.constData(), 8);
    EXPECT_DOUBLE_EQ(created, 45429.4375);
    EXPECT_EQ(header.mid(8, 1), "S");
    EXPECT_EQ(header.mid(9, 4), QByteArray(4, '\0'));
    EXPECT_EQ(shop.file(QStringLiteral("CopyPics/p5.jpg")), "jpeg");

    // The program reads the copy back: six records, copy 5 is source record 5.
    Page page(shop.design);
    RecordStore store(shop.design, page);
    ASSERT_TRUE(store.openFileSet(copy, OpenMode::Open, QString(), true));
    EXPECT_EQ(store.RecordCount(), 6);
    ASSERT_TRUE(store.JumpToRecord(2));
    EXPECT_EQ(page.FieldText[1], QStringLiteral("n2"));
    ASSERT_TRUE(store.JumpToRecord(5));
    EXPECT_EQ(page.FieldText[1], QStringLiteral("n5"));
    EXPECT_EQ(page.PictureRecordName[0], QStringLiteral("p5.jpg"));
}

TEST(ExportCopy, TheDatabasesOwnFilesAreNeverReplaced)
{
    ShopStore shop(shopDesign());
    shop.write({named(QStringLiteral("keep"))});
    const QByteArray before = shop.file(QStringLiteral("Shop.dat"));
    const Result<ExportOutcome> done =
        shop.run(request(ExportChoice{ExportKind::RecordCopy, -1, true}, ExportRange::Records(1, 1, 1), QStringLiteral("Shop")));
    EXPECT_FALSE(done);
    EXPECT_EQ(shop.file(QStringLiteral("Shop.dat")), before);
}

TEST(ExportListing, PlainLinesInTabOrderWithChecksInTabZones)
{
    ShopStore shop(shopDesign());
    shop.write({{"Ada", "", "12", "", "", "", "", 1, "a", "", "one\r\ntwo", ""}, {}});
    const Result<ExportOutcome> done =
        shop.run(request(ExportChoice{ExportKind::Listing, -1, true}, ExportRange::Records(1, 2, 2)));
    ASSERT_TRUE(done);
    EXPECT_EQ(shop.file(QStringLiteral("out.rtf")),
              QByteArray("\r\nRecord No. 1\r\n\r\nAda\r\n12.00\r\n"
                         "a\r\n"                    // at position 9: the combos before the check
                         "1             \r\n"       // the check's number in a tab zone, ended by the note's empty line
                         "one\r\ntwo\r\n\r\n"
                         "\r\nRecord No. 2\r\n\r\n"
                         "0             \r\n"));    // an empty record: its head and its check only
}

TEST(ExportListing, AStopEndsTheListingAtARecordsEnd)
{
    ShopStore shop(shopDesign());
    std::vector<ShopRecord> records(50);
    for (int k = 0; k < 50; ++k)
        records[size_t(k)].name = QStringLiteral("n%1").arg(k + 1);
    shop.write(records);
    StopAt stop(2); // at index 20
    const Result<ExportOutcome> done =
        shop.run(request(ExportChoice{ExportKind::Listing, -1, true}, ExportRange::Records(1, 50, 50)), &stop);
    ASSERT_TRUE(done);
    EXPECT_TRUE(done->stopped);
    EXPECT_EQ(done->records, 19);
    EXPECT_TRUE(shop.file(QStringLiteral("out.rtf")).endsWith("\r\nRecord No. 19\r\n\r\nn19\r\n0             \r\n"));
}

TEST(ExportTemplates, ExtensionsThatLeaveTheFolderAreRefused)
{
    Design d = shopDesign();
    d.Templates[4].TemplateExtension = QStringLiteral("*/../../x");
    d.Templates[4].TemplateText = QStringLiteral("F1:");
    ShopStore shop(d);
    shop.write({named(QStringLiteral("a"))});
    const Result<ExportOutcome> done = shop.run(request(ExportChoice::Template(4, false), ExportRange::Records(1, 1, 1)));
    ASSERT_FALSE(done);
    EXPECT_EQ(done.error().code, ErrorCode::BadFileName);
    EXPECT_FALSE(QFile::exists(shop.dir.filePath(QStringLiteral("out"))));
}
