#pragma once
// Names and numbers of the pictures a user brings into a record's picture fields.
//
// Each stored picture takes the next picture number of the database, NextPictureNumber, kept as a
// 4-byte little-endian number at position 10 of the first data file, and is saved in the record
// picture folder under a name made from it:
//   - resized (or from the clipboard): the number in seven digits and ".jpg" ("0000042.jpg");
//   - kept as it is, a JPEG: the same name, the file copied;
//   - kept as it is, another type: the number in at least four digits and the last four characters
//     of the source's name ("0042.gif").
// The record holds eight characters of the name: a longer name is held without its extension,
// and a name without an extension stands for the ".jpg" file of that name.

#include "core/Result.h"

#include <QString>

namespace ff {

class PictureNaming {
public:
    static constexpr int RecordNameLength = 8;

    // The file name of picture `number`; `resized` or a JPEG source (or none: the clipboard) give
    // the seven-digit JPEG name.
    static QString storedName(int32_t number, bool resized, const QString &sourceName = QString());
    // Whether the name is that of a JPEG file, by its extension.
    static bool isJpegName(const QString &name);
    // What the record keeps of a stored file name.
    static QString recordName(const QString &fileName);
    // The file a record's name stands for in `folder`: the name itself when such a file exists,
    // else for a name without an extension its ".jpg" file, or a file of that name with another
    // extension (a long name of a picture kept in its own type). Empty for an empty name or one that would
    // leave the folder.
    static QString filePath(const QString &folder, const QString &recordName);

    // NextPictureNumber as the first data file holds it now (other users may have raised it).
    static Result<int32_t> readNextNumber(const QString &firstDataFile);
    // Written only when the header slot (the first `recordLength` bytes) has room for it.
    static Status writeNextNumber(const QString &firstDataFile, int recordLength, int32_t number);
};

} // namespace ff
