#include "print/RecordPrinter.h"

#include "design/RecordPictureFile.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace ff::print {

namespace {

constexpr double kScreenTwips = 15; // twips of one screen pixel: the pictures of the page box

// A page number of the page tables: 65535 (read as -1) stands on every page.
bool pageMatches(int elementPage, int page)
{
    return elementPage == page || elementPage == -1 || elementPage == 65535;
}

double alignedX(const Printer &printer, double left, double width, int alignment, const QString &text)
{
    switch (alignment) {
    case 1: return left + width - printer.TextWidth(text);
    case 2: return left + (width - printer.TextWidth(text)) / 2;
    default: return left;
    }
}

} // namespace

RecordPrinter::RecordPrinter(const Design &design, QString pictureFolder, QString flowImageFolder)
    : design_(design), pictureFolder_(std::move(pictureFolder)), flowImageFolder_(std::move(flowImageFolder))
{
    PrintPageTo = design.PageCount;
}

bool RecordPrinter::onSheet(int elementPage, int printFlag) const
{
    return printFlag == 1 && pageMatches(elementPage, CurrentPrintPage);
}

const QImage &RecordPrinter::designPicture(const QString &fileName) const
{
    auto it = pictures_.find(fileName);
    if (it == pictures_.end()) {
        QImage image;
        if (!fileName.isEmpty())
            image.load(fileName);
        it = pictures_.insert(fileName, image);
    }
    return *it;
}

QImage RecordPrinter::checkPicture(bool optionBox, bool checked)
{
    QImage image(13, 13, QImage::Format_RGB32);
    image.fill(QColor(0, 255, 0));
    QPainter p(&image);
    p.setPen(QColor(0x40, 0x40, 0x40));
    p.setBrush(Qt::white);
    if (optionBox) {
        p.setRenderHint(QPainter::Antialiasing, false);
        p.drawEllipse(QRect(0, 0, 12, 12));
        if (checked) {
            p.setBrush(Qt::black);
            p.setPen(Qt::black);
            p.drawEllipse(QRect(4, 4, 4, 4));
        }
    } else {
        p.drawRect(QRect(0, 0, 12, 12));
        if (checked) {
            p.setPen(QPen(Qt::black, 2));
            p.drawLine(QPoint(3, 6), QPoint(5, 9));
            p.drawLine(QPoint(5, 9), QPoint(10, 3));
        }
    }
    return image;
}

QImage RecordPrinter::backgroundPicture(int page) const
{
    if (design_.BackgroundPicture.isEmpty() || design_.TileMode < 0 || design_.TileMode > 2)
        return {};
    const QImage tile(QDir(pictureFolder_).filePath(design_.BackgroundPicture));
    if (tile.isNull())
        return {};
    const int w = qMax(1, int(std::lround(design_.PageWidth / kScreenTwips)));
    const int h = qMax(1, int(std::lround(design_.PageHeight / kScreenTwips)));
    QImage image(w, h, QImage::Format_RGB32);
    int32_t back = design_.PageBackColor[size_t(qBound(0, page, 4))];
    if (back == 0 && page != 0)
        back = design_.PageBackColor[0];
    image.fill(Printer::colorOf(back));
    QPainter p(&image);
    // Tiled from the top left corner as the page box paints it: 0 everywhere, 1 down the left edge,
    // 2 along the top edge.
    const int maxX = design_.TileMode == 1 ? 1 : w, maxY = design_.TileMode == 2 ? 1 : h;
    for (int y = 0; y < maxY; y += tile.height())
        for (int x = 0; x < maxX; x += tile.width())
            p.drawImage(x, y, tile);
    return image;
}

