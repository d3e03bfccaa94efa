#include "cli/DumpDesignCommand.h"

#include "design/DesignJson.h"
#include "design/DesignReader.h"

namespace ff::cli {

DumpDesignCommand::DumpDesignCommand()
    : Command(QStringLiteral("dump-design"), QStringLiteral("IMAGE"),
              QStringLiteral("Prints the design of an app image as the readable design file (JSON)."))
{
}

int DumpDesignCommand::execute(const QCommandLineParser &, const QStringList &args, CommandIo &io)
{
    if (args.size() != 1)
        return usageError(io);
    // No extraction folder: a dump never writes the embedded files.
    const DesignLoad load = ReadDesign(args.first(), DesignReadOptions{});
    if (!load.complete()) {
        io.err << name() << ": " << args.first() << ": " << load.error.text << "\n";
        return 1;
    }
    io.out << QString::fromUtf8(DesignJson::toText(load.design));
    return 0;
}

} // namespace ff::cli
