#pragma once
// Compares two pictures of the same page made by different programs (the window, a browser, a
// printed sheet): the share of 8 x 8 cells whose mean grey differs by more than `tolerance`, over
// the part both cover. Small shifts of text inside a cell pass; an element out of place does not.

#include <QImage>

namespace ff::testsupport {

inline double differingCells(const QImage &a, const QImage &b, int tolerance)
{
    const QImage ga = a.convertToFormat(QImage::Format_Grayscale8), gb = b.convertToFormat(QImage::Format_Grayscale8);
    const int w = qMin(ga.width(), gb.width()) / 8, h = qMin(ga.height(), gb.height()) / 8;
    int differing = 0;
    for (int cy = 0; cy < h; ++cy)
        for (int cx = 0; cx < w; ++cx) {
            int sa = 0, sb = 0;
            for (int y = cy * 8; y < cy * 8 + 8; ++y)
                for (int x = cx * 8; x < cx * 8 + 8; ++x) {
                    sa += ga.constScanLine(y)[x];
                    sb += gb.constScanLine(y)[x];
                }
            if (qAbs(sa - sb) / 64 > tolerance)
                ++differing;
        }
    return w * h > 0 ? double(differing) / (w * h) : 1.0;
}

} // namespace ff::testsupport
