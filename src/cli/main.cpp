// flatform-cli: the engine without a window, one verb per command.

#include "cli/Command.h"
#include "design/WorkingLocale.h"

#include <QCoreApplication>
#include <QLocale>

namespace ff::cli {
std::vector<CommandFactory> &commandRegistry()
{
    static std::vector<CommandFactory> registry;
    return registry;
}
} // namespace ff::cli

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ff::UseWorkingLocale();
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments().mid(1);

    std::vector<std::unique_ptr<ff::cli::Command>> commands;
    for (const auto &factory : ff::cli::commandRegistry())
        commands.push_back(factory());

    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        QTextStream &to = args.isEmpty() ? err : out;
        to << "usage: flatform-cli VERB ...\n";
        for (const auto &c : commands)
            to << "  flatform-cli " << c->usage() << "\n";
        return args.isEmpty() ? 2 : 0;
    }
    const QString verb = args.takeFirst();
    for (const auto &c : commands) {
        if (c->name() == verb) {
            const int rc = c->run(args, out, err);
            out.flush();
            err.flush();
            return rc;
        }
    }
    err << "flatform-cli: unknown verb \"" << verb << "\" (try --help)\n";
    return 2;
}
