#pragma once
// Builds an app image from one of the shipped example designs into a folder, the way
// flatform-build does, with a head of varied bytes standing in for the run-time.

#include "design/DesignJson.h"
#include "design/DesignReader.h"
#include "design/DesignWriter.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <functional>

namespace fftest {

inline QString examplePath(const QString &relative)
{
    return QDir(QString::fromLocal8Bit(qgetenv("FLATFORM_SOURCE_DIR"))).filePath(QStringLiteral("examples/") + relative);
}

struct ExampleImage {
    QByteArray bytes;
    qsizetype headSize = 0;
    QString path; // where the image was written, when a folder was given
};

// `name` is "contacts" or "invoice"; the image is written to `folder`/<name>.exe when given.
// `adjust`, when given, changes the design before it is written.
inline ExampleImage buildExample(const QString &name, const QString &folder = QString(),
                                 const std::function<void(ff::Design &)> &adjust = {})
{
    QFile json(examplePath(name + QLatin1Char('/') + name + QStringLiteral(".json")));
    if (!json.open(QIODevice::ReadOnly))
        qFatal("cannot open the example %s", qPrintable(name));
    auto design = ff::DesignJson::fromText(json.readAll());
    if (!design)
        qFatal("example %s: %s", qPrintable(name), qPrintable(design.error().text));
    if (adjust)
        adjust(*design);
    ff::DesignWriter::Files files;
    const QDir dir(examplePath(name));
    for (const QString &file : dir.entryList({QStringLiteral("*.gif")}, QDir::Files)) {
        QFile f(dir.filePath(file));
        if (f.open(QIODevice::ReadOnly))
            files.insert(file, f.readAll());
    }
    QByteArray head(8192, '\0');
    QRandomGenerator rng(7);
    for (auto &b : head)
        b = static_cast<char>(rng.bounded(256));
    auto image = ff::DesignWriter::writeImage(*design, head, files);
    if (!image)
        qFatal("writing the image failed: %s", qPrintable(image.error().text));
    ExampleImage out{*image, head.size(), QString()};
    if (!folder.isEmpty()) {
        out.path = QDir(folder).filePath(name + QStringLiteral(".exe"));
        QFile f(out.path);
        if (!f.open(QIODevice::WriteOnly) || f.write(out.bytes) != out.bytes.size())
            qFatal("cannot write the image");
    }
    return out;
}

inline ff::DesignLoad loadImage(const QString &path)
{
    ff::DesignReadOptions options;
    options.extractFolder = QFileInfo(path).absolutePath();
    return ff::ReadDesign(path, options);
}

} // namespace fftest
