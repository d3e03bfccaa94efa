#pragma once
// A baseline sequential JPEG encoder with JFIF framing: the pictures of the picture library and
// of the import, and any page or picture exported as an image, are written through it.
//
// Its settings are the ones the program has always offered: a quality from 1 to 100 on the
// common scale (75 unless set), a horizontal and vertical sampling factor for each of the three
// components Y, Cb, Cr (2x2, 1x1, 1x1 unless set, so the colour has half the resolution both
// ways), and a comment that goes into the file with the program's own lines after it. The
// quantisation tables are the standard luminance and chrominance tables scaled by the quality,
// the Huffman tables are the standard ones, the forward DCT is the floating-point AAN one.
//
// The work is done by libjpeg; every call into it stays inside JpegEncoder.cpp.

#include "core/Result.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <array>

namespace ff {

class JpegEncoder {
public:
    static constexpr int DefaultQuality = 75;
    // The longest comment the program accepts, in characters.
    static constexpr int MaxCommentLength = 65535;

    JpegEncoder();

    int Quality() const { return quality_; }
    // A quality above 100 or not above 0 is ignored: the old quality stays.
    void SetQuality(int quality);

    // Each factor lies between 1 and 4, or nothing changes and the error is "Invalid Sampling
    // Value". Factors that a baseline file cannot hold (more than ten blocks in one unit, or a
    // component whose factors do not divide the largest ones) are refused too, with their own text.
    Status SetSamplingFrequencies(int h1, int v1, int h2, int v2, int h3, int v3);
    // h1, v1, h2, v2, h3, v3.
    std::array<int, 6> samplingFrequencies() const { return sampling_; }

    QString Comment() const { return comment_; }
    // A comment of more than MaxCommentLength characters is refused ("Illegal Comment Length").
    Status SetComment(const QString &comment);

    // The title named in the comment segment; the application's name unless set.
    QString applicationTitle() const { return applicationTitle_; }
    void setApplicationTitle(const QString &title) { applicationTitle_ = title; }

    // The bytes of the comment segment as they go into the file, in UTF-8: the comment (when there
    // is one), then the lines "JPEG", the application's title and the maker's line, joined by
    // CR LF.
    QByteArray commentSegment() const;

    // Takes the pixels to encode. A valid size other than the picture's own stretches it to that
    // size. A picture with transparency is laid on white first.
    void SampleImage(const QImage &image, QSize size = QSize());
    bool hasImage() const { return !pixels_.isNull(); }

    // The whole file in memory: SOI, APP0 JFIF, COM, DQT, SOF0, DHT, SOS, the scan, EOI.
    Result<QByteArray> encode() const;

    // Encodes and puts the file in place in one go; an existing file is overwritten. On any
    // failure the old file (if any) stays as it was and the error tells why.
    Status SaveFile(const QString &fileName) const;

private:
    int quality_ = DefaultQuality;
    std::array<int, 6> sampling_{2, 2, 1, 1, 1, 1};
    QString comment_;
    QString applicationTitle_;
    QImage pixels_; // always Format_RGB888
};

} // namespace ff