void RecordPrinter::PrintRecordPages(Printer &printer, Page &page)
{
    printer.setDrawMode(13);
    PrintTopOffset = int(std::lround((printer.Height() - printer.ScaleHeight()) / 2));
    const int savedPage = CurrentPrintPage;
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();

    for (CurrentPrintPage = PrintPageFrom; CurrentPrintPage <= PrintPageTo; ++CurrentPrintPage) {
        printer.Print(); // a sheet exists from here on
        printer.setCurrentX(0);
        printer.setCurrentY(0);

        // Background: cut at the sheet in portrait, whole in landscape.
        const QImage background = backgroundPicture(CurrentPrintPage);
        if (!background.isNull()) {
            if (printer.Orientation() == 1)
                printer.PaintPicture(background, 0, 0, -1, -1, QRectF(0, 0, printer.ScaleWidth(), printer.ScaleHeight()));
            else
                printer.PaintPicture(background, 0, 0);
        }

        for (const ShapeElement &s : design_.Shapes) {
            if (!onSheet(s.ShapePage, s.ShapePrint))
                continue;
            double x = 0, y = 0;
            PrintShape(printer, s, x, y);
        }

        printer.setFillStyle(1);
        printer.setDrawWidth(1);
        for (const LineElement &l : design_.Lines) {
            if (!onSheet(l.LinePage, l.LinePrint))
                continue;
            if (l.Y1 - PrintTopOffset < printer.ScaleHeight())
                printer.Line(l.X1, l.Y1 - PrintTopOffset, l.X2, l.Y2 - PrintTopOffset, l.BorderColor);
        }

        for (size_t i = 0; i < design_.Pictures.size(); ++i) {
            const PictureElement &p = design_.Pictures[i];
            if (!onSheet(p.PicturePage, p.PicturePrint))
                continue;
            // The horizontal position against the vertical limit, as it always was.
            if (!(p.Left / tppX < printer.ScaleHeight()))
                continue;
            QImage picture;
            double width = p.Width, height = p.Height;
            if (p.Stretch) {
                const QString name = page.PictureRecordName.value(qsizetype(i)).trimmed();
                if (const QString file = RecordPictureFile(recordPictureFolder_, name); !file.isEmpty())
                    picture.load(file);
            } else if (!p.FileName.isEmpty()) {
                picture = designPicture(QDir(pictureFolder_).filePath(p.FileName));
                if (!picture.isNull()) { // the box takes the picture's own size, as on screen
                    width = picture.width() * kScreenTwips;
                    height = picture.height() * kScreenTwips;
                }
            }
            if (!picture.isNull())
                RenderPicture(printer, picture, p.Left / tppX, (p.Top - PrintTopOffset) / tppY, width / tppX, height / tppY);
        }

        if (page.TitleCaption.size() > 1)
            page.setTitleCaption(1, QString());
        printer.setFontTransparent(true);
        printer.setCharset(design_.FontCharset);

        for (size_t i = 2; i < design_.Titles.size(); ++i) {
            const TitleElement &t = design_.Titles[i];
            if (!t.present || !onSheet(t.TitlePage, t.TitlePrint))
                continue;
            PrintedLabel label{qsizetype(i) < page.TitleCaption.size() ? page.TitleCaption[qsizetype(i)] : t.Caption,
                               t.FontName.isEmpty() ? design_.AppFontName : t.FontName, t.FontSize, t.FontBold,
                               t.FontItalic, t.FontUnderline, t.ForeColor, t.Left, t.Top, 0, t.Alignment};
            printer.setFont(label.FontName, label.FontSize, label.FontBold, label.FontItalic, label.FontUnderline);
            label.Width = printer.TextWidth(label.Caption); // a page label sizes itself to its text
            PrintLabel(printer, label);
        }

        // The flow layer goes with the page on screen, not with the page being printed.
        for (const FlowImage &f : page.FlowImages) {
            if (f.page != ShownPage || flowImageFolder_.isEmpty())
                continue;
            const QImage &picture = designPicture(QDir(flowImageFolder_).filePath(QString::number(f.FlowImageId) + QStringLiteral(".gif")));
            if (!picture.isNull())
                RenderPicture(printer, picture, f.left / tppX, (f.top - PrintTopOffset) / tppY, f.width / tppX, f.height / tppY);
        }
        for (const FlowLabel &f : page.FlowLabels) {
            if (f.page != ShownPage)
                continue;
            PrintedLabel label{f.text, design_.AppFontName, f.fontSize > 0 ? double(f.fontSize) : 8.0, f.style % 10 != 0,
                               (f.style / 10) % 10 != 0, (f.style / 100) % 10 != 0, f.color, double(f.left), double(f.top),
                               0, f.alignment};
            PrintLabel(printer, label);
        }

        printFields(printer, page);
        printCombos(printer, page);
        printNotes(printer, page);
        printChecks(printer, page);
        std::ignore = printer.NewPage(); // a printer fault skips the step, as every drawing step does
    }
    CurrentPrintPage = savedPage;
}

QString RecordPrinter::clipped(Printer &printer, const QString &text, double limit, bool keepOverflow, double reserve) const
{
    // One character at a time; the one that overflowed stays (text fields) or not (labels).
    QString out;
    for (const QChar c : text) {
        out += c;
        if (limit - reserve < printer.TextWidth(out)) {
            if (!keepOverflow)
                out.chop(1);
            break;
        }
    }
    return out;
}

