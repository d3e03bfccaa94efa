// The picture column of a text import with the program's own picture store: real pictures become
// JPEG files in the record picture folder under rising numbers, fitted into the field; a file that
// is no picture is reported and takes no number.

#include "export/TextImport.h"
#include "pdfmail/JpegPictureSink.h"
#include "store/RecordStore.h"
#include "support/RecordingStoreHost.h"
#include "support/StoreDesigns.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

TEST(ImportPictures, RealPicturesAreStoredAsJpegFiles)
{
    Design d;
    d.MainCap = QStringLiteral("Pics");
    d.DataExtension = QStringLiteral("dat");
    d.FieldSeparator = QStringLiteral(",");
    d.Fields.resize(2);
    d.Fields[1] = makeField(0, 10);
    d.Fields[1].Tag = QStringLiteral("name");
    d.FieldCount = 1;
    d.Combos.resize(1);
    d.Notes.resize(1);
    d.Pictures.resize(1);
    d.Pictures[0].PictureName = QStringLiteral("Photo");
    d.Pictures[0].Stretch = true;
    d.Pictures[0].Width = 1500; // 100 x 50 pixels
    d.Pictures[0].Height = 750;
    d.PictureCount = 0;
    d.HasRecordPictures = true;
    addLabels(d, 6);

    QTemporaryDir dir;
    Page page(d);
    RecordingStoreHost host;
    RecordStore store(d, page, nullptr, &host);
    const QString folder = dir.filePath(QStringLiteral("PicsPics/"));
    QDir().mkdir(folder);
    store.setRecordPictureFolder(folder);
    ASSERT_TRUE(store.openFileSet(dir.filePath(QStringLiteral("Pics.dat")), OpenMode::Create, d.MainCap));
    ASSERT_TRUE(store.showFirstRecord(OpenMode::Create, true));

    QImage wide(400, 100, QImage::Format_RGB32);
    wide.fill(Qt::red);
    ASSERT_TRUE(wide.save(dir.filePath(QStringLiteral("wide.png"))));
    QImage tall(30, 60, QImage::Format_RGB32);
    tall.fill(Qt::blue);
    ASSERT_TRUE(tall.save(dir.filePath(QStringLiteral("tall.bmp"))));
    {
        QFile fake(dir.filePath(QStringLiteral("fake.png")));
        ASSERT_TRUE(fake.open(QIODevice::WriteOnly));
        fake.write("this is no picture");
    }
    QFile csv(dir.filePath(QStringLiteral("in.csv")));
    ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
    csv.write("name,photo\r\na,wide.png\r\nb,fake.png\r\nc,tall.bmp\r\n");
    csv.close();

    JpegPictureSink sink;
    ImportSetup setup;
    setup.store = &store;
    setup.messages = &host;
    setup.pictures = &sink;
    setup.storeWasEmpty = true;
    const Result<ImportReport> report = TextImport::run(csv.fileName(), setup);
    ASSERT_TRUE(report) << report.error().text.toStdString();
    EXPECT_EQ(report->added, 3);
    EXPECT_EQ(report->picturesStored, 2);
    ASSERT_EQ(report->warnings.size(), 1);
    EXPECT_TRUE(report->warnings[0].contains(QLatin1String("fake.png")));
    EXPECT_EQ(store.NextPictureNumber(), 2);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), (QStringList{QStringLiteral("0000001.jpg"), QStringLiteral("0000002.jpg")}));

    // Read back by Qt's own JPEG reader: each fits the 100 x 50 field.
    for (const QString &name : {QStringLiteral("0000001.jpg"), QStringLiteral("0000002.jpg")}) {
        QImageReader reader(QDir(folder).filePath(name));
        EXPECT_EQ(reader.format(), QByteArray("jpeg"));
        const QImage image = reader.read();
        ASSERT_FALSE(image.isNull()) << name.toStdString();
        EXPECT_LE(image.width(), 100);
        EXPECT_LE(image.height(), 50);
    }
    const QString names[] = {QStringLiteral("0000001"), QString(), QStringLiteral("0000002")};
    for (int r = 1; r <= 3; ++r) {
        ASSERT_TRUE(store.JumpToRecord(r));
        EXPECT_EQ(page.PictureRecordName[0], names[r - 1]) << "record " << r;
    }
}

} // namespace
