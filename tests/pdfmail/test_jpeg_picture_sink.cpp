#include "pdfmail/JpegPictureSink.h"

#include "JpegMarkers.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;

namespace {

QStringList filesIn(const QString &folder) { return QDir(folder).entryList(QDir::Files); }

} // namespace

TEST(JpegPictureSink, StoresTheFittedPictureUnderItsNumber)
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("KundenPics")) + QLatin1Char('/');
    ASSERT_TRUE(QDir().mkpath(folder));
    QImage square(60, 60, QImage::Format_RGB32);
    square.fill(Qt::blue);
    const QString source = dir.filePath(QStringLiteral("photo.png"));
    ASSERT_TRUE(square.save(source));

    JpegPictureSink sink;
    // 3000 x 1500 twips is 200 x 100 pixels: the square becomes 100 x 100, centred.
    Result<QString> stored = sink.storePicture({source, folder, 3000, 1500, 42});
    ASSERT_TRUE(stored.ok()) << stored.error().text.toStdString();
    EXPECT_EQ(*stored, QStringLiteral("0000042.jpg"));
    EXPECT_EQ(filesIn(folder), QStringList{QStringLiteral("0000042.jpg")});

    QFile file(folder + *stored);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const jpegtest::JpegFile jpeg = jpegtest::readJpeg(bytes);
    ASSERT_TRUE(jpeg.valid) << jpeg.problem.toStdString();
    EXPECT_EQ(jpeg.dqt.value(0)[0], 8); // the default quality 75: 16 * 50 / 100
    const QImage decoded = QImage::fromData(bytes, "JPEG");
    ASSERT_EQ(decoded.size(), QSize(200, 100));
    EXPECT_GE(qGray(decoded.pixel(20, 50)), 245);
    EXPECT_GE(qGray(decoded.pixel(180, 50)), 245);
    EXPECT_LE(qRed(decoded.pixel(100, 50)), 20);
    EXPECT_GE(qBlue(decoded.pixel(100, 50)), 235);
}

TEST(JpegPictureSink, WritesNothingForWhatIsNotAPicture)
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("Pics/"));
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString text = dir.filePath(QStringLiteral("notes.png"));
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Name;Street\nMeier;Hauptstr. 1\n");
    file.close();

    JpegPictureSink sink;
    Result<QString> notPicture = sink.storePicture({text, folder, 1500, 1500, 1});
    EXPECT_FALSE(notPicture.ok());
    Result<QString> missing = sink.storePicture({dir.filePath(QStringLiteral("gone.png")), folder, 1500, 1500, 2});
    ASSERT_FALSE(missing.ok());
    EXPECT_EQ(missing.error().code, ErrorCode::FileNotFound);
    QImage image(10, 10, QImage::Format_RGB32);
    image.fill(Qt::green);
    ASSERT_TRUE(image.save(dir.filePath(QStringLiteral("ok.png"))));
    EXPECT_FALSE(sink.storePicture({dir.filePath(QStringLiteral("ok.png")), folder, 0, 1500, 3}).ok());
    EXPECT_TRUE(filesIn(folder).isEmpty());
}

TEST(JpegPictureSink, NamesStayInsideTheFolder)
{
    struct NameCase { int32_t number; const char *name; };
    for (const NameCase &c : {NameCase{1, "0000001.jpg"}, NameCase{1234567, "1234567.jpg"},
                              NameCase{12345678, "2345678.jpg"}, NameCase{0, "0000000.jpg"}})
        EXPECT_EQ(JpegPictureSink::pictureName(c.number), QLatin1String(c.name));

    // With or without the trailing separator the file lands inside the folder.
    EXPECT_EQ(*JpegPictureSink::pathInFolder(QStringLiteral("/data/Pics/"), QStringLiteral("0000001.jpg")),
              QStringLiteral("/data/Pics/0000001.jpg"));
    EXPECT_EQ(*JpegPictureSink::pathInFolder(QStringLiteral("/data/Pics"), QStringLiteral("0000001.jpg")),
              QStringLiteral("/data/Pics/0000001.jpg"));
    for (const char *bad : {"../0000001.jpg", "sub/0000001.jpg", "..\\0000001.jpg", "..", ".", ""})
        EXPECT_FALSE(JpegPictureSink::pathInFolder(QStringLiteral("/data/Pics/"), QLatin1String(bad)).ok()) << bad;
    EXPECT_FALSE(JpegPictureSink::pathInFolder(QString(), QStringLiteral("0000001.jpg")).ok());
    EXPECT_EQ(JpegPictureSink::fieldPixels(1500, 22), QSize(100, 1));
}