void RecordPrinter::printFrame(Printer &printer, double left, double top, double width, double height, int32_t backColor,
                               const FrameStyle &frame) const
{
    // The frame's picture: the box in the element's colour with the frame 5 pixels out, as the page
    // box draws it.
    const double out = 5 * kScreenTwips;
    printer.setDrawStyle(0);
    printer.Line(left, top, left + width - printer.TwipsPerPixelX(), top + height - printer.TwipsPerPixelY(), backColor,
                 LineKind::FilledBox);
    const int savedFill = printer.FillStyle();
    printer.setFillStyle(1);
    printer.Line(left - out, top - out, left + width + out - kScreenTwips, top + height + out - kScreenTwips, frame.color,
                 LineKind::Box);
    printer.setFillStyle(savedFill);
}

void RecordPrinter::printFields(Printer &printer, const Page &page) const
{
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();
    for (size_t i = 1; i < design_.Fields.size(); ++i) {
        const FieldElement &f = design_.Fields[i];
        if (!onSheet(f.FieldPage, f.FieldPrint))
            continue;
        printer.setFillColor(f.BackColor);
        printer.setFillStyle(0);
        int margin = static_cast<int16_t>(2 * tppX);
        if (f.FieldBox) {
            if (f.Top < printer.ScaleHeight()) {
                if (f.Frame.fill == 0)
                    margin = 0;
                printFrame(printer, f.Left, f.Top - PrintTopOffset, f.Width, f.Height, f.BackColor, f.Frame);
            }
        } else if (f.Top < printer.ScaleHeight()) {
            printer.setDrawStyle(0);
            printer.Line(f.Left, f.Top - PrintTopOffset, f.Left + f.Width - tppX, f.Top - PrintTopOffset + f.Height - tppY,
                         f.BackColor, LineKind::FilledBox);
        }
        printer.setForeColor(f.ForeColor);
        printer.setFontBold(f.FontBold);
        printer.setFontItalic(f.FontItalic);
        printer.setFontUnderline(false);
        printer.setCharset(design_.FontCharset);
        printer.setFontSize(f.FontSize - 0.5);
        printer.setFontName(f.FontName.isEmpty() ? design_.AppFontName : f.FontName);
        printer.setFontSize(f.FontSize - 0.5);

        const QString text = page.FieldText.value(qsizetype(i));
        QString shown = clipped(printer, text, f.Width, true, printer.TextWidth(QStringLiteral("W")));
        const double printY = f.Top + margin - PrintTopOffset;
        if (!(printY + f.Height < printer.ScaleHeight()))
            continue;
        printer.setCurrentY(printY);
        printer.setCurrentX(alignedX(printer, f.Left, f.Width, f.Alignment, shown));
        // Kept as it always was: the two comparisons cannot both hold, so zeros are printed.
        const QString zero2 = QStringLiteral("0") + decimalSeparator_ + QStringLiteral("00");
        if (design_.ShowZeros == 0 && text == QStringLiteral("0") && text == zero2)
            shown.clear();
        printer.Print(shown, false);
    }
}

void RecordPrinter::printCombos(Printer &printer, const Page &page) const
{
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();
    for (size_t i = 1; i < design_.Combos.size(); ++i) {
        const ComboElement &c = design_.Combos[i];
        if (!onSheet(int(c.ComboPage), c.ComboPrint))
            continue;
        printer.setFillColor(c.BackColor);
        printer.setFillStyle(0);
        printer.setDrawStyle(0);
        printer.setFont(c.FontName.isEmpty() ? design_.AppFontName : c.FontName, c.FontSize - 0.5, c.FontBold, c.FontItalic,
                        false);
        // A combo is as high as its text with its frame, as the drop-down list box shows it.
        const double height = printer.TextHeight() + 8 * kScreenTwips;
        if (c.Top < printer.ScaleHeight()) {
            if (c.Frame.fill == 0)
                printer.Line(c.Left, c.Top - PrintTopOffset, c.Left + c.Width, c.Top - PrintTopOffset + height, c.BackColor,
                             LineKind::FilledBox);
            else
                printFrame(printer, c.Left, c.Top - PrintTopOffset, c.Width, height, c.BackColor, c.Frame);
        }
        const double printY = c.Top + 3 * tppY - PrintTopOffset;
        if (!(printY + height < printer.ScaleHeight()))
            continue;
        printer.setCurrentY(printY);
        printer.setCurrentX(c.Left + 3 * tppX);
        printer.setForeColor(c.ForeColor);
        printer.setCharset(design_.FontCharset);
        const QString shown = clipped(printer, page.ComboText.value(qsizetype(i)), c.Width, true, 0);
        if (printer.CurrentY() < printer.ScaleHeight())
            printer.Print(shown, false);
    }
}

