#pragma once
// Stores the pictures of an import: reads the source file, fits it into the picture field with
// the ratio kept (the picture library's defaults, resize and keep the ratio, both on), and saves
// it as a JPEG at the encoder's default quality in the record picture folder, under the name made
// from the picture number.

#include "export/ImportPictureSink.h"

#include <QSize>

namespace ff {

class JpegPictureSink : public ImportPictureSink {
public:
    // A screen pixel of the page is 15 twips (96 pixels an inch).
    static constexpr int TwipsPerPixel = 15;

    Result<QString> storePicture(const ImportedPicture &picture) override;

    // The last seven characters of "0000000" and the number, then ".jpg": 42 -> "0000042.jpg".
    static QString pictureName(int32_t number);
    // The field's size on the page in whole pixels.
    static QSize fieldPixels(int widthTwips, int heightTwips);
    // The path of `name` inside `folder`, or an error when the name is empty, is "." or "..", or
    // holds a separator, so that nothing is ever written outside the folder.
    static Result<QString> pathInFolder(const QString &folder, const QString &name);
};

} // namespace ff
