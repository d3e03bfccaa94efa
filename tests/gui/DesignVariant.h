#pragma once
// An app image of the shipped contacts design with some of its settings changed, written into a
// folder with the example's pictures, and a main window over it.

#include "ExampleImage.h"
#include "design/AppPaths.h"
#include "gui/MainWindow.h"

#include <functional>
#include <memory>

namespace fftest {

// Writes <folder>/contacts.exe from the contacts design after `change` and returns its path.
inline QString buildContactsVariant(const QString &folder, const std::function<void(ff::Design &)> &change)
{
    QFile json(examplePath(QStringLiteral("contacts/contacts.json")));
    if (!json.open(QIODevice::ReadOnly))
        qFatal("cannot open the contacts example");
    auto design = ff::DesignJson::fromText(json.readAll());
    if (!design)
        qFatal("contacts example: %s", qPrintable(design.error().text));
    change(*design);
    ff::DesignWriter::Files files;
    const QDir dir(examplePath(QStringLiteral("contacts")));
    for (const QString &file : dir.entryList({QStringLiteral("*.gif")}, QDir::Files)) {
        QFile f(dir.filePath(file));
        if (f.open(QIODevice::ReadOnly))
            files.insert(file, f.readAll());
    }
    auto image = ff::DesignWriter::writeImage(*design, QByteArray(4096, 'x'), files);
    if (!image)
        qFatal("writing the image failed: %s", qPrintable(image.error().text));
    const QString path = QDir(folder).filePath(QStringLiteral("contacts.exe"));
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(*image) != image->size())
        qFatal("cannot write the image");
    return path;
}

inline std::unique_ptr<ff::gui::MainWindow> openWindow(const QString &imagePath)
{
    ff::DesignLoad load = loadImage(imagePath);
    if (!load.complete())
        qFatal("the variant did not read back: %s", qPrintable(load.error.text));
    return std::make_unique<ff::gui::MainWindow>(ff::ParseCommandLine(imagePath, {}), std::move(load));
}

} // namespace fftest