void RecordPrinter::printNotes(Printer &printer, const Page &page) const
{
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();
    for (size_t i = 1; i < design_.Notes.size(); ++i) {
        const NoteElement &n = design_.Notes[i];
        if (!onSheet(n.NotePage, n.NotePrint))
            continue;
        printer.setFillColor(n.BackColor);
        printer.setFillStyle(0);
        if (n.Top < printer.ScaleHeight()) {
            if (n.NoteBox) {
                printFrame(printer, n.Left, n.Top - PrintTopOffset, n.Width, n.Height, n.BackColor, n.Frame);
            } else {
                printer.setDrawStyle(0);
                printer.Line(n.Left, n.Top - PrintTopOffset, n.Left + n.Width - tppX, n.Top - PrintTopOffset + n.Height - tppY,
                             n.BackColor, LineKind::FilledBox);
            }
        }
        if (n.Top - PrintTopOffset > printer.ScaleHeight())
            continue;
        printer.setForeColor(n.ForeColor);
        printer.setFont(n.FontName.isEmpty() ? design_.AppFontName : n.FontName, n.FontSize - 0.5, n.FontBold, n.FontItalic,
                        false);
        printer.setCharset(design_.FontCharset);
        QString text = page.NoteText.value(qsizetype(i));
        PrintWrappedText(printer, text, n.Left, n.Top - PrintTopOffset, n.Width, n.Height);
    }
}

void RecordPrinter::printChecks(Printer &printer, const Page &page) const
{
    for (size_t i = 0; i < design_.Checks.size(); ++i) {
        const CheckElement &c = design_.Checks[i];
        if (!onSheet(c.CheckPage, c.CheckPrint))
            continue;
        const QImage picture = checkPicture(c.OptionBx == 1, page.CheckValue.value(qsizetype(i)) != 0);
        PrintMaskedPicture(printer, c.Left, c.Top - PrintTopOffset, picture);
    }
}

void RecordPrinter::PrintShape(Printer &printer, const ShapeElement &s, double &x, double &y) const
{
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();
    const double half = s.BorderWidth / 2.0;
    x = s.Left - half;
    y = (s.Top - PrintTopOffset) + half; // left goes out, top goes in: kept as it always was
    if (y > printer.ScaleHeight())
        return;
    printer.setDrawStyle(0);
    if (s.BorderWidth == 1) {
        switch (s.BorderStyle) {
        case 0: printer.setDrawStyle(5); break;
        case 1: printer.setDrawStyle(0); break;
        case 2: printer.setDrawStyle(1); break;
        case 3: printer.setDrawStyle(2); break;
        case 4: printer.setDrawStyle(3); break;
        default: break;
        }
    }
    printer.setDrawWidth(static_cast<int16_t>(s.BorderWidth * tppX * 2));

    // Twice: solid in the back colour, then the shape's own fill with the border colour.
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 0) {
            printer.setFillStyle(0);
            printer.setFillColor(s.BackColor);
        } else {
            printer.setFillStyle(s.FillStyle);
            printer.setFillColor(s.FillColor);
        }
        const int32_t colour = pass == 0 ? s.BackColor : s.BorderColor;
        switch (s.Shape) {
        case 2:
        case 3:
            printer.Circle(x + (s.Width + tppX) / 2, y + (s.Height + tppX) / 2, s.Height / 2, colour, 0, 0,
                           (s.Height + s.BorderWidth) / (s.Width + s.BorderWidth));
            break;
        case 4:
        case 5:
            printer.setForeColor(colour);
            printer.RoundRect((x + half) / tppX, (y + half) / tppY, (x + s.Width + half) / tppX,
                              (y + s.Height + half) / tppY, 360 / tppX, 360 / tppY);
            break;
        default:
            printer.Line(s.Left, s.Top - PrintTopOffset, s.Left + s.Width - tppX, s.Top - PrintTopOffset + s.Height - tppY,
                         colour, pass == 0 ? LineKind::FilledBox : LineKind::Box);
        }
    }
}

