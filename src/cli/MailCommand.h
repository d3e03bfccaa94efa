#pragma once
// mail IMAGE N [--report K] [--data FILE]
//
// Writes the unsent mail message the mail button of the window makes for record N: the record's
// pages as a PDF attached to a ".eml" file ("Newmail.eml", or the next free number) in the
// temporary folder (TMPDIR), addressed from the design's name and address fields. With --report K
// the attachment is report K (from 1) over all records, record N being the one on the page.
// Prints the message's path; opens nothing.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class MailCommand : public DatabaseCommand {
public:
    MailCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    QCommandLineOption reportOption_;
};

} // namespace ff::cli
