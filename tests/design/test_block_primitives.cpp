// The block's primitives: slots and their widths, salted and plain texts, the tail, embedded files.
// Blocks here are assembled byte by byte, without the project's writer.

#include "design/BlockReader.h"
#include "design/DesignReader.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstring>

using namespace ff;

namespace {

QByteArray slot(uint16_t tag, const void *value, int size)
{
    QByteArray s(16, '\0');
    qToLittleEndian(tag, s.data());
    std::memcpy(s.data() + 2, value, size_t(size));
    return s;
}
template <class T>
QByteArray slotOf(uint16_t tag, T value) { return slot(tag, &value, sizeof(T)); }

// A head whose salt bytes (1-based positions 102, 104, ...) are 7, 250, 0, 31, ...
QByteArray saltedHead()
{
    QByteArray head(400, 'h');
    const uint8_t salts[] = {7, 250, 0, 31, 128, 1};
    for (int i = 0; i < 6; ++i)
        head[101 + 2 * i] = static_cast<char>(salts[i]);
    return head;
}

QByteArray saltedText(uint8_t salt, const QByteArray &bytes)
{
    QByteArray out(2, '\0');
    qToLittleEndian(static_cast<uint16_t>(bytes.size() + salt), out.data());
    return out + bytes;
}

struct Fixture {
    QByteArray image;
    qint64 start;
    Fixture(const QByteArray &head, const QByteArray &block) : image(head + block), start(head.size()) {}
};

} // namespace

TEST(BlockSlots, EveryTagConvertsToTheWidthAsked)
{
    QByteArray block;
    block += slotOf<int16_t>(2, -300);       // i16 → i32
    block += slotOf<int32_t>(3, 200);        // i32 → u8
    block += slotOf<float>(4, 2.5f);         // float → i16: half to even, 2
    block += slotOf<double>(5, 3.5);         // double → i16: 4
    block += slotOf<int64_t>(6, 123456789);  // currency → double 12345.6789
    block += slotOf<double>(7, 45000.25);    // date → double
    block += slotOf<int16_t>(11, -1);        // boolean → bool
    block += slotOf<uint8_t>(17, 255);       // byte → i16
    block += slotOf<int16_t>(0, 0);          // empty → 0
    block += slotOf<double>(5, -0.5);        // double → float
    Fixture f(QByteArray(200, 'x'), block);
    BlockReader r(f.image, f.start);
    int32_t a = 0; uint8_t b = 0; int16_t c = 0, d = 0, h = 9; double e = 0, g = 0; bool flag = false; int16_t i = 0; float j = 0;
    r.item(a); r.item(b); r.item(c); r.item(d); r.item(e); r.item(g); r.item(flag); r.item(i); r.item(h); r.item(j);
    ASSERT_TRUE(r.ok()) << r.error().text.toStdString();
    EXPECT_EQ(a, -300);
    EXPECT_EQ(b, 200);
    EXPECT_EQ(c, 2);
    EXPECT_EQ(d, 4);
    EXPECT_DOUBLE_EQ(e, 12345.6789);
    EXPECT_DOUBLE_EQ(g, 45000.25);
    EXPECT_TRUE(flag);
    EXPECT_EQ(i, 255);
    EXPECT_EQ(h, 0);
    EXPECT_FLOAT_EQ(j, -0.5f);
    EXPECT_EQ(r.position(), f.start + 10 * 16); // every slot is 16 bytes, whatever it holds
}

