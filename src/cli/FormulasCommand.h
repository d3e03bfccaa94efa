#pragma once
// formulas IMAGE N [--set TAG=VALUE ...]
//
// Loads record N, puts the given values into the page as typing them would, runs the record's
// formulas and prints every text field as the page shows it, one "F<n><tab>text" a line (with
// --json one object of them). Nothing is written: it is a way to try formulas on real records.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class FormulasCommand : public DatabaseCommand {
public:
    FormulasCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    QCommandLineOption setOption_;
};

} // namespace ff::cli
