#include "cli/FormulasCommand.h"

#include "cli/RecordAccess.h"
#include "search/SearchNames.h"

namespace ff::cli {

FormulasCommand::FormulasCommand()
    : DatabaseCommand(QStringLiteral("formulas"), QStringLiteral("N"),
                      QStringLiteral("Runs the formulas of record N and prints every text field; nothing is written.\n"
                                     "The values given with --set go in first, as typing them would.")),
      setOption_(QStringLiteral("set"),
                 QStringLiteral("Puts VALUE into the element TAG first (a name from the tags, or F1, C1, K0, M1, P1)."),
                 QStringLiteral("TAG=VALUE"))
{
    addOption(setOption_);
}

std::optional<CliDatabase::Access> FormulasCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

int FormulasCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                               CommandIo &io)
{
    Database &db = database.db();
    RecordStore &store = db.store();
    bool ok = false;
    const int record = arguments.first().toInt(&ok);
    if (!ok || record < 1 || record > store.RecordCount()) {
        io.err << name() << ": no record " << arguments.first() << " (the file holds " << store.RecordCount() << ")\n";
        return 1;
    }
    const SearchNames names(db.design(), store.layout());
    const auto changes = parseAssignments(parser.values(setOption_), db.design(), names);
    if (!changes) {
        io.err << name() << ": " << changes.error().text << "\n";
        return 2;
    }
    if (const Status moved = store.JumpToRecord(record); !moved) {
        io.err << name() << ": record " << record << " could not be read: " << moved.error().text << "\n";
        return 1;
    }
    if (const Status applied = applyAssignments(db, *changes, database.context().locale); !applied) {
        io.err << name() << ": " << applied.error().text << "\n";
        return 2;
    }
    store.hooks().RunFormulas(db.page(), store.CurrentRecord());
    const ShownValues values = fieldValues(db);
    if (jsonWanted(parser)) {
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("record"), record},
                                                    {QStringLiteral("values"), valuesObject(values)}}));
        return 0;
    }
    for (const auto &v : values)
        io.out << v.first << "\t" << escaped(v.second) << "\n";
    return 0;
}

} // namespace ff::cli
