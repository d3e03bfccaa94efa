#pragma once
// dump-design IMAGE: prints an app image's design as the readable design file.

#include "cli/Command.h"

namespace ff::cli {

class DumpDesignCommand : public Command {
public:
    DumpDesignCommand();

protected:
    int execute(const QCommandLineParser &parser, const QStringList &arguments, CommandIo &io) override;
};

} // namespace ff::cli
