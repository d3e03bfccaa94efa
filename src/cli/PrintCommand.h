#pragma once
// print IMAGE OUT.pdf [--record N | --from N --to M] [--report K] [--search "LINE"] [--data FILE]
//
// Prints into a PDF file what the print command of the window sends to the printer: the records'
// pages, each record with all pages of the design, with the page's own geometry; or, with
// --report K (K counts from 1, as the report menu does), report K over all records or over the
// records a search line lists. Prints the number of sheets and the records printed.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class PrintCommand : public DatabaseCommand {
public:
    PrintCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    // The records a search line lists, in its order; nothing after a message.
    std::optional<QVector<int>> searched(CliDatabase &database, const QString &line, CommandIo &io);

    QCommandLineOption recordOption_;
    QCommandLineOption fromOption_;
    QCommandLineOption toOption_;
    QCommandLineOption reportOption_;
    QCommandLineOption searchOption_;
};

} // namespace ff::cli
