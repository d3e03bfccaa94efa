#include "web/GifWriter.h"

#include <QHash>

namespace ff::web {

namespace {

void put16(QByteArray &out, int v)
{
    out.append(char(v & 0xFF));
    out.append(char((v >> 8) & 0xFF));
}

// Packs codes of `width` bits, lowest bit first, into 255-byte sub-blocks.
class CodePacker {
public:
    explicit CodePacker(QByteArray &out) : out_(out) {}
    void put(int code, int width)
    {
        bits_ |= uint32_t(code) << count_;
        count_ += width;
        while (count_ >= 8) {
            byte(char(bits_ & 0xFF));
            bits_ >>= 8;
            count_ -= 8;
        }
    }
    void finish()
    {
        if (count_ > 0)
            byte(char(bits_ & 0xFF));
        flush();
        out_.append(char(0)); // block terminator
    }

private:
    void byte(char b)
    {
        block_.append(b);
        if (block_.size() == 255)
            flush();
    }
    void flush()
    {
        if (block_.isEmpty())
            return;
        out_.append(char(block_.size()));
        out_.append(block_);
        block_.clear();
    }
    QByteArray &out_;
    QByteArray block_;
    uint32_t bits_ = 0;
    int count_ = 0;
};

} // namespace

QByteArray GifWriter::encode(const QImage &image)
{
    // Exact colours first: the pictures are drawn with a handful of them.
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    QVector<QRgb> palette;
    QHash<QRgb, int> indexOf;
    QImage indexed;
    for (int y = 0; y < rgb.height() && palette.size() <= 256; ++y)
        for (int x = 0; x < rgb.width() && palette.size() <= 256; ++x) {
            const QRgb c = rgb.pixel(x, y) | 0xFF000000u;
            if (!indexOf.contains(c)) {
                indexOf.insert(c, int(palette.size()));
                palette.append(c);
            }
        }
    if (palette.size() > 256) {
        indexed = rgb.convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither | Qt::AvoidDither);
        palette = indexed.colorTable();
    } else {
        indexed = QImage(rgb.size(), QImage::Format_Indexed8);
        indexed.setColorTable(palette);
        for (int y = 0; y < rgb.height(); ++y)
            for (int x = 0; x < rgb.width(); ++x)
                indexed.setPixel(x, y, uint(indexOf.value(rgb.pixel(x, y) | 0xFF000000u)));
    }
    while (palette.size() < 256)
        palette.append(qRgb(0, 0, 0));

    QByteArray out("GIF89a");
    put16(out, indexed.width());
    put16(out, indexed.height());
    out.append(char(0xF7)); // global colour table of 256 entries, 8 bits a colour
    out.append(char(0));    // background colour index
    out.append(char(0));    // no aspect ratio
    for (const QRgb c : palette) {
        out.append(char(qRed(c)));
        out.append(char(qGreen(c)));
        out.append(char(qBlue(c)));
    }
    out.append(',');
    put16(out, 0);
    put16(out, 0);
    put16(out, indexed.width());
    put16(out, indexed.height());
    out.append(char(0)); // no local table, not interlaced

    // LZW with minimum code size 8: clear 256, end 257. Each literal after the first adds a table
    // entry in the reader; a clear after every 250 literals keeps the table below 512 entries.
    constexpr int clear = 256, end = 257, width = 9;
    out.append(char(8));
    CodePacker codes(out);
    codes.put(clear, width);
    int sinceClear = 0;
    for (int y = 0; y < indexed.height(); ++y) {
        const uchar *line = indexed.constScanLine(y);
        for (int x = 0; x < indexed.width(); ++x) {
            if (sinceClear == 250) {
                codes.put(clear, width);
                sinceClear = 0;
            }
            codes.put(line[x], width);
            ++sinceClear;
        }
    }
    codes.put(end, width);
    codes.finish();
    out.append(';');
    return out;
}

} // namespace ff::web
