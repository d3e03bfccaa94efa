// sort IMAGE TAG [--data FILE] [--down]
//
// Builds the sort index of one element (a name from the tags, or F1, C1, K0, M1) and prints the
// record numbers in its order, one a line: ascending, or from the end with --down.

#include "cli/Command.h"
#include "cli/RecordAccess.h"
#include "search/SearchNames.h"
#include "search/SortIndexBuilder.h"
#include "store/Database.h"

#include <charconv>
#include <cstdio>
#include <memory>

namespace ff::cli {

class SortCommand : public Command {
public:
    QString name() const override { return QStringLiteral("sort"); }
    QString usage() const override { return QStringLiteral("sort IMAGE TAG [--data FILE] [--down]"); }

    int run(const QStringList &argsIn, QTextStream &out, QTextStream &err) override
    {
        QStringList args = argsIn;
        QString dataFile;
        bool down = false;
        for (qsizetype i = 0; i < args.size();) {
            if (args.at(i) == QLatin1String("--data") && i + 1 < args.size()) {
                dataFile = args.at(i + 1);
                args.remove(i, 2);
            } else if (args.at(i) == QLatin1String("--down")) {
                down = true;
                args.remove(i);
            } else {
                ++i;
            }
        }
        if (args.size() != 2) {
            err << "usage: flatform-cli " << usage() << "\n";
            return 2;
        }
        CliDatabase opened(err, name());
        if (!opened.open(args.at(0), dataFile, false))
            return 1;
        Database *db = &opened.db();
        RecordStore &store = db->store();
        const SearchNames names(store.design(), store.layout());
        const SearchField field = names.byTag(args.at(1));
        if (!field.valid()) {
            err << "sort: no stored element " << args.at(1) << "\n";
            return 1;
        }
        const Status s = SortIndexBuilder::BuildSortIndex(store, field, down ? BrowseOrder::SortIndexDown : BrowseOrder::SortIndexUp);
        if (!s) {
            err << "sort: " << s.error().text << "\n";
            return 1;
        }
        out.flush();
        const QVector<int> &index = store.SortIndex();
        std::string text;
        text.reserve(size_t(index.size()) * 8);
        char buf[16];
        for (qsizetype k = 1; k < index.size(); ++k) {
            const int r = down ? index[index.size() - k] : index[k];
            char *end = std::to_chars(buf, buf + sizeof buf - 1, r).ptr;
            *end++ = '\n';
            text.append(buf, size_t(end - buf));
        }
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
        return 0;
    }
};

FF_REGISTER_COMMAND(SortCommand);

} // namespace ff::cli
