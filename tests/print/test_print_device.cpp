// The printer device and the record drawing routines, looked at in the pixels of the sheets they
// make and in the PDF files they write.

#include "print/ImageTarget.h"
#include "print/PdfTarget.h"
#include "print/Printer.h"
#include "print/RecordPrinter.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace ff;
using namespace ff::print;

namespace {

constexpr int32_t kBlue = 0xFF0000; // colour longs are 0x00BBGGRR
constexpr int32_t kRed = 0x0000FF;

// The box around the pixels that are not white, in pixels.
QRect inkBox(const QImage &image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFFu) != 0xFFFFFFu)
                box = box.united(QRect(x, y, 1, 1));
    return box;
}

// The rows of pixels that hold ink, counted as bands separated by blank rows.
int inkBands(const QImage &image)
{
    int bands = 0;
    bool inside = false;
    for (int y = 0; y < image.height(); ++y) {
        bool ink = false;
        for (int x = 0; x < image.width() && !ink; ++x)
            ink = (image.pixel(x, y) & 0xFFFFFFu) != 0xFFFFFFu;
        if (ink && !inside)
            ++bands;
        inside = ink;
    }
    return bands;
}

// Pages of a PDF file counted from its page objects, without the code that wrote it.
int pdfPages(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QString text = QString::fromLatin1(f.readAll());
    return int(text.count(QRegularExpression(QStringLiteral("/Type\\s*/Page(?![s\\w])"))));
}

} // namespace

TEST(PrinterGeometry, TwipsLandWhereTheyBelongAtAnyResolutionAndZoom)
{
    struct Case {
        double dpi;
        int zoom;
        QRect pixels; // a filled box from (1440, 720) to (2880, 1440) twips
    };
    for (const Case &c : std::vector<Case>{{96, 100, QRect(96, 48, 96, 48)}, {48, 100, QRect(48, 24, 48, 24)},
                                           {96, 50, QRect(48, 24, 48, 24)}, {192, 100, QRect(192, 96, 192, 96)}}) {
        ImageTarget target(QSizeF(5760, 2880), c.dpi);
        Printer printer(target);
        printer.setZoom(c.zoom);
        EXPECT_DOUBLE_EQ(printer.TwipsPerPixelX(), 1440.0 / c.dpi);
        EXPECT_DOUBLE_EQ(printer.ScaleWidth(), 5760);
        printer.Line(1440, 720, 2880, 1440, 0, LineKind::FilledBox);
        ASSERT_TRUE(printer.EndDoc().ok());
        ASSERT_EQ(target.pages().size(), 1u);
        EXPECT_EQ(inkBox(target.pages()[0]), c.pixels) << c.dpi << " dpi, zoom " << c.zoom;
    }
}

TEST(PrinterText, PrintPlacesTextAtTheCurrentPositionAndMovesIt)
{
    ImageTarget target(QSizeF(8640, 2880), 96);
    Printer printer(target);
    printer.setFont(QStringLiteral("DejaVu Sans"), 12, false, false, false);
    const double width = printer.TextWidth(QStringLiteral("Hello")), height = printer.TextHeight();
    // 12 points are 240 twips; a line is a little higher than the size, a word of five a few sizes wide.
    EXPECT_GT(height, 240);
    EXPECT_LT(height, 360);
    EXPECT_GT(width, 2 * 240);
    EXPECT_LT(width, 5 * 240);
    printer.setCurrentX(1440);
    printer.setCurrentY(720);
    printer.Print(QStringLiteral("Hello"), false);
    EXPECT_NEAR(printer.CurrentX(), 1440 + width, 0.01);
    EXPECT_DOUBLE_EQ(printer.CurrentY(), 720);
    printer.Print(QString());
    EXPECT_DOUBLE_EQ(printer.CurrentX(), 0);
    EXPECT_NEAR(printer.CurrentY(), 720 + height, 0.01);
    ASSERT_TRUE(printer.EndDoc().ok());
    const QRect ink = inkBox(target.pages()[0]);
    // The ink starts at the position (a pixel of side bearing allowed) and stays in the text's box.
    EXPECT_NEAR(ink.left(), 96, 2);
    EXPECT_LE(ink.right(), int((1440 + width) / 15) + 1);
    EXPECT_GE(ink.top(), 48);
    EXPECT_LE(ink.bottom(), int((720 + height) / 15) + 1);
}

