#pragma once
// The file of a record's picture. A record keeps eight characters of the picture's name, which
// for a numbered picture is its number without the extension ("0000001" for "0000001.jpg"): the
// name is looked up as it stands, then as a JPEG, then with any other extension. Names that would
// leave the folder ("..", a slash) find nothing.

#include <QString>

namespace ff {

// The path of the picture `recordName` in `folder`, or an empty text for no picture. The path
// may not exist (a picture deleted by hand): callers load what is there.
QString RecordPictureFile(const QString &folder, const QString &recordName);

} // namespace ff
