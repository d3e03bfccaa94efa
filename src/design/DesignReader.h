#pragma once
// Reads the design block at the tail of an app image, item by item in the block's fixed order.

#include "core/Result.h"
#include "design/Design.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace ff {

struct DesignLoad {
    Design design;
    Error error;          // ErrorCode::None when the whole block was read
    qint64 blockStart = 0; // 0-based offset of the block's first byte in the image
    qint64 blockEnd = 0;   // where reading stopped
    QStringList extractedFiles;             // embedded files written into the extraction folder
    QStringList refusedFiles;               // embedded names that would land outside it, skipped
    QMap<QString, QByteArray> embeddedFiles; // name → data, only with DesignReadOptions::collectFiles
    bool complete() const { return error.code == ErrorCode::None; }
};

struct DesignReadOptions {
    // Folder that embedded files are extracted into when absent (normally the app's own folder).
    // Empty: embedded files are skipped, nothing is written.
    QString extractFolder;
    // Keep the data of every embedded file in DesignLoad::embeddedFiles (tests, tools).
    bool collectFiles = false;
};

// Reads the design of the app image at `imagePath`. Never throws and never fails to return a
// design: on a damaged block it returns what it had read, with `error` saying what went wrong.
DesignLoad ReadDesign(const QString &imagePath, const DesignReadOptions &options = {});

// The same over an image already in memory (tests and fuzzing).
DesignLoad ReadDesignFromBytes(const QByteArray &image, const DesignReadOptions &options = {});

// The values the loader derives from what it read: PageCount, HasRecordPictures, MaxLength 10 for
// field type 23, FieldNoSearch 1 for global fields, a shape border width of 0 taken as 1, and the
// label table padded to indexes 0 to 5.
void DeriveDesignValues(Design &design);

} // namespace ff
