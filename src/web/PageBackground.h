#pragma once
// The picture behind a page of the web pages: what the window paints under the controls of a
// page (its back colour, the design's tiled background picture, shapes, lines, the frames of
// fields, notes and combos) and the buttons, drawn at 96 dpi, one pixel for 15 twips. Saved as
// "Background<page>.jpg" through the JPEG encoder.

#include "core/Result.h"
#include "design/Design.h"

#include <QImage>
#include <QString>

namespace ff::web {

class PageBackground {
public:
    // `pictureFolder`: where the design's picture files are (the app's folder).
    PageBackground(const Design &design, const QString &pictureFolder) : design_(design), folder_(pictureFolder) {}

    QImage render(int page) const;
    // SaveBackground: page `page` as `path`, a JPEG file.
    Status SaveBackground(int page, const QString &path) const;

private:
    const Design &design_;
    QString folder_;
};

} // namespace ff::web
