// flatform-cli: the engine without a window, one verb per command. The verbs live in ff_cli.

#include "cli/CommandLine.h"
#include "design/WorkingLocale.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstring>
#include <memory>

int main(int argc, char **argv)
{
    // The export verb draws pages and measures text for the web pages: that needs Qt Gui's fonts
    // and pictures, so it gets a QGuiApplication, on the offscreen platform unless one is named,
    // because a command line tool must run without a display. The other verbs keep the lighter
    // core application and its quicker start.
    const bool drawing = argc > 1 && std::strcmp(argv[1], "export") == 0;
    if (drawing && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::unique_ptr<QCoreApplication> application =
        drawing ? std::make_unique<QGuiApplication>(argc, argv) : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication &app = *application;
    ff::UseWorkingLocale();
    QTextStream out(stdout);
    QTextStream err(stderr);
    QFile in;
    if (!in.open(0, QIODevice::ReadOnly)) // descriptor 0: plain reads of what has come, no stdio buffer
        err << "flatform-cli: standard input cannot be read\n";
    ff::cli::CommandIo io{out, err, in.isOpen() ? &in : nullptr};
    const int code = ff::cli::runCommandLine(app.arguments().mid(1), io);
    out.flush();
    err.flush();
    return code;
}
