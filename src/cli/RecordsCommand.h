#pragma once
// records IMAGE count|list|show N|new|set N TAG=VALUE...|clear N
//
// Lists, shows, adds and changes records of an app image's data file, with the record store's own
// rules: values print as the page shows them, read-only files write nothing, and a record that
// another user holds is not changed. TAG is a name from the elements' tags ("firstname") or a
// code as formulas use it: F1 a field, C1 a combo, K0 a check box, M1 a note, P1 a record picture.

#include "cli/DatabaseCommand.h"
#include "cli/RecordAccess.h"

namespace ff::cli {

class RecordsCommand : public DatabaseCommand {
public:
    RecordsCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    int list(Database &db, bool json, CommandIo &io);
    int set(CliDatabase &database, int record, const QStringList &assignments, bool json, CommandIo &io);
    int clear(Database &db, int record, CommandIo &io);
    void print(Database &db, int record, bool json, CommandIo &io);
    int refused(int record, CommandIo &io);
};

} // namespace ff::cli
