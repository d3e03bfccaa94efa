#include "web/PagePictures.h"

#include "web/GifWriter.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygon>

namespace ff::web {

std::pair<int, int> PagePictures::checkPair(int style)
{
    if (style < 4)
        return {100, 101};
    switch (style) {
    case 4: return {102, 103};
    case 5: return {102, 104};
    case 6: return {102, 105};
    case 7: return {102, 106};
    case 8:
    case 9: return {102, 107};
    case 10:
    case 11:
    case 12: return {102, 108};
    case 13:
    case 14:
    case 15: return {109, 110};
    default: break;
    }
    return style <= 20 ? std::pair{111, 112} : std::pair{113, 112};
}

namespace {

const QColor kInk(0, 0, 0);
const QColor kFrame(0x70, 0x70, 0x70);
const QColor kWhite(0xFF, 0xFF, 0xFF);
const QColor kGreen(0x10, 0x80, 0x20);
const QColor kRed(0xC0, 0x20, 0x20);
const QColor kBlue(0x20, 0x40, 0xB0);

void tick(QPainter &p, const QColor &c)
{
    p.setPen(QPen(c, 2));
    p.drawPolyline(QPolygon({QPoint(3, 6), QPoint(5, 9), QPoint(10, 3)}));
}

} // namespace

QByteArray PagePictures::checkPicture(int number)
{
    if (number < FirstCheck || number > LastCheck)
        return QByteArray();
    QImage image(CheckSize, CheckSize, QImage::Format_RGB32);
    image.fill(kWhite);
    QPainter p(&image);
    const QRect box(0, 0, CheckSize - 1, CheckSize - 1);
    const auto square = [&](const QColor &frame) {
        p.setPen(frame);
        p.setBrush(kWhite);
        p.drawRect(box);
    };
    const auto round = [&] {
        p.setPen(kFrame);
        p.setBrush(kWhite);
        p.drawEllipse(box);
    };
    switch (number) {
    case 100: square(kFrame); break;
    case 101: square(kFrame); tick(p, kInk); break;
    case 102: square(kInk); break;
    case 103: square(kInk); tick(p, kGreen); break;
    case 104: // a cross
        square(kInk);
        p.setPen(QPen(kRed, 2));
        p.drawLine(3, 3, 9, 9);
        p.drawLine(9, 3, 3, 9);
        break;
    case 105: // a dot
        square(kInk);
        p.setPen(Qt::NoPen);
        p.setBrush(kInk);
        p.drawEllipse(QRect(3, 3, 7, 7));
        break;
    case 106: // a filled square
        square(kInk);
        p.fillRect(QRect(3, 3, 7, 7), kBlue);
        break;
    case 107: // a diamond
        square(kInk);
        p.setPen(Qt::NoPen);
        p.setBrush(kInk);
        p.drawPolygon(QPolygon({QPoint(6, 2), QPoint(10, 6), QPoint(6, 10), QPoint(2, 6)}));
        break;
    case 108: // a star
        square(kInk);
        p.setPen(QPen(kInk, 1));
        p.drawLine(6, 2, 6, 10);
        p.drawLine(2, 6, 10, 6);
        p.drawLine(3, 3, 9, 9);
        p.drawLine(9, 3, 3, 9);
        break;
    case 109: round(); break;
    case 110:
        round();
        p.setPen(Qt::NoPen);
        p.setBrush(kInk);
        p.drawEllipse(QRect(4, 4, 5, 5));
        break;
    case 111: // a raised box
    case 113: // a flat box
        p.fillRect(image.rect(), number == 111 ? QColor(0xD4, 0xD0, 0xC8) : QColor(0xEC, 0xEC, 0xEC));
        p.setPen(number == 111 ? kWhite : kFrame);
        p.drawLine(0, 0, CheckSize - 1, 0);
        p.drawLine(0, 0, 0, CheckSize - 1);
        p.setPen(kFrame);
        p.drawLine(CheckSize - 1, 0, CheckSize - 1, CheckSize - 1);
        p.drawLine(0, CheckSize - 1, CheckSize - 1, CheckSize - 1);
        break;
    case 112: // a sunken box with its tick
        p.fillRect(image.rect(), kWhite);
        p.setPen(kFrame);
        p.drawLine(0, 0, CheckSize - 1, 0);
        p.drawLine(0, 0, 0, CheckSize - 1);
        tick(p, kInk);
        break;
    default: break;
    }
    p.end();
    return GifWriter::encode(image);
}

QByteArray PagePictures::tabPicture(bool shown)
{
    QImage image(TabWidth, TabHeight, QImage::Format_RGB32);
    image.fill(kWhite);
    QPainter p(&image);
    QPainterPath tab;
    tab.moveTo(0, TabHeight);
    tab.lineTo(0, 5);
    tab.lineTo(5, 0);
    tab.lineTo(TabWidth - 6, 0);
    tab.lineTo(TabWidth - 1, 5);
    tab.lineTo(TabWidth - 1, TabHeight);
    p.setPen(kFrame);
    p.setBrush(shown ? QColor(0xFF, 0xF4, 0xC0) : QColor(0xE4, 0xE4, 0xE4));
    p.drawPath(tab);
    if (shown)
        p.fillRect(QRect(1, TabHeight - 3, TabWidth - 2, 3), QColor(0xF0, 0xA0, 0x20));
    p.end();
    return GifWriter::encode(image);
}

} // namespace ff::web
