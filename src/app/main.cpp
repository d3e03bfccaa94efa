// flatform: the desktop run-time. The design comes from the block at the tail of the app image;
// with no block it opens an empty window that says so.

#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "design/WorkingLocale.h"
#include "gui/MainWindow.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Flatform"));
    ff::UseWorkingLocale();

    ff::AppPaths paths = ff::ParseCommandLine(QApplication::applicationFilePath(), app.arguments().mid(1));
    // The image is the program itself unless the command line names another one.
    QString image = paths.imagePath();
    if (!QFileInfo::exists(image))
        image = QApplication::applicationFilePath();

    // One running copy per app image and user: a second start ends at once.
    QString lockFolder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (lockFolder.isEmpty())
        lockFolder = QDir::tempPath();
    const QByteArray key = QCryptographicHash::hash(QFileInfo(image).absoluteFilePath().toUtf8(),
                                                    QCryptographicHash::Sha1).toHex().left(16);
    QLockFile instance(QDir(lockFolder).filePath(QStringLiteral("flatform-%1.lock").arg(QString::fromLatin1(key))));
    instance.setStaleLockTime(0);
    if (!instance.tryLock(0)) {
        std::fprintf(stderr, "flatform: %s is already running\n", qPrintable(QFileInfo(image).fileName()));
        return 0;
    }

    ff::DesignReadOptions options;
    options.extractFolder = paths.AppFolder;
    ff::DesignLoad load = ff::ReadDesign(image, options);

    ff::gui::MainWindow window(paths, std::move(load));
    if (!window.started())
        return 0;
    window.show();
    return app.exec();
}
