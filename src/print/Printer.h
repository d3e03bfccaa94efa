#pragma once
// The printer device the drawing routines use: a sheet in twips (1/1440 inch) with a current
// position, a pen, a fill and a font, and the operations Print, NewPage, EndDoc, KillDoc, Line,
// Circle, PaintPicture, RoundRect, TextWidth and TextHeight. It paints with QPainter on the device
// of a PrintTarget (a PDF file, a printer, pictures in memory), so the same drawing goes to paper,
// to a file and to the screen.
//
// The document starts with the first output (Print, Line, ...), as a printer job does; NewPage
// ends a sheet and opens the next one lazily, so a last NewPage leaves no blank sheet; EndDoc
// completes the job and KillDoc throws it away. Position (0, 0) is the top left corner of the
// printable area. Colours are colour longs (0x00BBGGRR, high bit for a system colour).

#include "core/Result.h"
#include "print/PrintTarget.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>

namespace ff::print {

enum class LineKind { Line, Box, FilledBox };
// Raster operations of PaintPicture: copy, MERGEPAINT (destination OR NOT source) and SRCAND
// (destination AND source). Devices without raster operations draw the effect they have in a
// masked picture: MERGEPAINT whitens where the source is black, SRCAND leaves white out.
enum class RasterOp { Copy, MergePaint, SourceAnd };

class Printer {
public:
    explicit Printer(PrintTarget &target);
    ~Printer(); // an open document is completed as by EndDoc
    Printer(const Printer &) = delete;
    Printer &operator=(const Printer &) = delete;

    // The sheet and its printable area, in twips.
    double Width() const { return sheet_.width(); }
    double Height() const { return sheet_.height(); }
    double ScaleWidth() const { return printable_.width(); }
    double ScaleHeight() const { return printable_.height(); }
    double TwipsPerPixelX() const { return 1440.0 / dpiX_; }
    double TwipsPerPixelY() const { return 1440.0 / dpiY_; }
    // 1 portrait, 2 landscape: from the sheet's proportions.
    int Orientation() const { return sheet_.width() > sheet_.height() ? 2 : 1; }
    // Output scale in percent (100: natural size).
    int Zoom() const { return zoom_; }
    void setZoom(int percent);

    double CurrentX() const { return currentX_; }
    double CurrentY() const { return currentY_; }
    void setCurrentX(double x) { currentX_ = x; }
    void setCurrentY(double y) { currentY_ = y; }

    void setForeColor(int32_t colour) { foreColor_ = colour; }
    int32_t ForeColor() const { return foreColor_; }
    void setFillColor(int32_t colour) { fillColor_ = colour; }
    void setFillStyle(int fillStyle) { fillStyle_ = fillStyle; }
    int FillStyle() const { return fillStyle_; }
    // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot, 5 none, 6 inside solid.
    void setDrawStyle(int drawStyle) { drawStyle_ = drawStyle; }
    int DrawStyle() const { return drawStyle_; }
    // The pen's width in device pixels.
    void setDrawWidth(int pixels) { drawWidth_ = qMax(1, pixels); }
    int DrawWidth() const { return drawWidth_; }
    // Only 13 (copy pen) is drawn; it is kept for the callers that set it.
    void setDrawMode(int mode) { drawMode_ = mode; }

    void setFontName(const QString &name);
    void setFontSize(double points);
    void setFontBold(bool on);
    void setFontItalic(bool on);
    void setFontUnderline(bool on);
    // Text is always drawn without a background; the flag is kept for the callers that set it.
    void setFontTransparent(bool on) { fontTransparent_ = on; }
    // Texts arrive already decoded from the design's code page; the character set only names it.
    void setCharset(int charset) { charset_ = charset; }
    QString FontName() const { return font_.family(); }
    double FontSize() const { return fontSize_; }
    const QFont &font() const { return font_; }
    void setFont(const QString &name, double points, bool bold, bool italic, bool underline);

    double TextWidth(const QString &text) const;
    double TextHeight(const QString &text = QStringLiteral("H")) const;

    // Prints `text` at the current position in ForeColor. With `lineEnd` the position goes to
    // the start of the next line (x 0, y one text height down), otherwise behind the text.
    void Print(const QString &text = QString(), bool lineEnd = true);
    void Line(double x1, double y1, double x2, double y2, int32_t colour, LineKind kind = LineKind::Line);
    // An ellipse round (x, y): the radius is the longer half-axis, `aspect` height over width;
    // with `start` and `end` (radians) different, only that arc; both negative (-0 too), the wedge
    // with its two radii, filled.
    void Circle(double x, double y, double radius, int32_t colour, double start = 0, double end = 0, double aspect = 1);
    // `width` and `height` below 0: the picture's natural size. `source`, in twips of the picture,
    // empty: all of it.
    void PaintPicture(const QImage &picture, double x, double y, double width = -1, double height = -1,
                      QRectF source = QRectF(), RasterOp op = RasterOp::Copy);
    // In device pixels, with the pen of ForeColor and the fill; corners `cornerWidth` by
    // `cornerHeight`.
    void RoundRect(double left, double top, double right, double bottom, double cornerWidth, double cornerHeight);
    // Draws a picture into a rectangle in device pixels; a negative width or height mirrors it.
    void drawPixels(const QImage &picture, const QRectF &target, const QRectF &source);

    Status NewPage();
    Status EndDoc();
    void KillDoc();

    // Sheets begun in the current or last document.
    int pages() const { return pages_; }
    bool documentOpen() const { return painter_.isActive(); }

    // The colour of a colour long; system colours by their usual look (window white, text black).
    static QColor colorOf(int32_t colour);

private:
    bool ensureSheet();
    double devX(double twips) const { return twips * dpiX_ / 1440.0 * zoom_ / 100.0; }
    double devY(double twips) const { return twips * dpiY_ / 1440.0 * zoom_ / 100.0; }
    QPen pen(int32_t colour) const;
    QBrush brush() const;
    void refreshFont();

    PrintTarget &target_;
    QRectF sheet_, printable_;
    double dpiX_, dpiY_;
    int zoom_ = 100;
    QPainter painter_;
    QPaintDevice *device_ = nullptr;
    bool sheetPending_ = false; // NewPage was asked: the next output opens the next sheet
    bool failed_ = false;
    int pages_ = 0;
    double currentX_ = 0, currentY_ = 0;
    int32_t foreColor_ = 0, fillColor_ = 0;
    int fillStyle_ = 1, drawStyle_ = 0, drawWidth_ = 1, drawMode_ = 13;
    bool fontTransparent_ = true;
    int charset_ = 0;
    double fontSize_ = 8;
    QFont font_;       // at the size the sheet is drawn with (the zoom applied)
    QImage measure_;   // a picture at the device's resolution for measuring text
};

} // namespace ff::print