TEST(PrinterDocument, SheetsStartWithOutputAndAKilledJobLeavesNoFile)
{
    QTemporaryDir dir;
    struct Case {
        int sheetsDrawn;
        bool kill;
    };
    for (const Case &c : std::vector<Case>{{1, false}, {3, false}, {2, true}}) {
        const QString path = dir.filePath(QStringLiteral("job%1.pdf").arg(c.sheetsDrawn));
        PdfTarget target(path);
        {
            Printer printer(target);
            for (int i = 0; i < c.sheetsDrawn; ++i) {
                printer.Print(QStringLiteral("sheet %1").arg(i + 1));
                ASSERT_TRUE(printer.NewPage().ok()); // the last NewPage opens no blank sheet
            }
            if (c.kill)
                printer.KillDoc();
            else
                ASSERT_TRUE(printer.EndDoc().ok());
        }
        EXPECT_EQ(QFile::exists(path), !c.kill);
        if (!c.kill) {
            EXPECT_EQ(pdfPages(path), c.sheetsDrawn);
        }
    }
}

TEST(MaskedPicture, PureGreenIsTransparentOnPicturesAndInPdf)
{
    // A 12 by 12 picture: green with a red middle, printed over a blue box.
    QImage picture(12, 12, QImage::Format_RGB32);
    picture.fill(QColor(0, 255, 0));
    for (int y = 3; y < 9; ++y)
        for (int x = 3; x < 9; ++x)
            picture.setPixel(x, y, qRgb(255, 0, 0));
    const Design design;
    RecordPrinter drawing(design, QString());
    const auto draw = [&](Printer &printer) {
        printer.Line(0, 0, 1440, 1440, kBlue, LineKind::FilledBox);
        drawing.PrintMaskedPicture(printer, 300, 300, picture);
    };
    const auto check = [](const QImage &sheet, double pixelsPerTwip) {
        const auto at = [&](double twipsX, double twipsY) { return QColor(sheet.pixel(int(twipsX * pixelsPerTwip), int(twipsY * pixelsPerTwip))); };
        // The picture is 180 twips wide (12 pixels of 15): green around, red in the middle.
        EXPECT_GT(at(310, 310).blue(), 200) << "green must let the blue through";
        EXPECT_LT(at(310, 310).green(), 60);
        EXPECT_GT(at(390, 390).red(), 200);
        EXPECT_LT(at(390, 390).blue(), 60);
    };

    ImageTarget raster(QSizeF(1440, 1440), 96 * 4);
    {
        Printer printer(raster);
        draw(printer);
        ASSERT_TRUE(printer.EndDoc().ok());
    }
    check(raster.pages()[0], 4 * 96 / 1440.0);

    const QString pdftoppm = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
    if (pdftoppm.isEmpty())
        GTEST_SKIP() << "pdftoppm is not installed: the PDF cannot be looked at";
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("masked.pdf"));
    PdfTarget target(pdf, QPageSize(QSizeF(72, 72), QPageSize::Point));
    {
        Printer printer(target);
        draw(printer);
        ASSERT_TRUE(printer.EndDoc().ok());
    }
    ASSERT_EQ(QProcess::execute(pdftoppm, {QStringLiteral("-r"), QStringLiteral("384"), QStringLiteral("-png"), QStringLiteral("-singlefile"),
                                           pdf, dir.filePath(QStringLiteral("masked"))}),
              0);
    check(QImage(dir.filePath(QStringLiteral("masked.png"))), 384 / 1440.0);
}

TEST(RecordDrawing, NotesStopAtTheirBoxAndLabelsBreakAtInnerReturns)
{
    const Design design;
    RecordPrinter drawing(design, QString());
    struct Case {
        QString text;
        double height; // of the box, in lines of text
        int bands;     // lines printed
    };
    // Twelve words of one width; a line holds three of them.
    const QString words = QStringLiteral("aaaa aaaa aaaa aaaa aaaa aaaa aaaa aaaa aaaa aaaa aaaa aaaa");
    for (const Case &c : std::vector<Case>{{words, 10, 4}, {words, 2.5, 2}, {QStringLiteral("a\r\nb\r\nc"), 10, 3},
                                           {QStringLiteral("a\r\nb\r\nc"), 1.5, 1}}) {
        ImageTarget target(QSizeF(4320, 4320), 96);
        Printer printer(target);
        printer.setFont(QStringLiteral("DejaVu Sans"), 10, false, false, false);
        const double line = printer.TextHeight();
        QString text = c.text;
        drawing.PrintWrappedText(printer, text, 100, 100, printer.TextWidth(QStringLiteral("aaaa aaaa aaaa a")), line * c.height);
        ASSERT_TRUE(printer.EndDoc().ok());
        EXPECT_EQ(inkBands(target.pages()[0]), c.bands) << c.text.toStdString() << " in " << c.height << " lines";
    }
    for (const auto &[caption, bands] : std::vector<std::pair<QString, int>>{
             {QStringLiteral("first\rsecond\rthird"), 3}, {QStringLiteral("\rwhole"), 1}, {QStringLiteral("one line"), 1}}) {
        ImageTarget target(QSizeF(4320, 4320), 96);
        Printer printer(target);
        drawing.PrintLabel(printer, PrintedLabel{caption, QStringLiteral("DejaVu Sans"), 10, false, false, false, 0, 100, 100, 3000, 0});
        ASSERT_TRUE(printer.EndDoc().ok());
        EXPECT_EQ(inkBands(target.pages()[0]), bands) << caption.toStdString();
    }
}

