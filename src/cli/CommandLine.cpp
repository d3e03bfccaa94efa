#include "cli/CommandLine.h"

#include "cli/DumpDesignCommand.h"
#include "cli/EvalCommand.h"
#include "cli/ExportCommand.h"
#include "cli/FormulasCommand.h"
#include "cli/ImportCommand.h"
#include "cli/MailCommand.h"
#include "cli/PrintCommand.h"
#include "cli/ChartCommand.h"
#include "cli/RecordsCommand.h"
#include "cli/SearchCommand.h"
#include "cli/SortCommand.h"

namespace ff::cli {

std::vector<std::unique_ptr<Command>> allCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<DumpDesignCommand>());
    commands.push_back(std::make_unique<RecordsCommand>());
    commands.push_back(std::make_unique<FormulasCommand>());
    commands.push_back(std::make_unique<EvalCommand>());
    commands.push_back(std::make_unique<SearchCommand>());
    commands.push_back(std::make_unique<SortCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<ImportCommand>());
    commands.push_back(std::make_unique<PrintCommand>());
    commands.push_back(std::make_unique<MailCommand>());
    commands.push_back(std::make_unique<ChartCommand>());
    return commands;
}

static void listVerbs(QTextStream &to, const std::vector<std::unique_ptr<Command>> &commands)
{
    to << "Usage: flatform-cli VERB ARGUMENTS... [options]\n"
          "The engine of Flatform without a window. \"flatform-cli VERB --help\" describes a verb.\n\nVerbs:\n";
    for (const auto &c : commands)
        to << "  " << c->usage().mid(int(sizeof "flatform-cli")) << "\n      "
           << c->description().section(QLatin1Char('\n'), 0, 0) << "\n";
}

int runCommandLine(const QStringList &arguments, CommandIo &io)
{
    const std::vector<std::unique_ptr<Command>> commands = allCommands();
    if (arguments.isEmpty() || arguments.first() == QLatin1String("--help") || arguments.first() == QLatin1String("-h")) {
        // Asked for, the list is the output; without a verb it is the usage error's text.
        listVerbs(arguments.isEmpty() ? io.err : io.out, commands);
        return arguments.isEmpty() ? 2 : 0;
    }
    for (const auto &c : commands)
        if (c->name() == arguments.first())
            return c->run(arguments.mid(1), io);
    io.err << "flatform-cli: unknown verb \"" << arguments.first() << "\" (try --help)\n";
    return 2;
}

} // namespace ff::cli
