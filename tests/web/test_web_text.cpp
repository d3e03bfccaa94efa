// The texts and pictures of the web pages: escaping, colours, the GIF files a browser reads, the
// check picture pairs, text fitted to a width, and names inside the PHP scripts.

#include "web/FileWriter.h"
#include "web/GifWriter.h"
#include "web/HtmlText.h"
#include "web/PagePictures.h"
#include "web/PhpSiteWriter.h"
#include "web/RecordPageWriter.h"
#include "web/TextWidths.h"

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace ff::web;

TEST(HtmlText, EscapesInOrderAndLineEndsBecomeBreaks)
{
    const struct {
        const char *in, *out;
    } cases[] = {
        {"a&b", "a&amp;b"},
        {"<script>alert(\"x\")</script>", "&lt;script&gt;alert(&quot;x&quot;)&lt;/script&gt;"},
        {"&lt;", "&amp;lt;"}, // "&" first: an entity in a value stays text
        {"one\r\ntwo", "one<br>two"},
        {"one\ntwo", "one\ntwo"}, // only the CR LF pair is a line end
        {"plain", "plain"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(HtmlText::HtmlEscape(QString::fromUtf8(c.in)), QString::fromUtf8(c.out)) << c.in;
}

TEST(HtmlText, ColoursAreWrittenRedGreenBlue)
{
    const struct {
        int32_t colour;
        const char *hex;
    } cases[] = {
        {0x0000FF, "#FF0000"}, {0x00FF00, "#00FF00"}, {0xFF0000, "#0000FF"}, {0x123456, "#563412"},
        {0, "#000000"},        {int32_t(0x80000005), "#FFFFFF"}, // the window's background
        {int32_t(0x80000008), "#000000"},                         // the window's text
        {int32_t(0x8000000F), "#D4D0C8"},                         // a button's face
    };
    for (const auto &c : cases)
        EXPECT_EQ(HtmlText::ColorToHex(c.colour), QLatin1String(c.hex)) << std::hex << c.colour;
}

TEST(HtmlText, CharsetsAndUnits)
{
    EXPECT_EQ(HtmlText::CharsetName(238), QStringLiteral("Windows-1250"));
    EXPECT_EQ(HtmlText::CharsetName(128), QStringLiteral("shift_jis"));
    EXPECT_TRUE(HtmlText::CharsetName(0).isEmpty());
    EXPECT_TRUE(HtmlText::CharsetName(255).isEmpty());
    EXPECT_EQ(HtmlText::px(1500), 100);
    EXPECT_EQ(HtmlText::px(1507), 100);
    EXPECT_EQ(HtmlText::px(1508), 101);
    EXPECT_EQ(HtmlText::fontPx(9), QStringLiteral("12"));
    EXPECT_EQ(HtmlText::fontPx(8).toDouble(), 8 * 96.0 / 72.0);
    const QString script = HtmlText::CentreScript(720);
    EXPECT_TRUE(script.contains(QStringLiteral("Math.floor( window_width - 720) / 2 )")));
    EXPECT_TRUE(script.endsWith(QStringLiteral("</Script>\r\n")));
}

namespace {

void expectSamePixels(const QImage &a, const QImage &b)
{
    ASSERT_EQ(a.size(), b.size());
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            ASSERT_EQ(a.pixel(x, y) | 0xFF000000u, b.pixel(x, y) | 0xFF000000u) << x << "," << y;
}

} // namespace

TEST(GifWriter, ReadersGetBackEveryPixel)
{
    // Sizes around the table restarts (every 250 pixels) and sub-blocks (255 bytes).
    QRandomGenerator random(7);
    const QRgb palette[] = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(200, 10, 10), qRgb(10, 200, 10), qRgb(1, 2, 3)};
    for (const QSize size : {QSize(1, 1), QSize(13, 13), QSize(250, 1), QSize(251, 1), QSize(66, 20), QSize(97, 53)}) {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, palette[random.bounded(5)]);
        const QByteArray gif = GifWriter::encode(image);
        ASSERT_TRUE(gif.startsWith("GIF89a"));
        ASSERT_TRUE(gif.endsWith(';'));
        const QImage back = QImage::fromData(gif, "GIF");
        ASSERT_FALSE(back.isNull()) << size.width() << "x" << size.height();
        expectSamePixels(back.convertToFormat(QImage::Format_RGB32), image);
    }
}

TEST(PagePictures, CheckPairsAndPictures)
{
    const struct {
        int style, off, on;
    } pairs[] = {{0, 100, 101}, {3, 100, 101}, {4, 102, 103}, {5, 102, 104}, {6, 102, 105}, {7, 102, 106},
                 {9, 102, 107}, {10, 102, 108}, {12, 102, 108}, {13, 109, 110}, {15, 109, 110}, {16, 111, 112},
                 {20, 111, 112}, {21, 113, 112}, {99, 113, 112}};
    for (const auto &p : pairs)
        EXPECT_EQ(PagePictures::checkPair(p.style), std::make_pair(p.off, p.on)) << p.style;

    QList<QImage> seen;
    for (int n = PagePictures::FirstCheck; n <= PagePictures::LastCheck; ++n) {
        const QImage image = QImage::fromData(PagePictures::checkPicture(n), "GIF");
        ASSERT_EQ(image.size(), QSize(PagePictures::CheckSize, PagePictures::CheckSize)) << n;
        for (const QImage &other : seen)
            EXPECT_NE(image, other) << "picture " << n << " looks like an earlier one";
        seen << image;
    }
    EXPECT_TRUE(PagePictures::checkPicture(99).isEmpty());
    EXPECT_TRUE(PagePictures::checkPicture(114).isEmpty());
    const QImage plain = QImage::fromData(PagePictures::tabPicture(false), "GIF");
    const QImage shown = QImage::fromData(PagePictures::tabPicture(true), "GIF");
    EXPECT_EQ(plain.size(), QSize(PagePictures::TabWidth, PagePictures::TabHeight));
    EXPECT_NE(plain, shown);
}

