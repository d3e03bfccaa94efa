#pragma once
// Fitting a picture into a picture field, as the picture library does when it stores a picture
// and the import does for each picture it brings in.
//
// With the ratio kept, one factor serves both axes: the one that brings the whole picture inside
// the field (a small picture grows, a large one shrinks). The scaled picture is centred, its
// offset half the difference of the sizes, and the rest of the field is the background. Without
// the ratio each axis is stretched by itself to the field's size.

#include <QColor>
#include <QImage>
#include <QRect>
#include <QSize>

namespace ff {

enum class FitMode {
    KeepRatio, // one factor for both axes, centred
    Stretch,   // each axis to the field's size
};

class PictureFit {
public:
    // Where the picture lands inside a target of the given size; an empty rectangle when either
    // size is empty. A scaled side is never less than one pixel.
    static QRect placement(QSize source, QSize target, FitMode mode);

    // The picture fitted into a new image of the target size, laid on the background (which also
    // shows through any transparency). A null image when the source is null or the target empty.
    static QImage fit(const QImage &source, QSize target, FitMode mode, const QColor &background = Qt::white);
};

} // namespace ff
