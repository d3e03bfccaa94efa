#include "web/PageBackground.h"

#include "design/DrawStyles.h"

#include "pdfmail/JpegEncoder.h"
#include "web/HtmlText.h"

#include <QDir>
#include <QFont>
#include <QPainter>

namespace ff::web {

namespace {

QColor colorOf(int32_t value)
{
    const QString hex = HtmlText::ColorToHex(value);
    return QColor(hex);
}

QRect rectOf(double left, double top, double width, double height)
{
    return QRect(HtmlText::px(left), HtmlText::px(top), qMax(1, HtmlText::px(width)), qMax(1, HtmlText::px(height)));
}

} // namespace

QImage PageBackground::render(int page) const
{
    const Design &d = design_;
    QImage image(qMax(1, HtmlText::px(d.PageWidth)), qMax(1, HtmlText::px(d.PageHeight)), QImage::Format_RGB32);
    // A page without a colour of its own takes the first page's.
    int32_t back = d.PageBackColor[size_t(qBound(0, page, 4))];
    if (back == 0 && page != 0)
        back = d.PageBackColor[0];
    image.fill(back == 0 ? QColor(Qt::white) : colorOf(back));
    QPainter p(&image);
    if (!d.BackgroundPicture.isEmpty() && d.TileMode >= 0 && d.TileMode <= 2) {
        // Tiled from the top left corner: 0 the whole page, 1 down the left edge, 2 along the top.
        const QImage tile(QDir(folder_).filePath(d.BackgroundPicture));
        if (!tile.isNull() && tile.width() > 0 && tile.height() > 0) {
            const int maxX = d.TileMode == 1 ? 1 : image.width();
            const int maxY = d.TileMode == 2 ? 1 : image.height();
            for (int y = 0; y < maxY; y += tile.height())
                for (int x = 0; x < maxX; x += tile.width())
                    p.drawImage(x, y, tile);
        }
    }
    p.setRenderHint(QPainter::Antialiasing);
    for (const ShapeElement &s : d.Shapes) {
        if (s.ShapePage != page)
            continue;
        QRectF r = rectOf(s.Left, s.Top, s.Width, s.Height);
        if (s.Shape == 1 || s.Shape == 3 || s.Shape == 5) {
            const double side = qMin(r.width(), r.height());
            r = QRectF(r.center().x() - side / 2, r.center().y() - side / 2, side, side);
        }
        const QPen pen(colorOf(s.BorderColor), qMax<int32_t>(1, s.BorderWidth), penStyleOf(s.BorderStyle));
        p.setPen(pen);
        p.setBrush(QBrush(colorOf(s.FillColor), brushStyleOf(s.FillStyle)));
        const double inset = pen.widthF() / 2;
        r.adjust(inset, inset, -inset, -inset);
        if (s.Shape == 2 || s.Shape == 3)
            p.drawEllipse(r);
        else if (s.Shape == 4 || s.Shape == 5)
            p.drawRoundedRect(r, qMin(r.width(), r.height()) / 8, qMin(r.width(), r.height()) / 8);
        else
            p.drawRect(r);
    }
    for (const LineElement &l : d.Lines) {
        if (l.LinePage != page)
            continue;
        p.setPen(QPen(colorOf(l.BorderColor), 1));
        p.drawLine(QPointF(l.X1 / 15.0, l.Y1 / 15.0), QPointF(l.X2 / 15.0, l.Y2 / 15.0));
    }
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    // Frames 5 pixels out from the element, as the window draws them.
    const auto frame = [&](const QRect &r, const FrameStyle &style) {
        p.setPen(QPen(colorOf(style.color), 1));
        p.drawRect(r.adjusted(-5, -5, 4, 4));
    };
    for (size_t i = 1; i < d.Fields.size(); ++i)
        if (d.Fields[i].FieldBox && d.Fields[i].FieldPage == page)
            frame(rectOf(d.Fields[i].Left, d.Fields[i].Top, d.Fields[i].Width, d.Fields[i].Height), d.Fields[i].Frame);
    for (size_t i = 1; i < d.Notes.size(); ++i)
        if (d.Notes[i].NoteBox && d.Notes[i].NotePage == page)
            frame(rectOf(d.Notes[i].Left, d.Notes[i].Top, d.Notes[i].Width, d.Notes[i].Height), d.Notes[i].Frame);
    for (size_t i = 1; i < d.Combos.size(); ++i) {
        const ComboElement &c = d.Combos[i];
        if (c.ComboPage != page)
            continue;
        const QFontMetrics m(QFont(c.FontName.isEmpty() ? d.AppFontName : c.FontName, qMax(1, qRound(c.FontSize))));
        frame(QRect(HtmlText::px(c.Left), HtmlText::px(c.Top), qMax(1, HtmlText::px(c.Width)), m.height() + 8), c.Frame);
    }
    // Buttons do nothing on a web page; they are drawn so that the page looks like the form.
    for (const ButtonElement &b : d.Buttons) {
        if (b.ButtonPage != page || b.Caption.isEmpty())
            continue;
        const QRect r = rectOf(b.Left, b.Top, b.Width, b.Height);
        p.fillRect(r, b.BackColor == 0 ? QColor(0xE0, 0xE0, 0xE0) : colorOf(b.BackColor));
        p.setPen(QColor(0x80, 0x80, 0x80));
        p.drawRect(r.adjusted(0, 0, -1, -1));
        QFont font(b.FontName.isEmpty() ? d.AppFontName : b.FontName);
        font.setPointSize(qMax(1, int(b.FontSize)));
        p.setFont(font);
        p.setPen(Qt::black);
        p.drawText(r, Qt::AlignCenter, b.Caption);
    }
    p.end();
    return image;
}

Status PageBackground::SaveBackground(int page, const QString &path) const
{
    JpegEncoder encoder;
    encoder.SampleImage(render(page));
    return encoder.SaveFile(path);
}

} // namespace ff::web
