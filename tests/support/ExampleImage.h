#pragma once
// Builds an app image from one of the shipped example designs into a folder, the way
// flatform-build does, with a head of varied bytes standing in for the run-time.

#include "design/DesignReader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace ff::testsupport {

// A file of examples/ in the source tree.
QString examplePath(const QString &relative);

struct ExampleImage {
    QByteArray bytes;
    qsizetype headSize = 0;
    QString path; // where the image was written, when a folder was given
};

// `name` is "contacts" or "invoice"; the image is written to `folder`/<name>.exe when given.
// `edit` may change the design first (names for fields, a button's lines).
ExampleImage buildExample(const QString &name, const QString &folder = QString(),
                          const std::function<void(Design &)> &edit = {});

// Puts the example's sample records (examples/<name>/records.tsv) into the image's data file, as
// scripts/demo.sh does, through flatform-cli. An empty text, or why it failed.
QString loadSamples(const QString &name, const QString &imagePath);
// The column `column` (named in the head row) of example `name`'s sample records, one value a record.
QStringList sampleColumn(const QString &name, const QString &column);

// Reads an image's design as the program does on start, its files extracted beside it.
DesignLoad loadImage(const QString &path);

} // namespace ff::testsupport
