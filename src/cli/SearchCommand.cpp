#include "cli/SearchCommand.h"

#include "search/SearchEngine.h"

#include <QJsonArray>
#include <vector>
#include <QJsonObject>

namespace ff::cli {

namespace {

struct PrintHost : MessageSink {
    QTextStream *out; // null: messages go into the JSON document only
    explicit PrintHost(QTextStream *o) : out(o) {}
    void ShowMessage(const QString &, const QString &text, int) override
    {
        if (out)
            *out << text << "\n";
    }
};

bool replaces(const QString &line)
{
    return SearchParser::IsCommand(line) && line.trimmed().toLower().startsWith(QLatin1String("replace "));
}

QString commandName(CommandKind kind)
{
    switch (kind) {
    case CommandKind::Select: return QStringLiteral("select");
    case CommandKind::Sum: return QStringLiteral("sum");
    case CommandKind::Replace: return QStringLiteral("replace");
    case CommandKind::Count: return QStringLiteral("count");
    case CommandKind::Find: break;
    }
    return QStringLiteral("find");
}

QString elementCode(const SearchField &f)
{
    static const char letters[] = " FCKMP";
    return QLatin1Char(letters[int(f.kind)]) + QString::number(f.index);
}

// Why a line that the engine would pass over in silence does nothing.
QString whyNothing(const CompiledQuery &query)
{
    if (query.command == CommandKind::Find)
        return query.terms.isEmpty() ? QStringLiteral("the line has nothing to find")
                                     : QStringLiteral("the element to find in holds no bytes in the record");
    if (query.command == CommandKind::Select || query.command == CommandKind::Replace)
        return QStringLiteral("the line has no condition after \"where\" that names a stored element");
    return QStringLiteral("the line names no stored element to %1").arg(commandName(query.command));
}

} // namespace

SearchCommand::SearchCommand()
    : DatabaseCommand(QStringLiteral("search"), QStringLiteral("LINE"),
                      QStringLiteral("Runs a search line as the search line window does.\n"
                                     "Select and a plain find print their rows, sum, count and replace their message.\n"
                                     "A line with a name that names no element, or with nothing to do, is refused\n"
                                     "with the reason.")),
      forwardOption_(QStringLiteral("forward"), QStringLiteral("Walks from the first record up.")),
      matchCaseOption_(QStringLiteral("match-case"), QStringLiteral("Matches upper and lower case exactly.")),
      fieldOption_(QStringLiteral("field"),
                   QStringLiteral("The element a plain find looks in (a name from the tags, or F1, C1, K0, M1, P1)."),
                   QStringLiteral("TAG")),
      silentOption_(QStringLiteral("silent"), QStringLiteral("Shows no message, as a page button's line.")),
      oneThreadOption_(QStringLiteral("one-thread"), QStringLiteral("Keeps a long walk on one thread."))
{
    addOption(forwardOption_);
    addOption(matchCaseOption_);
    addOption(fieldOption_);
    addOption(silentOption_);
    addOption(oneThreadOption_);
}

std::optional<CliDatabase::Access> SearchCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return replaces(arguments.first()) ? CliDatabase::Access::WriteExisting : CliDatabase::Access::Read;
}

int SearchCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                             CommandIo &io)
{
    Database &db = database.db();
    const QString &line = arguments.first();
    SearchOptions options;
    options.forward = parser.isSet(forwardOption_);
    options.matchCase = parser.isSet(matchCaseOption_);
    options.silent = parser.isSet(silentOption_);
    if (parser.isSet(oneThreadOption_))
        options.twoThreadsFrom = 0;

    SearchEngine engine(db.store(), db.DecimalSeparator);
    const QString fieldTag = parser.value(fieldOption_);
    const SearchField focus =
        fieldTag.isEmpty() ? engine.names().describe(SearchKind::Field, 1) : engine.names().byTag(fieldTag);
    if (!fieldTag.isEmpty() && !focus.valid()) {
        io.err << name() << ": no stored element " << fieldTag << "\n";
        return 1;
    }
    const CompiledQuery query = engine.compile(line, options.matchCase, focus);
    if (!query.unmatchedNames.isEmpty()) {
        io.err << name() << ": \"" << query.unmatchedNames.join(QStringLiteral("\", \""))
               << (query.unmatchedNames.size() == 1 ? "\" names" : "\" name") << " no stored element; nothing searched\n";
        return 1;
    }
    if (!query.runnable() || (query.command == CommandKind::Find && !query.wholeRecord && !query.findField.valid())) {
        io.err << name() << ": " << whyNothing(query) << "; nothing searched\n";
        return 1;
    }

    const bool json = jsonWanted(parser);
    PrintHost host(json ? nullptr : &io.out);
    const SearchResult result = engine.run(query, options, &host);
    if (json) {
        writeJson(io.out, QJsonDocument(resultObject(result, engine, db)));
    } else if (result.command == CommandKind::Select || result.command == CommandKind::Find) {
        // Many rows: one write rather than a stream call per row.
        QByteArray text;
        for (const QString &row : result.rows) {
            text += row.toUtf8();
            text += '\n';
        }
        writeUtf8(io.out, text);
    }
    const bool listed = result.command == CommandKind::Select || result.command == CommandKind::Find;
    if (listed && result.found > result.hits.size())
        io.err << name() << ": " << result.found << " records found, " << result.hits.size() << " listed\n";
    return 0;
}

QJsonObject SearchCommand::resultObject(const SearchResult &result, const SearchEngine &engine, Database &db)
{
    QJsonObject o{{QStringLiteral("command"), commandName(result.command)}, {QStringLiteral("message"), result.message}};
    switch (result.command) {
    case CommandKind::Select:
    case CommandKind::Find: {
        QJsonArray columns;
        for (int k = 0; k < result.columnCount; ++k)
            columns.append(elementCode(result.columns[size_t(k)]));
        // Each value on its own, read from the record again: a value may hold the row's "~".
        std::vector<ResultRowBuilder> builders;
        for (int k = 0; k < result.columnCount; ++k)
            builders.push_back(engine.rowBuilder(&result.columns[size_t(k)], 1));
        QJsonArray rows;
        for (const int record : result.hits) {
            QJsonArray values;
            const Result<QByteArray> plain = db.store().readPlainRecord(record);
            for (int k = 0; plain && k < result.columnCount; ++k) {
                const QString one = builders[size_t(k)].row(record, reinterpret_cast<const uint8_t *>(plain->constData()));
                values.append(one.mid(one.indexOf(QLatin1Char('~')) + 1));
            }
            rows.append(QJsonObject{{QStringLiteral("record"), record}, {QStringLiteral("values"), values}});
        }
        o.insert(QStringLiteral("found"), double(result.found));
        o.insert(QStringLiteral("columns"), columns);
        o.insert(QStringLiteral("rows"), rows);
        break;
    }
    case CommandKind::Sum:
        o.insert(QStringLiteral("total"), result.SumTotal);
        o.insert(QStringLiteral("count"), double(result.sumCount));
        if (result.averageSet)
            o.insert(QStringLiteral("average"), result.SumAverage);
        break;
    case CommandKind::Count:
        o.insert(QStringLiteral("count"), result.CountTotal);
        break;
    case CommandKind::Replace:
        o.insert(QStringLiteral("replaced"), result.Replacements);
        o.insert(QStringLiteral("skippedLocked"), result.skippedLocked);
        break;
    }
    return o;
}

} // namespace ff::cli
