#include "pdfmail/JpegEncoder.h"

#include "JpegMarkers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace ff;

namespace {

// Tables K.1 and K.2 of ISO/IEC 10918-1, in natural order.
const std::array<int, 64> Luminance{
    16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55,
    14, 13, 16, 24, 40, 57, 69, 56, 14, 17, 22, 29, 51, 87, 80, 62,
    18, 22, 37, 56, 68, 109, 103, 77, 24, 35, 55, 64, 81, 104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
const std::array<int, 64> Chrominance = [] {
    std::array<int, 64> t{};
    t.fill(99);
    const int top[4][4] = {{17, 18, 24, 47}, {18, 21, 26, 66}, {24, 26, 56, 99}, {47, 66, 99, 99}};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            t[r * 8 + c] = top[r][c];
    return t;
}();

// The quality rule: scale 200 - 2q from 50 up, 5000 / q below; entries (base * scale + 50) / 100
// held between 1 and 255.
std::array<int, 64> scaled(const std::array<int, 64> &base, int quality)
{
    const int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    std::array<int, 64> t{};
    for (int i = 0; i < 64; ++i)
        t[i] = std::clamp((base[i] * scale + 50) / 100, 1, 255);
    return t;
}

// Squares of 16 pixels in twelve colours, so that each square fills whole units of the scan.
QImage pattern()
{
    const QRgb colours[] = {0xff0000, 0x00ff00, 0x0000ff, 0xffff00, 0xff00ff, 0x00ffff,
                            0xffffff, 0x000000, 0x808080, 0xff8000, 0x8000ff, 0x008040};
    QImage image(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            image.setPixel(x, y, 0xff000000 | colours[(y / 16 * 4 + x / 16) % 12]);
    return image;
}

// Largest difference of a channel between the centres (8x8) of the squares.
int centreDifference(const QImage &a, const QImage &b)
{
    int worst = 0;
    for (int y = 4; y < a.height(); y += 16)
        for (int x = 4; x < a.width(); x += 16)
            for (int dy = 0; dy < 8; ++dy)
                for (int dx = 0; dx < 8; ++dx) {
                    const QRgb p = a.pixel(x + dx, y + dy), q = b.pixel(x + dx, y + dy);
                    worst = std::max({worst, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                      std::abs(qBlue(p) - qBlue(q))});
                }
    return worst;
}

} // namespace

TEST(JpegEncoder, WritesTheFileItsSettingsDescribe)
{
    struct Case { int quality; std::array<int, 6> sampling; int tolerance; };
    const Case cases[] = {
        {75, {2, 2, 1, 1, 1, 1}, 8}, // the defaults, set explicitly
        {100, {1, 1, 1, 1, 1, 1}, 4},
        {90, {2, 1, 1, 1, 1, 1}, 8},
        {50, {1, 2, 1, 1, 1, 1}, 10},
        {30, {4, 2, 1, 1, 1, 1}, 0},  // 5000 / 30 truncates to 166
        {1, {1, 1, 2, 2, 1, 1}, 0},   // every entry held at 255 or below
    };
    QTemporaryDir dir;
    const QImage source = pattern();
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "quality " << c.quality);
        JpegEncoder encoder;
        encoder.SetQuality(c.quality);
        const auto &s = c.sampling;
        ASSERT_TRUE(encoder.SetSamplingFrequencies(s[0], s[1], s[2], s[3], s[4], s[5]).ok());
        ASSERT_TRUE(encoder.SetComment(QStringLiteral("Kunden 2024")).ok());
        encoder.setApplicationTitle(QStringLiteral("Adressen"));
        encoder.SampleImage(source);
        const QString name = dir.filePath(QStringLiteral("q%1.jpg").arg(c.quality));
        ASSERT_TRUE(encoder.SaveFile(name).ok());

        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const jpegtest::JpegFile jpeg = jpegtest::readJpeg(file.readAll());
        ASSERT_TRUE(jpeg.valid) << jpeg.problem.toStdString();
        const QList<int> order{0xD8, 0xE0, 0xFE, 0xDB, 0xC0, 0xC4, 0xDA, 0xD9};
        QList<int> seen = jpeg.markers;
        seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
        EXPECT_EQ(seen, order);
        EXPECT_TRUE(jpeg.app0.startsWith(QByteArray("JFIF\0", 5)));
        EXPECT_EQ(jpeg.comment, QByteArray("Kunden 2024\r\nJPEG\r\nAdressen\r\nMade with Flatform"));

        EXPECT_EQ(jpeg.dqt.value(0), scaled(Luminance, c.quality));
        EXPECT_EQ(jpeg.dqt.value(1), scaled(Chrominance, c.quality));
        EXPECT_EQ(jpeg.precision, 8);
        EXPECT_EQ(jpeg.width, 64);
        EXPECT_EQ(jpeg.height, 48);
        ASSERT_EQ(jpeg.components.size(), 3);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(jpeg.components[i].h, s[2 * i]) << "component " << i;
            EXPECT_EQ(jpeg.components[i].v, s[2 * i + 1]) << "component " << i;
            EXPECT_EQ(jpeg.components[i].table, i == 0 ? 0 : 1);
        }
        // The standard Huffman tables K.3 to K.6: DC and AC, luminance and chrominance.
        EXPECT_EQ(jpeg.dht.value(0x00), (std::array<int, 16>{0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(jpeg.dht.value(0x01), (std::array<int, 16>{0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}));
        EXPECT_EQ(jpeg.dht.value(0x10), (std::array<int, 16>{0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7d}));
        EXPECT_EQ(jpeg.dht.value(0x11), (std::array<int, 16>{0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 0x77}));

        const QImage decoded(name);
        ASSERT_EQ(decoded.size(), source.size());
        if (c.tolerance > 0) {
            EXPECT_LE(centreDifference(decoded, source), c.tolerance);
        }
    }
}

TEST(JpegEncoder, QualityOutsideOneToHundredIsIgnored)
{
    JpegEncoder encoder;
    EXPECT_EQ(encoder.Quality(), 75);
    for (int ignored : {0, 101, -5, 1000}) {
        encoder.SetQuality(ignored);
        EXPECT_EQ(encoder.Quality(), 75) << ignored;
    }
}

TEST(JpegEncoder, RefusedSamplingLeavesTheFactorsAsTheyWere)
{
    JpegEncoder encoder;
    const std::array<int, 6> defaults{2, 2, 1, 1, 1, 1};
    for (int position = 0; position < 6; ++position) {
        for (int bad : {0, 5, -1}) {
            std::array<int, 6> f{1, 1, 1, 1, 1, 1};
            f[position] = bad;
            const Status status = encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
            ASSERT_FALSE(status.ok());
            EXPECT_EQ(status.error().text, QStringLiteral("Invalid Sampling Value"));
        }
    }
    // In range, but not something a baseline file can hold: a message of its own.
    for (std::array<int, 6> f : {std::array<int, 6>{4, 4, 1, 1, 1, 1}, std::array<int, 6>{3, 1, 2, 1, 1, 1}}) {
        const Status status = encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
        ASSERT_FALSE(status.ok());
        EXPECT_NE(status.error().text, QStringLiteral("Invalid Sampling Value"));
    }
    EXPECT_EQ(encoder.samplingFrequencies(), defaults);
}

TEST(JpegEncoder, CommentLengthAndUnwritableFiles)
{
    JpegEncoder encoder;
    const Status tooLong = encoder.SetComment(QString(65536, QLatin1Char('x')));
    ASSERT_FALSE(tooLong.ok());
    EXPECT_EQ(tooLong.error().text, QStringLiteral("Illegal Comment Length"));
    EXPECT_TRUE(encoder.Comment().isEmpty());

    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("page.jpg"));
    EXPECT_FALSE(encoder.SaveFile(name).ok()) << "no picture taken yet";
    encoder.SampleImage(pattern());
    // Accepted, but with the program's lines it no longer fits one segment: refused, not cut.
    ASSERT_TRUE(encoder.SetComment(QString(65535, QLatin1Char('x'))).ok());
    EXPECT_FALSE(encoder.SaveFile(name).ok());
    EXPECT_FALSE(QFile::exists(name));

    ASSERT_TRUE(encoder.SetComment(QString()).ok());
    EXPECT_FALSE(encoder.SaveFile(dir.filePath(QStringLiteral("missing/page.jpg"))).ok());
    // An existing file is replaced.
    QFile old(name);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'z'));
    old.close();
    ASSERT_TRUE(encoder.SaveFile(name).ok());
    QFile back(name);
    ASSERT_TRUE(back.open(QIODevice::ReadOnly));
    EXPECT_TRUE(jpegtest::readJpeg(back.readAll()).valid);
}

TEST(JpegEncoder, TransparencyIsLaidOnWhiteAndSizesStretch)
{
    QImage clear(40, 20, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    JpegEncoder encoder;
    encoder.SampleImage(clear, QSize(80, 30));
    Result<QByteArray> bytes = encoder.encode();
    ASSERT_TRUE(bytes.ok());
    const QImage decoded = QImage::fromData(*bytes, "JPEG");
    ASSERT_EQ(decoded.size(), QSize(80, 30));
    EXPECT_GE(qGray(decoded.pixel(40, 15)), 250);
}
