#pragma once
// search IMAGE "LINE" [--forward] [--match-case] [--field TAG] [--silent] [--one-thread]
//
// Runs a search line over an app image's data file as the results window would: select and the
// plain find print their rows ("number~column~..."), sum, count and replace print their message.
// --field names the element a plain find looks in (a name from the tags, or F1, C1, K0, M1, P1);
// without it the find looks in field 1, the field that has the focus on start. --one-thread keeps
// a long walk on one thread (it is split over two otherwise). A line that names no element, or
// that has nothing to do, is refused with the reason instead of passing over it in silence.

#include "cli/DatabaseCommand.h"

namespace ff {
struct SearchResult;
class SearchEngine;
} // namespace ff

namespace ff::cli {

class SearchCommand : public DatabaseCommand {
public:
    SearchCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    static QJsonObject resultObject(const SearchResult &result, const SearchEngine &engine, Database &db);

    QCommandLineOption forwardOption_;
    QCommandLineOption matchCaseOption_;
    QCommandLineOption fieldOption_;
    QCommandLineOption silentOption_;
    QCommandLineOption oneThreadOption_;
};

} // namespace ff::cli
