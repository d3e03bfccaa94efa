#pragma once
// sort IMAGE TAG [--down]
//
// Builds the sort index of one element (a name from the tags, or F1, C1, K0, M1) and prints the
// record numbers in its order, one a line (with --json one array): ascending, or from the end
// with --down.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class SortCommand : public DatabaseCommand {
public:
    SortCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    QCommandLineOption downOption_;
};

} // namespace ff::cli
