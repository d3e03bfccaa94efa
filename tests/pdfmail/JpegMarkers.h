#pragma once
// A reader of JPEG marker segments written for the tests from ISO/IEC 10918-1 alone, so that a
// file is checked by code that shares nothing with the encoder: the markers in their order, the
// quantisation tables in natural order, the frame's components, the Huffman tables' code counts
// and the comment.

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <array>

namespace jpegtest {

struct Component {
    int id = 0, h = 0, v = 0, table = 0;
};

struct JpegFile {
    bool valid = false;
    QString problem;                     // why the walk stopped, when not valid
    QList<int> markers;                  // every marker in the file's order, SOI to EOI
    QByteArray app0;                     // the payload of the first APP0
    QByteArray comment;                  // the payload of the first COM
    QMap<int, std::array<int, 64>> dqt;  // table id -> entries in natural (row-major) order
    int precision = 0, width = 0, height = 0;
    QList<Component> components;         // of the SOF0 frame
    QMap<int, std::array<int, 16>> dht;  // (class << 4 | id) -> number of codes of each length
};

// Position in natural order of each zig-zag index, by walking the anti-diagonals of the 8x8 block
// in turn: down-left on odd diagonals, up-right on even ones.
inline std::array<int, 64> zigZagToNatural()
{
    std::array<int, 64> order{};
    int k = 0;
    for (int s = 0; s < 15; ++s) {
        for (int i = 0; i < 8; ++i) {
            const int row = (s % 2) ? i : 7 - i;
            const int col = s - row;
            if (col >= 0 && col < 8)
                order[k++] = row * 8 + col;
        }
    }
    return order;
}

inline JpegFile readJpeg(const QByteArray &bytes)
{
    JpegFile file;
    const auto *b = reinterpret_cast<const unsigned char *>(bytes.constData());
    const qsizetype n = bytes.size();
    const auto fail = [&file](const char *why) { file.problem = QString::fromLatin1(why); return file; };
    if (n < 4 || b[0] != 0xFF || b[1] != 0xD8)
        return fail("no SOI");
    file.markers << 0xD8;
    const std::array<int, 64> natural = zigZagToNatural();
    qsizetype p = 2;
    while (p + 4 <= n) {
        if (b[p] != 0xFF)
            return fail("no marker where one belongs");
        const int marker = b[p + 1];
        file.markers << marker;
        if (marker == 0xD9)
            return fail("EOI before the scan");
        const int length = (b[p + 2] << 8) | b[p + 3];
        if (length < 2 || p + 2 + length > n)
            return fail("segment runs past the end");
        const unsigned char *s = b + p + 4;
        const int size = length - 2;
        if (marker == 0xE0 && file.app0.isEmpty())
            file.app0 = QByteArray(reinterpret_cast<const char *>(s), size);
        else if (marker == 0xFE && file.comment.isEmpty())
            file.comment = QByteArray(reinterpret_cast<const char *>(s), size);
        else if (marker == 0xDB) {
            for (int q = 0; q + 65 <= size; q += 65) {
                if (s[q] >> 4)
                    return fail("16-bit quantisation table");
                std::array<int, 64> table{};
                for (int k = 0; k < 64; ++k)
                    table[natural[k]] = s[q + 1 + k];
                file.dqt[s[q] & 15] = table;
            }
        } else if (marker == 0xC0) {
            file.precision = s[0];
            file.height = (s[1] << 8) | s[2];
            file.width = (s[3] << 8) | s[4];
            for (int c = 0; c < s[5]; ++c)
                file.components << Component{s[6 + 3 * c], s[7 + 3 * c] >> 4, s[7 + 3 * c] & 15, s[8 + 3 * c]};
        } else if (marker == 0xC4) {
            for (int t = 0; t + 17 <= size;) {
                std::array<int, 16> counts{};
                int total = 0;
                for (int i = 0; i < 16; ++i)
                    total += counts[i] = s[t + 1 + i];
                file.dht[s[t]] = counts;
                t += 17 + total;
            }
        }
        p += 2 + length;
        if (marker == 0xDA) {
            // Entropy-coded data: a 0xFF byte is followed by a stuffed zero until the EOI.
            for (; p + 1 < n; ++p) {
                if (b[p] != 0xFF)
                    continue;
                if (b[p + 1] == 0xD9) {
                    file.markers << 0xD9;
                    if (p + 2 != n)
                        return fail("bytes after EOI");
                    file.valid = true;
                    return file;
                }
                if (b[p + 1] != 0x00)
                    return fail("unstuffed 0xFF in the scan");
                ++p;
            }
            return fail("no EOI");
        }
    }
    return fail("file ends before the scan");
}

} // namespace jpegtest
