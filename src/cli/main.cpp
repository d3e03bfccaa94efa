// flatform-cli: the engine without a window, one verb per command. The verbs live in ff_cli.

#include "cli/CommandLine.h"
#include "design/WorkingLocale.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
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
