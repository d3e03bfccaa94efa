#pragma once
// The verbs of flatform-cli and the step from a command line to one of them. main() hands over
// the process's streams; tests hand over buffers and run verbs in their own process.

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace ff::cli {

// Every verb, in the order --help lists them.
std::vector<std::unique_ptr<Command>> allCommands();

// `arguments`: what follows the program's name ("records", "contacts.exe", "list"). The exit code.
int runCommandLine(const QStringList &arguments, CommandIo &io);

} // namespace ff::cli