void RecordPrinter::PrintLabel(Printer &printer, const PrintedLabel &label) const
{
    printer.setFontSize(label.FontSize);
    printer.setFontName(label.FontName);
    printer.setFontSize(label.FontSize);
    printer.setFontItalic(label.FontItalic);
    printer.setFontBold(label.FontBold);
    printer.setFontUnderline(label.FontUnderline);
    printer.setCharset(design_.FontCharset);
    const double printY = label.Top - PrintTopOffset;
    if (printY > printer.ScaleHeight())
        return;
    printer.setCurrentY(printY);
    printer.setForeColor(label.ForeColor);
    printer.setCurrentX(alignedX(printer, label.Left, label.Width, label.Alignment, label.Caption));
    const QString &caption = label.Caption;
    if (caption.indexOf(QLatin1Char('\r'), 1) < 1) {
        printer.Print(caption);
        return;
    }
    QString line;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const QChar c = caption[i];
        const bool last = i == caption.size() - 1;
        if (c == QLatin1Char('\n'))
            continue;
        if (c != QLatin1Char('\r'))
            line += c;
        if (c == QLatin1Char('\r') || last) {
            printer.setCurrentX(alignedX(printer, label.Left, label.Width, label.Alignment, line));
            printer.Print(line);
            line.clear();
        }
    }
}

void RecordPrinter::PrintWrappedText(Printer &printer, QString &text, double x, double y, double width, double height) const
{
    printer.setCurrentY(y);
    qsizetype index = 0, lastSpace = 0;
    const double lineHeight = printer.TextHeight(QStringLiteral("H"));
    while (index < text.size()) {
        ++index;
        printer.setCurrentX(x);
        if (text.mid(index - 1, 2) == QLatin1String("\r\n")) {
            printer.Print(text.left(index - 1));
            text = text.mid(index + 1);
            while (text.startsWith(QLatin1Char(' ')))
                text.remove(0, 1);
            lastSpace = 0;
            index = 0;
        } else if (text[index - 1] == QLatin1Char(' ')) {
            lastSpace = index;
        }
        if (index > 0 && printer.TextWidth(text.left(index)) > width) {
            if (lastSpace != 0)
                index = lastSpace;
            printer.Print(text.left(index - 1));
            text = text.mid(index - 1);
            while (text.startsWith(QLatin1Char(' ')))
                text.remove(0, 1);
            lastSpace = 0;
            index = 0;
        }
        if (printer.CurrentY() > y + height - lineHeight)
            return; // the box is full: the rest is not printed
    }
    if (!text.isEmpty()) {
        printer.setCurrentX(x);
        printer.Print(text);
    }
}

void RecordPrinter::RenderPicture(Printer &printer, const QImage &picture, double x, double y, double width, double height,
                                  bool centre, bool flipHorizontal, bool flipVertical)
{
    if (centre) {
        x -= width / 2;
        y -= height / 2;
    }
    if (flipVertical) {
        y += height;
        height = -height;
    }
    if (flipHorizontal) {
        x += width;
        width = -width;
    }
    printer.drawPixels(picture, QRectF(x, y, width, height), QRectF(0, 0, picture.width(), picture.height()));
}

void RecordPrinter::PrintMaskedPicture(Printer &printer, double x, double y, const QImage &picture) const
{
    // The picture with green whitened, and a mask black where the picture is.
    QImage colours = picture.convertToFormat(QImage::Format_RGB32);
    QImage mask(colours.size(), QImage::Format_RGB32);
    for (int py = 0; py < colours.height(); ++py) {
        auto *line = reinterpret_cast<QRgb *>(colours.scanLine(py));
        auto *maskLine = reinterpret_cast<QRgb *>(mask.scanLine(py));
        for (int px = 0; px < colours.width(); ++px) {
            if ((line[px] & 0x00FFFFFFu) == 0x0000FF00u) {
                line[px] = 0xFFFFFFFFu;
                maskLine[px] = 0xFFFFFFFFu;
            } else {
                maskLine[px] = 0xFF000000u;
            }
        }
    }
    printer.setCurrentX(1);
    printer.setCurrentY(1);
    printer.Print(QString(), false);
    if (y > printer.ScaleHeight())
        return;
    printer.PaintPicture(mask, x, y, -1, -1, QRectF(), RasterOp::MergePaint);
    printer.PaintPicture(colours, x, y, -1, -1, QRectF(), RasterOp::SourceAnd);
}

} // namespace ff::print
