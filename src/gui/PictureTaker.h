#pragma once
// Brings a picture into a per-record picture field: reads the file (or takes the clipboard's
// picture), fits it into the field or keeps it as it is, saves it in the record picture folder
// under the database's next picture number, deletes the field's former file, and puts the new
// name in the record, which then counts as changed. A source that is not a picture changes nothing.

#include "core/Result.h"

#include <QImage>
#include <QSize>
#include <QString>

namespace ff {
class Page;
class RecordStore;
} // namespace ff

namespace ff::gui {

class PictureTaker {
public:
    struct Options {
        bool resize = true;    // fit into the field (a JPEG of the field's size)
        bool keepRatio = true; // one factor for both axes, centred
    };

    PictureTaker(RecordStore &store, Page &page);

    // Whether `field` is a picture field whose picture the record holds.
    bool isRecordPicture(int field) const;
    // The field's size on the page in pixels, the size a resized picture gets.
    QSize fieldPixels(int field) const;
    // The file the field shows now; empty when it has none.
    QString currentFile(int field) const;

    // The name the record now holds, or an error that says why nothing was stored.
    Result<QString> takeFile(int field, const QString &source, Options options);
    // The clipboard's picture: always saved as a JPEG.
    Result<QString> takeImage(int field, const QImage &picture, Options options);
    // Deletes the field's file and empties its name.
    Status removePicture(int field);

private:
    Result<QString> store(int field, const QImage &picture, const QString &source, Options options);
    Status mayChange(int field);

    RecordStore &store_;
    Page &page_;
};

} // namespace ff::gui
