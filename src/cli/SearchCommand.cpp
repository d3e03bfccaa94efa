// search IMAGE "LINE" [--data FILE] [--forward] [--match-case] [--field TAG] [--silent] [--one-thread]
//
// Runs a search line over an app image's data file as the results window would: select and the
// plain find print their rows ("number~column~..."), sum, count and replace print their message.
// --field names the element a plain find looks in (a name from the tags, or F1, C1, K0, M1, P1);
// without it the find looks in field 1, the field that has the focus on start. --one-thread keeps
// a long walk on one thread (it is split over two otherwise).

#include "cli/Command.h"
#include "cli/RecordAccess.h"
#include "search/SearchEngine.h"

#include <cstdio>

namespace ff::cli {

namespace {

struct PrintHost : MessageSink {
    QTextStream &out;
    explicit PrintHost(QTextStream &o) : out(o) {}
    void ShowMessage(const QString &, const QString &text, int) override { out << text << "\n"; }
};

} // namespace

class SearchCommand : public Command {
public:
    QString name() const override { return QStringLiteral("search"); }
    QString usage() const override
    {
        return QStringLiteral(
            "search IMAGE \"LINE\" [--data FILE] [--forward] [--match-case] [--field TAG] [--silent] [--one-thread]");
    }

    int run(const QStringList &argsIn, QTextStream &out, QTextStream &err) override
    {
        QStringList args = argsIn;
        QString dataFile, fieldTag;
        SearchOptions options;
        for (qsizetype i = 0; i < args.size();) {
            const QString &a = args.at(i);
            if ((a == QLatin1String("--data") || a == QLatin1String("--field")) && i + 1 < args.size()) {
                (a == QLatin1String("--data") ? dataFile : fieldTag) = args.at(i + 1);
                args.remove(i, 2);
            } else if (a == QLatin1String("--forward")) {
                options.forward = true;
                args.remove(i);
            } else if (a == QLatin1String("--match-case")) {
                options.matchCase = true;
                args.remove(i);
            } else if (a == QLatin1String("--one-thread")) {
                options.twoThreadsFrom = 0;
                args.remove(i);
            } else if (a == QLatin1String("--silent")) {
                options.silent = true;
                args.remove(i);
            } else {
                ++i;
            }
        }
        if (args.size() != 2) {
            err << "usage: flatform-cli " << usage() << "\n";
            return 2;
        }
        const QString line = args.at(1);
        // Without TZ the C library looks at /etc/localtime again for every date it formats; naming
        // the same file once keeps the zone and saves a file system call per listed date.
        if (!qEnvironmentVariableIsSet("TZ"))
            qputenv("TZ", ":/etc/localtime");
        const bool writes = SearchParser::IsCommand(line) && line.trimmed().toLower().startsWith(QLatin1String("replace "));
        CliDatabase opened(err, name());
        if (!opened.open(args.at(0), dataFile, writes, false))
            return 1;
        Database *db = &opened.db();
        if (writes && !db->store().writingAllowed()) {
            err << "search: " << db->DataFileName << " is read-only; nothing replaced\n";
            return 1;
        }
        SearchEngine engine(db->store(), db->DecimalSeparator);
        SearchField focus = fieldTag.isEmpty() ? engine.names().describe(SearchKind::Field, 1) : engine.names().byTag(fieldTag);
        if (!fieldTag.isEmpty() && !focus.valid()) {
            err << "search: no stored element " << fieldTag << "\n";
            return 1;
        }
        const CompiledQuery query = engine.compile(line, options.matchCase, focus);
        PrintHost host(out);
        const SearchResult result = engine.run(query, options, &host);
        if (result.command == CommandKind::Select || result.command == CommandKind::Find) {
            // Many rows: one buffered write rather than a stream call per row.
            out.flush();
            QByteArray text;
            for (const QString &row : result.rows) {
                text += row.toUtf8();
                text += '\n';
            }
            std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
            std::fflush(stdout);
            if (result.found > result.hits.size())
                err << "search: " << result.found << " records found, " << result.hits.size() << " listed\n";
        }
        return 0;
    }
};

FF_REGISTER_COMMAND(SearchCommand);

} // namespace ff::cli