TEST(TextWidths, CharactersSideBySideAndTheLastThatFits)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(9);
    const QImage device(1, 1, QImage::Format_RGB32);
    const TextWidths m(font, &device);
    // A text is as wide as its characters side by side, each measured on its own.
    const QString text = QStringLiteral("Moreau Optics and Lenses, Paris \u00e9\u4e2d\U0001F600");
    double sum = 0;
    for (const uint c : text.toUcs4())
        sum += m.width(QString::fromUcs4(reinterpret_cast<const char32_t *>(&c), 1));
    EXPECT_NEAR(m.width(text), sum, 1e-9);
    EXPECT_GT(m.width(QStringLiteral("W")), m.width(QStringLiteral("i")));
    const double full = m.width(text);
    for (const double width : {0.0, 1.0, full / 3, full / 2, full - 0.5, full, full + 10}) {
        const QString fitted = m.fit(text, width);
        EXPECT_TRUE(text.startsWith(fitted));
        EXPECT_LE(m.width(fitted), width) << width;
        EXPECT_FALSE(fitted.endsWith(QChar(0xD83D))) << width; // never half a character
        if (fitted.size() < text.size()) { // one character more would not fit
            const qsizetype next = text[fitted.size()].isHighSurrogate() ? 2 : 1;
            EXPECT_GT(m.width(text.left(fitted.size() + next)), width) << width;
        }
    }
    EXPECT_EQ(m.fit(text, full), text);
}

// Files are written in the order handed over; after one that cannot be written, none is, and the
// error comes back from the next hand-over or from finish().
TEST(FileWriter, WritesInOrderAndStopsAtTheFirstFailure)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    {
        FileWriter files(2);
        for (int i = 0; i < 50; ++i)
            ASSERT_TRUE(files.write(dir.filePath(QStringLiteral("%1.htm").arg(i)), QByteArray(i, 'x')));
        ASSERT_TRUE(files.finish());
    }
    for (int i = 0; i < 50; ++i) {
        QFile f(dir.filePath(QStringLiteral("%1.htm").arg(i)));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << i;
        EXPECT_EQ(f.readAll(), QByteArray(i, 'x'));
    }

    FileWriter files(2);
    EXPECT_TRUE(files.write(dir.filePath(QStringLiteral("a.htm")), "a"));
    EXPECT_TRUE(files.write(dir.filePath(QStringLiteral("no/such/folder/b.htm")), "b"));
    bool refused = false;
    for (int i = 0; i < 20 && !refused; ++i)
        refused = !files.write(dir.filePath(QStringLiteral("after%1.htm").arg(i)), "c");
    const ff::Status end = files.finish();
    ASSERT_FALSE(end);
    EXPECT_TRUE(end.error().text.contains(QLatin1String("b.htm"))) << end.error().text.toStdString();
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("a.htm"))));
    EXPECT_TRUE(QDir(dir.path()).entryList({QStringLiteral("after*")}).isEmpty());
}

TEST(PhpSiteWriter, NamesStayInsideTheirStrings)
{
    EXPECT_EQ(PhpSiteWriter::phpDoubleQuoted(QStringLiteral("a\"b$c\\d")), QStringLiteral("a\\\"b\\$c\\\\d"));
    EXPECT_EQ(PhpSiteWriter::postedKey(QStringLiteral(" first name.x[1")), QStringLiteral("first_name_x_1"));

    ff::Design d;
    d.FieldSeparator = QStringLiteral(";");
    d.TextExtension = QStringLiteral("txt");
    d.Fields.resize(4);
    d.Fields[1].Tag = QStringLiteral("name");
    d.Fields[2].Tag = QStringLiteral("hidden");
    d.Fields[2].FieldPage = -1; // on every page: not posted
    d.Fields[3].Tag = QStringLiteral("say \"$x\"");
    d.Notes.resize(2);
    d.Notes[1].Tag = QStringLiteral("memo");
    d.Checks.resize(1);
    d.Checks[0].Tag = QStringLiteral("paid");
    EXPECT_EQ(PhpSiteWriter::headRow(d), QStringLiteral("name;say \"$x\";memo;paid"));
    const QString script = PhpSiteWriter::postingScript(d, QStringLiteral("site"));
    EXPECT_TRUE(script.startsWith(QStringLiteral("<?php\r\n\r\n$SubData = str_replace(Chr(34),Chr(34).Chr(34),$_POST[\"name\"]).\";\".")));
    EXPECT_TRUE(script.contains(QStringLiteral("$_POST[\"say_\\\"\\$x\\\"\"]")));
    EXPECT_TRUE(script.contains(QStringLiteral("Chr(34).str_replace(Chr(34),Chr(34).Chr(34),$_POST[\"memo\"]).Chr(34).\";\".$_POST[\"paid\"];\r\n\r\n")));
    EXPECT_TRUE(script.contains(QStringLiteral("fopen(\"site.txt\",\"a\")")));
    EXPECT_TRUE(script.endsWith(QStringLiteral("fclose($fp);\r\n\r\necho \"Information has been posted\";\r\n?>\r\n")));
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