TEST(RecordDrawing, ElementsBelowTheSheetAreLeftOutAndEveryPageNumberPrintsEverywhere)
{
    Design design;
    design.PageCount = 1;
    design.Fields.resize(2);
    design.FieldCount = 1;
    design.Notes.resize(1);
    design.Combos.resize(1);
    design.Titles.resize(6);
    ShapeElement onEvery;
    onEvery.ShapePage = -1; // 65535: every page
    onEvery.ShapePrint = 1;
    onEvery.Left = 100;
    onEvery.Top = 100;
    onEvery.Width = 300;
    onEvery.Height = 300;
    onEvery.BackColor = kRed;
    onEvery.FillStyle = 1;
    ShapeElement below = onEvery;
    below.ShapePage = 0;
    below.Top = 5000; // past the sheet
    ShapeElement unprinted = onEvery;
    unprinted.ShapePrint = 0;
    unprinted.Left = 1000;
    design.Shapes = {onEvery, below, unprinted};
    Page page(design);
    RecordPrinter drawing(design, QString());
    drawing.setPageRange(0, 1);
    ImageTarget target(QSizeF(2880, 2880), 96);
    Printer printer(target);
    drawing.PrintRecordPages(printer, page);
    ASSERT_TRUE(printer.EndDoc().ok());
    ASSERT_EQ(target.pages().size(), 2u);
    // The box of 300 twips (20 pixels) at 100 twips on both sheets, and nothing else.
    for (const QImage &sheet : target.pages()) {
        const QRect ink = inkBox(sheet);
        EXPECT_TRUE(QRect(5, 5, 23, 23).contains(ink)) << ink.x() << "," << ink.y() << " " << ink.width() << "x" << ink.height();
        EXPECT_GE(ink.width(), 18);
    }
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

TEST(RecordDrawing, ARecordPictureKeptByItsNumberPrintsFromItsFile)
{
    // The record keeps eight characters of a picture's name: a numbered picture is kept as its
    // number ("0000001") while the file is "0000001.jpg"; another kind keeps its extension.
    QTemporaryDir dir;
    QImage red(16, 16, QImage::Format_RGB32);
    red.fill(QColor(255, 0, 0));
    ASSERT_TRUE(red.save(dir.filePath(QStringLiteral("0000001.jpg")), "JPEG", 95));
    QImage blue(16, 16, QImage::Format_RGB32);
    blue.fill(QColor(0, 0, 255));
    ASSERT_TRUE(blue.save(dir.filePath(QStringLiteral("0002.png"))));

    Design design;
    design.PageCount = 1;
    design.Fields.resize(1);
    design.Notes.resize(1);
    design.Combos.resize(1);
    design.Titles.resize(6);
    PictureElement field;
    field.Stretch = true;
    field.PicturePrint = 1;
    field.Left = 0;
    field.Top = 0;
    field.Width = 720;
    field.Height = 720;
    PictureElement second = field;
    second.Left = 1440;
    design.Pictures = {field, second};
    design.PictureCount = 1;
    Page page(design);
    page.PictureRecordName[0] = QStringLiteral("0000001");
    page.PictureRecordName[1] = QStringLiteral("0002.png");
    RecordPrinter drawing(design, QString());
    drawing.setRecordPictureFolder(dir.path() + QLatin1Char('/'));
    ImageTarget target(QSizeF(2880, 1440), 96);
    Printer printer(target);
    drawing.PrintRecordPages(printer, page);
    ASSERT_TRUE(printer.EndDoc().ok());
    ASSERT_GE(target.pages().size(), 1u);
    const QImage &sheet = target.pages()[0];
    const QColor first(sheet.pixel(24, 24)), other(sheet.pixel(96 + 24, 24)); // the boxes' middles
    EXPECT_GT(first.red(), 200) << "the JPEG of picture 0000001";
    EXPECT_LT(first.blue(), 60);
    EXPECT_GT(other.blue(), 200) << "0002.png as kept";
}
