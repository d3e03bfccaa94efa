#pragma once
// Draws the record on the page onto a Printer, page by page, with the geometry of the page on
// screen: background, shapes, lines, pictures, labels, the flow layer, text fields, combos, notes
// and check fields, in that order. Also the small drawing routines the report engine shares:
// PrintShape, PrintLabel, PrintWrappedText, RenderPicture and PrintMaskedPicture.
//
// Some rules are kept as the run-time has always had them, because prints made with it must come
// out the same: the picture test compares a horizontal position with the vertical limit, flow-layer
// pictures and labels print with the page on screen (ShownPage) rather than the page being printed,
// a shape's left is moved out by half its border while its top is moved in, and the blanking test
// of zero values can never hold, so zeros are printed.

#include "design/Page.h"
#include "print/Printer.h"

#include <QHash>
#include <QImage>
#include <QString>
#include <vector>

namespace ff::print {

// A label to print: a page label, a flow-layer label or a report label.
struct PrintedLabel {
    QString Caption;
    QString FontName;
    double FontSize = 8;
    bool FontBold = false, FontItalic = false, FontUnderline = false;
    int32_t ForeColor = 0;
    double Left = 0, Top = 0, Width = 0;
    int Alignment = 0; // 0 left, 1 right, 2 centre
};

class RecordPrinter {
public:
    // `pictureFolder`: where the design's pictures are; `flowImageFolder`: the flow layer's
    // Images folder (may be empty).
    RecordPrinter(const Design &design, QString pictureFolder, QString flowImageFolder = QString());

    // The pages to print, the page on screen and the system's decimal separator.
    void setPageRange(int from, int to) { PrintPageFrom = from; PrintPageTo = to; }
    void setShownPage(int page) { ShownPage = page; }
    void setDecimalSeparator(QChar separator) { decimalSeparator_ = separator; }
    // Where per-record pictures are (with a trailing '/'; empty: none).
    void setRecordPictureFolder(const QString &folder) { recordPictureFolder_ = folder; }

    // Draws the record of `page` on pages PrintPageFrom to PrintPageTo, each ending with NewPage.
    // The caption of label 1 is cleared, as the window's print has always done.
    void PrintRecordPages(Printer &printer, Page &page);

    // One shape element; returns the corrected left and top through `x` and `y`.
    void PrintShape(Printer &printer, const ShapeElement &shape, double &x, double &y) const;
    void PrintLabel(Printer &printer, const PrintedLabel &label) const;
    // A note with word wrap inside a box; `text` is consumed as it is printed.
    void PrintWrappedText(Printer &printer, QString &text, double x, double y, double width, double height) const;
    // A picture into a rectangle in device pixels; `centre` puts (x, y) at its middle.
    static void RenderPicture(Printer &printer, const QImage &picture, double x, double y, double width, double height,
                              bool centre = false, bool flipHorizontal = false, bool flipVertical = false);
    // A picture with pure green (0x00FF00) as the transparent colour, at (x, y) in twips.
    void PrintMaskedPicture(Printer &printer, double x, double y, const QImage &picture) const;

    // The picture a check field shows: a box (or a round option box), ticked when `checked`, on
    // pure green, which prints as transparent. One pixel is 15 twips.
    static QImage checkPicture(bool optionBox, bool checked);
    // The page box's background (back colour and tiled picture) at one pixel for 15 twips; null
    // when the design has no background picture.
    QImage backgroundPicture(int page) const;

    int PrintTopOffset = 0;
    int PrintPageFrom = 0, PrintPageTo = 0;
    int ShownPage = 0;
    int CurrentPrintPage = 0;

private:
    bool onSheet(int elementPage, int printFlag) const;
    const QImage &designPicture(const QString &fileName) const;
    void printFields(Printer &printer, const Page &page) const;
    void printCombos(Printer &printer, const Page &page) const;
    void printNotes(Printer &printer, const Page &page) const;
    void printChecks(Printer &printer, const Page &page) const;
    void printFrame(Printer &printer, double left, double top, double width, double height, int32_t backColor,
                    const FrameStyle &frame) const;
    QString clipped(Printer &printer, const QString &text, double limit, bool keepOverflow, double reserve) const;

    const Design &design_;
    QString pictureFolder_, flowImageFolder_, recordPictureFolder_;
    QChar decimalSeparator_ = QLatin1Char('.');
    mutable QHash<QString, QImage> pictures_;
};

} // namespace ff::print
