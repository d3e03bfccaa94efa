// Times the JPEG encoding of one printed page: 1700 x 2200 pixels (a letter page at 200 dpi),
// mostly white with lines of dark strokes like text, a few coloured boxes and a photograph-like
// gradient. Each figure is the median of 20 runs after one unmeasured run.
//
//   ff_jpeg_bench [runs]

#include "pdfmail/JpegEncoder.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

QImage makePage()
{
    QImage page(1700, 2200, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    QRandomGenerator random(1234);
    // Lines of "words": short dark strokes of varying width.
    for (int y = 150; y < 1500; y += 34) {
        for (int x = 150; x < 1550;) {
            const int word = 20 + int(random.bounded(90));
            painter.fillRect(x, y, std::min(word, 1550 - x), 18, QColor(20, 20, 30));
            x += word + 12;
        }
    }
    painter.fillRect(150, 1550, 400, 120, QColor(200, 40, 40));
    painter.fillRect(600, 1550, 400, 120, QColor(40, 160, 60));
    painter.fillRect(1050, 1550, 400, 120, QColor(30, 60, 200));
    painter.end();
    // A picture: smooth colour with a little noise.
    for (int y = 1750; y < 2100; ++y) {
        auto *line = reinterpret_cast<QRgb *>(page.scanLine(y));
        for (int x = 150; x < 1550; ++x) {
            const int noise = int(random.bounded(16));
            line[x] = qRgb((x / 6 + noise) & 255, (y / 3 + noise) & 255, int(128 + 100 * std::sin(x * 0.01)));
        }
    }
    return page;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

} // namespace

int main(int argc, char **argv)
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const QImage page = makePage();
    ff::JpegEncoder encoder; // quality 75, sampling 2x2, 1x1, 1x1

    std::vector<double> sampled;
    std::vector<double> encoded;
    qsizetype bytes = 0;
    for (int run = 0; run <= runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        encoder.SampleImage(page);
        const qint64 afterSample = timer.nsecsElapsed();
        ff::Result<QByteArray> file = encoder.encode();
        const qint64 afterEncode = timer.nsecsElapsed();
        if (!file) {
            std::fprintf(stderr, "encoding failed: %s\n", qPrintable(file.error().text));
            return 1;
        }
        bytes = file->size();
        if (run == 0)
            continue; // warm-up
        sampled.push_back(afterSample / 1e6);
        encoded.push_back((afterEncode - afterSample) / 1e6);
    }
    std::vector<double> total(sampled.size());
    for (size_t i = 0; i < total.size(); ++i)
        total[i] = sampled[i] + encoded[i];
    std::printf("page 1700x2200, quality %d, sampling 2x2,1x1,1x1, %lld bytes, median of %d runs\n",
                encoder.Quality(), static_cast<long long>(bytes), runs);
    std::printf("take pixels (RGB32 -> RGB888): %7.2f ms\n", median(sampled));
    std::printf("encode:                        %7.2f ms\n", median(encoded));
    std::printf("both:                          %7.2f ms\n", median(total));
    return 0;
}
