// flatform: the desktop run-time. The design comes from the block at the tail of the app image;
// with no block it opens an empty window that says so.

#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "gui/MainWindow.h"

#include <QApplication>
#include <QFileInfo>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Flatform"));

    ff::AppPaths paths = ff::ParseCommandLine(QApplication::applicationFilePath(), app.arguments().mid(1));
    // The image is the program itself unless the command line names another one.
    QString image = paths.imagePath();
    if (!QFileInfo::exists(image))
        image = QApplication::applicationFilePath();
    ff::DesignReadOptions options;
    options.extractFolder = paths.AppFolder;
    ff::DesignLoad load = ff::ReadDesign(image, options);

    ff::gui::MainWindow window(paths, std::move(load));
    window.show();
    return app.exec();
}
