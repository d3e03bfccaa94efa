#include "pagetools/PictureNaming.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;

TEST(PictureNaming, StoredNamesFollowTheTable)
{
    struct Case { int number; bool resized; const char *source; const char *name; const char *record; };
    const Case cases[] = {
        {42, true, "/home/a/holiday.png", "0000042.jpg", "0000042"},
        {42, false, "/home/a/holiday.JPG", "0000042.jpg", "0000042"},  // a JPEG is copied under the same name
        {42, false, "/home/a/photo.jpeg", "0000042.jpg", "0000042"},
        {7, false, "/home/a/logo.gif", "0007.gif", "0007.gif"},        // another type keeps its extension
        {1234, false, "x.bmp", "1234.bmp", "1234.bmp"},
        {56789, false, "x.gif", "56789.gif", "56789"},                 // never cut: no name twice
        {12345678, true, "x.gif", "2345678.jpg", "2345678"},           // the last seven digits
        {3, false, "", "0000003.jpg", "0000003"},                      // the clipboard: always a JPEG
    };
    for (const Case &c : cases) {
        const QString name = PictureNaming::storedName(c.number, c.resized, QString::fromLatin1(c.source));
        EXPECT_EQ(name, QString::fromLatin1(c.name)) << c.number << c.source;
        EXPECT_EQ(PictureNaming::recordName(name), QString::fromLatin1(c.record)) << c.name;
        EXPECT_LE(PictureNaming::recordName(name).size(), PictureNaming::RecordNameLength);
    }
}

TEST(PictureNaming, ARecordsNameFindsItsFile)
{
    QTemporaryDir dir;
    for (const char *name : {"0000042.jpg", "0007.gif", "0000050", "56789.gif"}) {
        QFile f(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    const QString folder = dir.path() + QLatin1Char('/');
    EXPECT_EQ(PictureNaming::filePath(folder, QStringLiteral("0000042")), dir.filePath(QStringLiteral("0000042.jpg")));
    EXPECT_EQ(PictureNaming::filePath(folder, QStringLiteral(" 0007.gif")), dir.filePath(QStringLiteral("0007.gif")));
    EXPECT_EQ(PictureNaming::filePath(folder, QStringLiteral("0000050")), dir.filePath(QStringLiteral("0000050")));
    EXPECT_EQ(PictureNaming::filePath(folder, QStringLiteral("56789")), dir.filePath(QStringLiteral("56789.gif")));
    for (const char *bad : {"", "  ", "..", "../x.jpg", "a\\b"})
        EXPECT_TRUE(PictureNaming::filePath(folder, QString::fromLatin1(bad)).isEmpty()) << bad;
}

TEST(PictureNaming, TheCounterStandsAtPositionTenOfTheFirstFile)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Pics.dat"));
    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    QByteArray bytes(60, 'x');
    bytes.replace(9, 4, QByteArray::fromHex("feffffff")); // -2 little-endian, from position 10
    f.write(bytes);
    f.close();
    ASSERT_EQ(*PictureNaming::readNextNumber(data), -2);

    ASSERT_TRUE(PictureNaming::writeNextNumber(data, 30, 0x01020304));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray after = f.readAll();
    f.close();
    EXPECT_EQ(after.mid(9, 4), QByteArray::fromHex("04030201"));
    EXPECT_EQ(after.left(9), bytes.left(9));
    EXPECT_EQ(after.mid(13), bytes.mid(13));

    // A record shorter than the header's number would put it inside record 1: not written.
    ASSERT_TRUE(PictureNaming::writeNextNumber(data, 12, 99));
    EXPECT_EQ(*PictureNaming::readNextNumber(data), 0x01020304);
    EXPECT_FALSE(PictureNaming::readNextNumber(dir.filePath(QStringLiteral("none.dat"))).ok());
}
