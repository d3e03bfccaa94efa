// flatform-cli: the engine without a window, one verb per command. The verbs live in ff_cli.

#include "cli/CommandLine.h"
#include "design/WorkingLocale.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstring>
#include <memory>

#include <unistd.h>

int main(int argc, char **argv)
{
    // The print and mail verbs and the web and PDF kinds of the export verb draw pages and measure text: that needs Qt Gui's fonts and
    // pictures, so they get a QGuiApplication, on the offscreen platform unless one is named,
    // because a command line tool must run without a display. Everything else keeps the lighter
    // core application and its quicker start. (An argument that merely looks like a web kind
    // costs only that start.)
    // The print verb draws every time.
    bool drawing = argc > 1 && (std::strcmp(argv[1], "print") == 0 || std::strcmp(argv[1], "mail") == 0);
    // The chart verb draws only with --png.
    if (argc > 1 && std::strcmp(argv[1], "chart") == 0) {
        for (int i = 2; i < argc; ++i)
            drawing = drawing || std::strcmp(argv[i], "--png") == 0 || std::strncmp(argv[i], "--png=", 6) == 0;
    }
    if (argc > 1 && std::strcmp(argv[1], "export") == 0) {
        for (int i = 2; i < argc; ++i)
            drawing = drawing || std::strcmp(argv[i], "html") == 0 || std::strcmp(argv[i], "htm") == 0
                      || std::strcmp(argv[i], "pdf") == 0 || std::strcmp(argv[i], "pdfs") == 0
                      || std::strcmp(argv[i], "php") == 0;
    }
    if (drawing && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (drawing && qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        // The folder Qt would fall back to, without its warning on every run.
        const QByteArray runtime = QDir::tempPath().toLocal8Bit() + "/runtime-" + QByteArray::number(getuid());
        if (QDir().mkpath(QString::fromLocal8Bit(runtime)))
            QFile::setPermissions(QString::fromLocal8Bit(runtime), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", runtime);
    }
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