TEST(BlockSlots, OutOfRangeValuesAndUnknownTagsStopTheLoad)
{
    struct Case {
        QByteArray slot;
        int width; // 1 u8, 2 i16, 4 i32, 5 float
        ErrorCode code;
    };
    const Case cases[] = {
        {slotOf<int32_t>(3, 40000), 2, ErrorCode::Overflow},
        {slotOf<int32_t>(3, -32769), 2, ErrorCode::Overflow},
        {slotOf<int16_t>(11, -1), 1, ErrorCode::Overflow}, // true is -1, no byte holds it
        {slotOf<int16_t>(2, 256), 1, ErrorCode::Overflow},
        {slotOf<double>(5, 3e9), 4, ErrorCode::Overflow},
        {slotOf<int64_t>(6, INT64_MAX), 4, ErrorCode::Overflow},
        {slotOf<double>(5, 1e300), 5, ErrorCode::Overflow},
        {slotOf<uint32_t>(5, 0x7FF80000u) /* not a finite double */, 4, ErrorCode::None},
        {slotOf<int16_t>(8, 1), 2, ErrorCode::Invalid}, // a string tag never stands in a block
        // The exact limits still fit.
        {slotOf<int32_t>(3, 32767), 2, ErrorCode::None},
        {slotOf<int32_t>(3, -32768), 2, ErrorCode::None},
        {slotOf<double>(5, 255.4), 1, ErrorCode::None},
        {slotOf<int16_t>(11, 0), 1, ErrorCode::None},
    };
    for (const Case &c : cases) {
        Fixture f(QByteArray(10, 'x'), c.slot);
        BlockReader r(f.image, f.start);
        uint8_t u8 = 0; int16_t i16 = 0; int32_t i32 = 0; float fl = 0;
        if (c.width == 1) r.item(u8);
        if (c.width == 2) r.item(i16);
        if (c.width == 4) r.item(i32);
        if (c.width == 5) r.item(fl);
        EXPECT_EQ(r.error().code, c.code) << c.slot.toHex().toStdString();
        if (c.code != ErrorCode::None) {
            EXPECT_FALSE(r.error().text.isEmpty());
        }
    }
}

TEST(BlockTexts, EachTextTakesTheNextSaltOfTheHead)
{
    QByteArray block = saltedText(7, "abc") + saltedText(250, "") + saltedText(0, "xyz") + saltedText(31, QByteArray(300, 'q'));
    QByteArray plain(2, '\0');
    qToLittleEndian<int16_t>(4, plain.data());
    block += plain + "\xE8\xF8\xE1\xE9"; // "čřáé" in Windows-1250
    Fixture f(saltedHead(), block);
    BlockReader r(f.image, f.start);
    QString a, b, c, d, e;
    r.text(a); r.text(b); r.text(c); r.text(d);
    r.charsetKnown(238);
    r.plain(e);
    ASSERT_TRUE(r.ok()) << r.error().text.toStdString();
    EXPECT_EQ(a, QStringLiteral("abc"));
    EXPECT_TRUE(b.isEmpty());
    EXPECT_EQ(c, QStringLiteral("xyz"));
    EXPECT_EQ(d, QString(300, QLatin1Char('q')));
    EXPECT_EQ(e, QStringLiteral("čřáé"));
    EXPECT_EQ(r.position(), f.image.size());
}

TEST(BlockTexts, LateCharsetScrambledTextsAndLengthsBelowTheSalt)
{
    Fixture f(saltedHead(), saltedText(7, "\xE8") + saltedText(250, "\x74\x1B"));
    BlockReader r(f.image, f.start);
    QString early, scrambled;
    r.text(early);
    EXPECT_EQ(early, QStringLiteral("è")); // Windows-1252 until the design says otherwise
    r.charsetKnown(238);
    EXPECT_EQ(early, QStringLiteral("č")); // decoded again once the charset is known
    // ScrambleTable(i) = (i * 167 + 13) mod 256: 'A' (65) → 0x74, 'B' (66) → 0x1B.
    r.scrambled(scrambled);
    EXPECT_EQ(scrambled, QStringLiteral("AB"));

    QByteArray field(2, '\0');
    qToLittleEndian<uint16_t>(3, field.data()); // 3 - 7 = -4
    Fixture g(saltedHead(), field + "abc");
    BlockReader refused(g.image, g.start);
    refused.text(early);
    EXPECT_EQ(refused.error().code, ErrorCode::Invalid);
}

TEST(BlockTail, ZeroDistanceStartsTheBlockAtTheTailItself)
{
    // The first text's length comes from the tail's own zero bytes: with a salt of 0 the title is
    // empty and the next slot runs past the end; with any other salt the length is negative.
    QByteArray image(300, 'h');
    image[101] = 0;
    image += QByteArray(4, '\0');
    DesignLoad zeroSalt = ReadDesignFromBytes(image);
    EXPECT_EQ(zeroSalt.blockStart, 300);
    EXPECT_TRUE(zeroSalt.design.AppTitle.isEmpty());
    EXPECT_EQ(zeroSalt.error.code, ErrorCode::Truncated);
    image[101] = 9;
    EXPECT_EQ(ReadDesignFromBytes(image).error.code, ErrorCode::Invalid);
}

