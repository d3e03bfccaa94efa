#pragma once
// eval [EXPR...]: the formula evaluator on its own, for scripts and for checking stored formulas.
// The words after the verb are one expression, also when it starts with a minus ("eval -5+2");
// with none, one expression per input line and one result line for each.

#include "cli/Command.h"

namespace ff::cli {

class EvalCommand : public Command {
public:
    EvalCommand();

protected:
    int execute(const QCommandLineParser &parser, const QStringList &arguments, CommandIo &io) override;
};

} // namespace ff::cli
