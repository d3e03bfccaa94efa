#include "pdfmail/JpegEncoder.h"

#include <QCoreApplication>
#include <QPainter>
#include <QSaveFile>

#include <algorithm>
#include <csetjmp>
#include <cstdio> // jpeglib.h needs FILE and size_t declared first
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

namespace ff {

namespace {

// A marker segment's length field counts its own two bytes, so a segment holds 65533 bytes.
constexpr int MaxSegmentBytes = 65533;
// The compressor's limit on the eight-by-eight blocks of one unit (ISO/IEC 10918-1, B.2.3).
constexpr int MaxBlocksInUnit = C_MAX_BLOCKS_IN_MCU;

const char MakerLine[] = "Made with Flatform";

// libjpeg's own error handler ends the process; this one keeps the message and jumps back to
// the call that started the work.
struct ErrorManager {
    jpeg_error_mgr base; // first member: libjpeg hands back a pointer to it
    std::jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
};

void jumpBack(j_common_ptr cinfo)
{
    auto *errors = reinterpret_cast<ErrorManager *>(cinfo->err);
    (*cinfo->err->format_message)(cinfo, errors->message);
    std::longjmp(errors->jump, 1);
}

// Warnings (such as a corrupt-data notice) are not printed to stderr by a library.
void keepQuiet(j_common_ptr) {}

struct EncodeJob {
    const unsigned char *pixels; // RGB, three bytes a pixel
    int width;
    int height;
    qsizetype bytesPerLine;
    int quality;
    std::array<int, 6> sampling;
    const unsigned char *comment;
    unsigned int commentLength;
};

// Only plain data lives in this frame, because a failure inside libjpeg comes back here through
// longjmp. *out is libjpeg's buffer, which the caller frees whether or not the work succeeded.
bool runLibjpeg(const EncodeJob &job, unsigned char **out, unsigned long *outSize, char *message)
{
    jpeg_compress_struct cinfo = {};
    ErrorManager errors = {};
    cinfo.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = jumpBack;
    errors.base.output_message = keepQuiet;
    if (setjmp(errors.jump)) {
        jpeg_destroy_compress(&cinfo);
        std::memcpy(message, errors.message, JMSG_LENGTH_MAX);
        return false;
    }
    jpeg_create_compress(&cinfo);
    jpeg_mem_dest(&cinfo, out, outSize);

    cinfo.image_width = static_cast<JDIMENSION>(job.width);
    cinfo.image_height = static_cast<JDIMENSION>(job.height);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    // Defaults first: they bring the JFIF header, YCbCr and the standard Huffman tables. The
    // quality scales the standard tables afterwards, held to 1..255 for a baseline file; the
    // sampling factors come last, because the defaults would reset them.
    jpeg_set_defaults(&cinfo);
    cinfo.dct_method = JDCT_FLOAT;
    cinfo.optimize_coding = FALSE;
    jpeg_set_quality(&cinfo, job.quality, TRUE);
    for (int c = 0; c < 3; ++c) {
        cinfo.comp_info[c].h_samp_factor = job.sampling[static_cast<size_t>(2 * c)];
        cinfo.comp_info[c].v_samp_factor = job.sampling[static_cast<size_t>(2 * c + 1)];
    }

    jpeg_start_compress(&cinfo, TRUE); // SOI and APP0
    // The comment goes after the JFIF header and before the tables, which the first scan line
    // brings.
    jpeg_write_marker(&cinfo, JPEG_COM, job.comment, job.commentLength);

    constexpr int RowsAtOnce = 16;
    JSAMPROW rows[RowsAtOnce];
    while (cinfo.next_scanline < cinfo.image_height) {
        const JDIMENSION first = cinfo.next_scanline;
        const JDIMENSION count = std::min<JDIMENSION>(RowsAtOnce, cinfo.image_height - first);
        for (JDIMENSION i = 0; i < count; ++i)
            rows[i] = const_cast<JSAMPROW>(job.pixels + static_cast<qsizetype>(first + i) * job.bytesPerLine);
        jpeg_write_scanlines(&cinfo, rows, count);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    return true;
}

Error encodeError(const QString &text) { return makeError(ErrorCode::Invalid, text); }

} // namespace

JpegEncoder::JpegEncoder()
    : applicationTitle_(QCoreApplication::applicationName())
{
    if (applicationTitle_.isEmpty())
        applicationTitle_ = QStringLiteral("Flatform");
}

void JpegEncoder::SetQuality(int quality)
{
    if (quality > 100 || quality <= 0)
        return;
    quality_ = quality;
}

Status JpegEncoder::SetSamplingFrequencies(int h1, int v1, int h2, int v2, int h3, int v3)
{
    const std::array<int, 6> factors{h1, v1, h2, v2, h3, v3};
    for (int f : factors) {
        if (f < 1 || f > 4)
            return encodeError(QStringLiteral("Invalid Sampling Value"));
    }
    const int blocks = h1 * v1 + h2 * v2 + h3 * v3;
    if (blocks > MaxBlocksInUnit)
        return encodeError(QStringLiteral("Sampling factors %1x%2, %3x%4, %5x%6 need %7 blocks in one unit; "
                                          "a baseline JPEG file holds at most %8")
                               .arg(h1).arg(v1).arg(h2).arg(v2).arg(h3).arg(v3).arg(blocks).arg(MaxBlocksInUnit));
    const int maxH = std::max({h1, h2, h3});
    const int maxV = std::max({v1, v2, v3});
    for (size_t c = 0; c < 3; ++c) {
        const int h = factors[2 * c];
        const int v = factors[2 * c + 1];
        if (maxH % h != 0 || maxV % v != 0)
            return encodeError(QStringLiteral("Sampling factors %1x%2 of component %3 do not divide the largest "
                                              "factors %4x%5")
                                   .arg(h).arg(v).arg(c + 1).arg(maxH).arg(maxV));
    }
    sampling_ = factors;
    return {};
}

Status JpegEncoder::SetComment(const QString &comment)
{
    if (comment.size() > MaxCommentLength)
        return encodeError(QStringLiteral("Illegal Comment Length"));
    comment_ = comment;
    return {};
}

QByteArray JpegEncoder::commentSegment() const
{
    const QByteArray lineEnd("\r\n");
    QByteArray segment;
    if (!comment_.isEmpty())
        segment += comment_.toUtf8() + lineEnd;
    segment += QByteArray("JPEG") + lineEnd + applicationTitle_.toUtf8() + lineEnd + QByteArray(MakerLine);
    return segment;
}

void JpegEncoder::SampleImage(const QImage &image, QSize size)
{
    if (image.isNull()) {
        pixels_ = QImage();
        return;
    }
    QImage source = image;
    if (size.isValid() && !size.isEmpty() && size != image.size())
        source = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (source.hasAlphaChannel()) {
        QImage flat(source.size(), QImage::Format_RGB32);
        flat.fill(Qt::white);
        QPainter painter(&flat);
        painter.drawImage(0, 0, source);
        painter.end();
        source = flat;
    }
    pixels_ = source.convertToFormat(QImage::Format_RGB888);
}

Result<QByteArray> JpegEncoder::encode() const
{
    if (pixels_.isNull())
        return encodeError(QStringLiteral("There is no picture to encode."));
    if (pixels_.width() > JPEG_MAX_DIMENSION || pixels_.height() > JPEG_MAX_DIMENSION)
        return encodeError(QStringLiteral("A picture of %1 x %2 pixels is too large for a JPEG file (at most %3 a side).")
                               .arg(pixels_.width()).arg(pixels_.height()).arg(JPEG_MAX_DIMENSION));
    const QByteArray comment = commentSegment();
    if (comment.size() > MaxSegmentBytes)
        return encodeError(QStringLiteral("Illegal Comment Length"));

    const EncodeJob job{pixels_.constBits(), pixels_.width(), pixels_.height(), pixels_.bytesPerLine(),
                        quality_, sampling_, reinterpret_cast<const unsigned char *>(comment.constData()),
                        static_cast<unsigned int>(comment.size())};
    unsigned char *out = nullptr;
    unsigned long outSize = 0;
    char message[JMSG_LENGTH_MAX] = {};
    const bool done = runLibjpeg(job, &out, &outSize, message);
    QByteArray bytes;
    if (done)
        bytes = QByteArray(reinterpret_cast<const char *>(out), static_cast<qsizetype>(outSize));
    std::free(out);
    if (!done)
        return encodeError(QStringLiteral("The picture could not be encoded: %1").arg(QString::fromLocal8Bit(message)));
    return bytes;
}

Status JpegEncoder::SaveFile(const QString &fileName) const
{
    Result<QByteArray> bytes = encode();
    if (!bytes)
        return bytes.error();
    // The file appears whole or not at all: a failed write leaves an earlier file as it was.
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit())
        return makeError(ErrorCode::PathError,
                         QStringLiteral("Cannot write %1: %2").arg(fileName, file.errorString()));
    return {};
}

} // namespace ff