TEST(BlockTail, DistancesOutsideTheFileAndShortFilesFailCleanly)
{
    auto withTail = [](int32_t d) {
        QByteArray image(500, 'h');
        QByteArray tail(4, '\0');
        qToLittleEndian(d, tail.data());
        return image + tail;
    };
    for (int32_t d : {501, 100000, INT32_MAX, -5, INT32_MIN}) {
        DesignLoad load = ReadDesignFromBytes(withTail(d));
        EXPECT_EQ(load.error.code, ErrorCode::Overflow) << d;
        EXPECT_EQ(load.design.Titles.size(), size_t(kMinLabels));
    }
    EXPECT_EQ(ReadDesignFromBytes(QByteArray("abc")).error.code, ErrorCode::Truncated);
    EXPECT_EQ(ReadDesign(QStringLiteral("/nonexistent/app.exe")).error.code, ErrorCode::FileNotFound);
}

class EmbeddedFiles : public ::testing::Test {
protected:
    QTemporaryDir root;
    QString folder;
    void SetUp() override
    {
        ASSERT_TRUE(root.isValid());
        folder = root.filePath(QStringLiteral("app"));
        QDir().mkpath(folder);
    }
    // A salted name, the raw length, the data, the spare byte; then a slot holding 77.
    QByteArray entry(uint8_t salt, const QByteArray &name, const QByteArray &data)
    {
        QByteArray length(4, '\0');
        qToLittleEndian<int32_t>(int32_t(data.size()), length.data());
        return saltedText(salt, name) + length + data + '\x5A';
    }
    int16_t readAfter(const QByteArray &name, const QByteArray &data, BlockReader **out = nullptr)
    {
        image = saltedHead() + entry(7, name, data) + slotOf<int16_t>(2, 77);
        reader = std::make_unique<BlockReader>(image, 400);
        reader->setExtraction(folder, true);
        reader->charsetKnown(0);
        QString n;
        reader->embedded(n, false);
        int16_t after = 0;
        reader->item(after);
        return after;
    }
    QByteArray image;
    std::unique_ptr<BlockReader> reader;
};

TEST_F(EmbeddedFiles, AnAbsentFileIsExtractedAndAPresentOneIsKept)
{
    EXPECT_EQ(readAfter("pic.gif", "NEWDATA"), 77);
    QFile f(QDir(folder).filePath(QStringLiteral("pic.gif")));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("NEWDATA"));
    f.close();
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write("USER'S OWN");
    f.close();
    EXPECT_EQ(readAfter("pic.gif", "OTHERDATA"), 77);
    EXPECT_TRUE(reader->extractedFiles().isEmpty());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("USER'S OWN"));
    EXPECT_EQ(reader->files().value(QStringLiteral("pic.gif")), QByteArray("OTHERDATA"));
}

TEST_F(EmbeddedFiles, NamesThatLeaveTheFolderAreRefusedButSkippedOver)
{
    for (const char *name : {"../up.gif", "/tmp/abs.gif", "sub/x.gif", "..", "a\\b.gif", "C:evil.gif"}) {
        EXPECT_EQ(readAfter(name, "EVIL"), 77) << name;
        EXPECT_TRUE(reader->ok());
        EXPECT_EQ(reader->refusedFiles(), QStringList{QString::fromLatin1(name)});
        EXPECT_TRUE(reader->extractedFiles().isEmpty());
    }
    EXPECT_FALSE(QFile::exists(root.filePath(QStringLiteral("up.gif"))));
    EXPECT_FALSE(QFile::exists(QStringLiteral("/tmp/abs.gif")));
    EXPECT_EQ(QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

TEST_F(EmbeddedFiles, DataCutShortIsTruncatedAndNothingIsWritten)
{
    image = saltedHead() + entry(7, "cut.gif", "0123456789").left(2 + 7 + 4 + 5);
    BlockReader r(image, 400);
    r.setExtraction(folder, false);
    QString n;
    r.embedded(n, false);
    EXPECT_EQ(r.error().code, ErrorCode::Truncated);
    EXPECT_FALSE(QFile::exists(QDir(folder).filePath(QStringLiteral("cut.gif"))));
}
