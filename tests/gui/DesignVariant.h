#pragma once
// An app image of the shipped contacts design with some of its settings changed, written into a
// folder with the example's pictures, and a main window over it.

#include "design/AppPaths.h"
#include "gui/MainWindow.h"
#include "support/ExampleImage.h"

#include <functional>
#include <memory>

namespace ff::testsupport {

// Writes <folder>/contacts.exe from the contacts design after `change` and returns its path.
inline QString buildContactsVariant(const QString &folder, const std::function<void(Design &)> &change)
{
    return buildExample(QStringLiteral("contacts"), folder, change).path;
}

inline std::unique_ptr<gui::MainWindow> openWindow(const QString &imagePath)
{
    DesignLoad load = loadImage(imagePath);
    if (!load.complete())
        qFatal("the variant did not read back: %s", qPrintable(load.error.text));
    return std::make_unique<gui::MainWindow>(ParseCommandLine(imagePath, {}), std::move(load));
}

} // namespace ff::testsupport
