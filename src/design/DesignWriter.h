#pragma once
// Turns a Design into the block that the reader takes back: the items in the block's fixed order,
// then the 4-byte tail distance. Used by the builder and by tests.

#include "core/Result.h"
#include "design/Design.h"

#include <QByteArray>
#include <QMap>
#include <QString>

namespace ff {

class DesignWriter {
public:
    // Embedded files by name (picture files and the background picture): every non-empty name in
    // the design needs its data here.
    using Files = QMap<QString, QByteArray>;

    // The block and its tail for an image that starts with `head`: the texts' salts come from
    // head's bytes at positions 102, 104, ... (1-based), so the result must be appended to exactly
    // that head. Element counts come from the vectors; labels count up to the last one whose
    // `present` is true. Skipped items of the order are written as 0 and as empty texts.
    static Result<QByteArray> writeBlock(const Design &design, const QByteArray &head, const Files &files);

    // head + block + tail.
    static Result<QByteArray> writeImage(const Design &design, const QByteArray &head, const Files &files);

    // Sets the count members (ShapeCount, ..., ButtonCount) from the element vectors, as the block
    // will carry them.
    static void setCounts(Design &design);

    // What the block cannot hold: counts past their widths, more than 53 pictures.
    static Status check(const Design &design);
};

} // namespace ff
