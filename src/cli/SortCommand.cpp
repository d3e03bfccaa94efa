#include "cli/SortCommand.h"

#include "search/SearchNames.h"
#include "search/SortIndexBuilder.h"

#include <QJsonArray>

#include <charconv>
#include <string>

namespace ff::cli {

SortCommand::SortCommand()
    : DatabaseCommand(QStringLiteral("sort"), QStringLiteral("TAG"),
                      QStringLiteral("Prints the record numbers in the order of one element.\n"
                                     "TAG is a name from the tags, or F1, C1, K0, M1; the order is that of the sort\n"
                                     "of the search menu.")),
      downOption_(QStringLiteral("down"), QStringLiteral("From the largest value down."))
{
    addOption(downOption_);
}

std::optional<CliDatabase::Access> SortCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

int SortCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                           CommandIo &io)
{
    RecordStore &store = database.db().store();
    const SearchNames names(store.design(), store.layout());
    const SearchField field = names.byTag(arguments.first());
    if (!field.valid()) {
        io.err << name() << ": no stored element " << arguments.first() << "\n";
        return 1;
    }
    const bool down = parser.isSet(downOption_);
    if (const Status s = SortIndexBuilder::BuildSortIndex(store, field, down ? BrowseOrder::SortIndexDown : BrowseOrder::SortIndexUp); !s) {
        io.err << name() << ": " << s.error().text << "\n";
        return 1;
    }
    const QVector<int> &index = store.SortIndex();
    if (jsonWanted(parser)) {
        QJsonArray records;
        for (qsizetype k = 1; k < index.size(); ++k)
            records.append(down ? index[index.size() - k] : index[k]);
        writeJson(io.out, QJsonDocument(records));
        return 0;
    }
    // A million numbers: made in one buffer and written at once.
    std::string text;
    text.reserve(size_t(index.size()) * 8);
    char buf[16];
    for (qsizetype k = 1; k < index.size(); ++k) {
        const int r = down ? index[index.size() - k] : index[k];
        char *end = std::to_chars(buf, buf + sizeof buf - 1, r).ptr;
        *end++ = '\n';
        text.append(buf, size_t(end - buf));
    }
    writeUtf8(io.out, QByteArray::fromRawData(text.data(), qsizetype(text.size())));
    return 0;
}

} // namespace ff::cli
