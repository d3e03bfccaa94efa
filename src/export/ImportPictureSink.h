#pragma once
// What the import asks of whoever stores pictures: read a picture file, fit it into a picture
// field and save it in the record picture folder as a JPEG under a given picture number. The
// JPEG encoder lives in the rendering tier, above this library, so the import holds only this
// interface; the programs hand it an implementation (or none: then picture columns are skipped).

#include "core/Result.h"

#include <QString>

namespace ff {

struct ImportedPicture {
    QString source;        // the file the import row names
    QString folder;        // the record picture folder, with a trailing separator
    int widthTwips = 0;    // the picture field's size on the page
    int heightTwips = 0;
    int32_t number = 0;    // the picture number to store under (NextPictureNumber after its rise)
};

class ImportPictureSink {
public:
    virtual ~ImportPictureSink() = default;
    // The stored name (the seven-digit number and ".jpg"), or an error when the source cannot be
    // read as a picture or the file cannot be written; nothing is written then.
    virtual Result<QString> storePicture(const ImportedPicture &picture) = 0;
};

} // namespace ff
