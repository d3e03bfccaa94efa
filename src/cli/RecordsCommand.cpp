#include "cli/RecordsCommand.h"

#include "search/SearchNames.h"

#include <QJsonArray>

#include <tuple>

namespace ff::cli {

namespace {

enum class Sub { Count, List, Show, New, Set, Clear };

// The subcommand and whether its arguments fit it: a record number after show, set and clear,
// assignments after set only.
std::optional<Sub> subcommand(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return std::nullopt;
    const QString &word = arguments.first();
    const qsizetype rest = arguments.size() - 1;
    if (word == QLatin1String("count") && rest == 0)
        return Sub::Count;
    if (word == QLatin1String("list") && rest == 0)
        return Sub::List;
    if (word == QLatin1String("new") && rest == 0)
        return Sub::New;
    if (word == QLatin1String("show") && rest == 1)
        return Sub::Show;
    if (word == QLatin1String("clear") && rest == 1)
        return Sub::Clear;
    if (word == QLatin1String("set") && rest >= 2)
        return Sub::Set;
    return std::nullopt;
}

} // namespace

RecordsCommand::RecordsCommand()
    : DatabaseCommand(QStringLiteral("records"), QStringLiteral("count|list|show N|new|set N TAG=VALUE...|clear N"),
                      QStringLiteral(
                          "Counts, lists, shows, adds, changes and clears records.\n"
                          "TAG names an element by the name in its tag (firstname) or by code: F1 a field,\n"
                          "C1 a combo, K0 a check box, M1 a note, P1 a record picture. A record another user\n"
                          "is editing is not changed."))
{
}

std::optional<CliDatabase::Access> RecordsCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    const std::optional<Sub> sub = subcommand(arguments);
    if (!sub)
        return std::nullopt;
    const bool writes = *sub == Sub::New || *sub == Sub::Set || *sub == Sub::Clear;
    return writes ? CliDatabase::Access::Write : CliDatabase::Access::Read;
}

int RecordsCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                              CommandIo &io)
{
    Database &db = database.db();
    RecordStore &store = db.store();
    const bool json = jsonWanted(parser);
    const Sub sub = *subcommand(arguments);
    switch (sub) {
    case Sub::Count:
        if (json)
            writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("count"), qint64(store.RecordCount())}}));
        else
            io.out << store.RecordCount() << "\n";
        return 0;
    case Sub::List:
        return list(db, json, io);
    case Sub::New:
        if (!store.NewRecord() || !store.SaveIfDirty()) {
            io.err << name() << ": the new record could not be written\n";
            return 1;
        }
        if (json)
            writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("record"), qint64(store.CurrentRecord())}}));
        else
            io.out << store.CurrentRecord() << "\n";
        store.close();
        return 0;
    case Sub::Show:
    case Sub::Set:
    case Sub::Clear:
        break;
    }
    bool ok = false;
    const int record = arguments.at(1).toInt(&ok);
    if (!ok || record < 1 || record > store.RecordCount()) {
        io.err << name() << ": no record " << arguments.at(1) << " (the file holds " << store.RecordCount() << ")\n";
        return 1;
    }
    if (sub == Sub::Set)
        return set(database, record, arguments.mid(2), json, io);
    if (const Status moved = store.JumpToRecord(record); !moved) {
        io.err << name() << ": record " << record << " could not be read: " << moved.error().text << "\n";
        return 1;
    }
    if (sub == Sub::Clear)
        return clear(db, record, io);
    print(db, record, json, io);
    return 0;
}

int RecordsCommand::list(Database &db, bool json, CommandIo &io)
{
    RecordStore &store = db.store();
    QJsonArray records;
    for (int r = 1; r <= store.RecordCount(); ++r) {
        if (!store.JumpToRecord(r))
            continue; // a record that cannot be read is left out, as the window skips it
        const ShownValues values = shownValues(db);
        if (json) {
            records.append(QJsonObject{{QStringLiteral("record"), r}, {QStringLiteral("values"), valuesObject(values)}});
            continue;
        }
        io.out << r;
        for (const auto &v : values)
            io.out << "\t" << escaped(v.second);
        io.out << "\n";
    }
    if (json)
        writeJson(io.out, QJsonDocument(records));
    return 0;
}

void RecordsCommand::print(Database &db, int record, bool json, CommandIo &io)
{
    const ShownValues values = shownValues(db);
    if (json) {
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("record"), record},
                                                    {QStringLiteral("values"), valuesObject(values)}}));
        return;
    }
    for (const auto &v : values)
        io.out << v.first << "\t" << escaped(v.second) << "\n";
}

int RecordsCommand::refused(int record, CommandIo &io)
{
    io.err << name() << ": record " << record << " is in use by another user; nothing written\n";
    return 1;
}

int RecordsCommand::set(CliDatabase &database, int record, const QStringList &assignments, bool json, CommandIo &io)
{
    Database &db = database.db();
    const Design &d = db.design();
    RecordStore &store = db.store();
    // Check every assignment before touching the record.
    const SearchNames names(d, store.layout());
    const auto changes = parseAssignments(assignments, d, names);
    if (!changes) {
        io.err << name() << ": " << changes.error().text << "\n";
        return 2;
    }
    for (const Assignment &a : *changes) {
        if (a.tag.kind == QLatin1Char('F') && !FieldIsStored(d.Fields[size_t(a.tag.index)])) {
            io.err << name() << ": F" << a.tag.index << " is not stored in the record\n";
            return 2;
        }
    }
    if (const Status moved = store.JumpToRecord(record); !moved) {
        io.err << name() << ": record " << record << " could not be read: " << moved.error().text << "\n";
        return 1;
    }
    if (!store.LockRecord())
        return refused(record, io);
    if (const Status applied = applyAssignments(db, *changes, database.context().locale); !applied) {
        io.err << name() << ": " << applied.error().text << "; nothing written\n";
        // The unlock is only tidiness: closing the file when the verb ends drops the lock anyway.
        std::ignore = store.UnlockRecord();
        return 2;
    }
    store.hooks().RunFormulas(db.page(), store.CurrentRecord());
    if (const Status written = store.PackRecord(); !written) {
        io.err << name() << ": record " << record << " could not be written: " << written.error().text << "\n";
        return 1;
    }
    if (const Status read = store.UnpackRecord(); !read) {
        io.err << name() << ": record " << record << " was written but could not be read back: " << read.error().text
               << "\n";
        return 1;
    }
    print(db, record, json, io);
    return 0;
}

int RecordsCommand::clear(Database &db, int record, CommandIo &io)
{
    RecordStore &store = db.store();
    if (!store.ClearRecord())
        return refused(record, io);
    if (const Status written = store.PackRecord(); !written) {
        io.err << name() << ": record " << record << " could not be written: " << written.error().text << "\n";
        return 1;
    }
    return 0;
}

} // namespace ff::cli
