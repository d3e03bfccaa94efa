// formulas IMAGE N [--data FILE] [--set TAG=VALUE ...]
//
// Loads record N, puts the given values into the page as typing them would, runs the record's
// formulas and prints every text field as the page shows it, one "F<n><tab>text" a line. Nothing is
// written: it is a way to try formulas on real records from a script.

#include "cli/Command.h"
#include "cli/RecordAccess.h"

namespace ff::cli {

class FormulasCommand : public Command {
public:
    QString name() const override { return QStringLiteral("formulas"); }
    QString usage() const override
    {
        return QStringLiteral("formulas IMAGE N [--data FILE] [--set TAG=VALUE ...]");
    }

    int run(const QStringList &argsIn, QTextStream &out, QTextStream &err) override
    {
        QStringList args = argsIn;
        QString dataFile;
        QStringList sets;
        for (qsizetype i = 0; i < args.size();) {
            if ((args[i] == QLatin1String("--data") || args[i] == QLatin1String("--set")) && i + 1 < args.size()) {
                if (args[i] == QLatin1String("--data"))
                    dataFile = args[i + 1];
                else
                    sets.append(args[i + 1]);
                args.remove(i, 2);
            } else {
                ++i;
            }
        }
        bool ok = false;
        const int record = args.size() == 2 ? args[1].toInt(&ok) : 0;
        if (!ok) {
            err << "usage: flatform-cli " << usage() << "\n";
            return 2;
        }
        CliDatabase opened(err, name());
        if (!opened.open(args[0], dataFile, false))
            return 1;
        Database &db = opened.db();
        RecordStore &store = db.store();
        if (record < 1 || record > store.RecordCount()) {
            err << "formulas: no record " << record << " (the file holds " << store.RecordCount() << ")\n";
            return 1;
        }
        const auto changes = parseAssignments(sets, db.design());
        if (!changes) {
            err << "formulas: " << changes.error().text << "\n";
            return 2;
        }
        if (const Status moved = store.JumpToRecord(record); !moved) {
            err << "formulas: record " << record << " could not be read: " << moved.error().text << "\n";
            return 1;
        }
        if (const Status applied = applyAssignments(db, *changes, opened.context().locale); !applied) {
            err << "formulas: " << applied.error().text << "\n";
            return 2;
        }
        store.hooks().RunFormulas(db.page(), store.CurrentRecord());
        for (const auto &v : fieldValues(db))
            out << v.first << "\t" << escaped(v.second) << "\n";
        return 0;
    }
};

FF_REGISTER_COMMAND(FormulasCommand);

} // namespace ff::cli
