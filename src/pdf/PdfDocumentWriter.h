#pragma once
// A PDF document of pages with one picture as background, real text on top, link areas and fillable
// text fields. Geometry is given in twips from the top left corner of the page, as the page box
// has it; pictures come at one pixel for 15 twips. Fonts are embedded with an identity encoding
// (only the glyphs used), so any script of the record's code page keeps its own letters and can be
// searched and copied.
//
// This class is the only place that talks to the PDF library: its later versions change their
// interface, and its errors (exceptions) stop here and come back as a Status. After the first
// error every further call does nothing and EndDocument reports it.

#include "core/Result.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QRectF>
#include <QString>

#include <memory>

namespace ff::pdf {

struct PdfFontStyle {
    QString name;     // a font family; one the system lacks is matched by fontconfig
    double size = 8;  // points
    bool bold = false, italic = false, underline = false, strikeout = false;
};

// A fillable, multi-line text field.
struct PdfTextFieldSpec {
    QString name;  // unique within the document
    QString value;
    QRectF twips;  // left, top, width, height
    int alignment = 0; // 0 left, 1 right, 2 centre
    PdfFontStyle font;
    QColor textColor = Qt::black;
    QColor backColor = Qt::white;
};

class PdfDocumentWriter {
public:
    PdfDocumentWriter();
    ~PdfDocumentWriter(); // an unfinished document is thrown away
    PdfDocumentWriter(const PdfDocumentWriter &) = delete;
    PdfDocumentWriter &operator=(const PdfDocumentWriter &) = delete;

    // Starts a document of pages `widthTwips` by `heightTwips`, written to `path` by EndDocument.
    // `title` and `author` go to the document's information.
    Status StartDocument(const QString &path, const QString &title, const QString &author, double widthTwips,
                         double heightTwips);
    // Begins the next page; the first page begins by itself with the first output.
    Status NewPage();
    // A picture at (x, y) in twips at its natural size, 15 twips a pixel; at (0, 0) it fills the
    // page. A picture placed again (the same QImage, or a copy sharing its data) is stored once.
    Status PlaceBitmap(const QImage &picture, double x, double y);
    // The pen and fill colours are taken as the callers have always set them; the boxes behind
    // texts are part of the background picture, so only the text colour is drawn with.
    void setPenColor(const QColor &colour) { pen_ = colour; }
    void setFillColor(const QColor &colour) { fill_ = colour; }
    void setTextColor(const QColor &colour) { text_ = colour; }
    void setFont(const PdfFontStyle &font) { font_ = font; }
    // Text inside a box, line by line (CR, LF or CR LF end a line), the first line at the top;
    // alignment 0 left, 1 right, 2 centre inside the box's width. Text that runs past the box is
    // kept, as on the page.
    Status TextBox(const QRectF &twips, int alignment, const QString &text);
    // A live link over the box: a web or mail address, opened by the reader's click.
    Status LinkArea(const QRectF &twips, const QString &target);
    Status AddTextField(const PdfTextFieldSpec &field);
    // Writes the file and closes the document.
    Status EndDocument();

    // The letters a form field's font carries besides those of the values (a subset of the font
    // is embedded): the letters of the record's code page, so that any letter a record can hold
    // can be typed into a field. Set before the first field.
    void setFieldLetters(const QString &letters) { fieldLetters_ = letters; }

    // The width of `text` in the current font, in twips.
    double TextWidth(const QString &text);
    int pageCount() const;
    bool documentOpen() const;

private:
    struct State;
    std::unique_ptr<State> d_;
    QColor pen_ = Qt::black, fill_ = Qt::white, text_ = Qt::black;
    PdfFontStyle font_;
    QString fieldLetters_;
    // Pictures compressed once for all documents of this writer (by QImage::cacheKey()).
    QHash<qint64, QByteArray> compressed_;
};

} // namespace ff::pdf
