#pragma once
// Writes a small picture as a GIF 89a file: the check pictures and page tabs of the web pages are
// GIF files, and Qt reads GIF but does not write it. The picture is reduced to at most 256
// colours; the LZW stream restarts its table often enough that every code stays 9 bits wide,
// which costs some size and nothing else for pictures of a few hundred pixels.

#include <QByteArray>
#include <QImage>

namespace ff::web {

class GifWriter {
public:
    static QByteArray encode(const QImage &image);
};

} // namespace ff::web
