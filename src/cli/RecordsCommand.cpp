// records IMAGE [--data FILE] count|list|show N|new|set N TAG=VALUE...|clear N
//
// Lists, shows, adds and changes records of an app image's data file, with the record store's own
// rules: values print as the page shows them, read-only files write nothing, and a record that
// another user holds is not changed. Tags name elements as formulas do: F1 a field, C1 a combo,
// K0 a check box, M1 a note, P1 a record picture.

#include "cli/Command.h"
#include "cli/RecordAccess.h"

#include <QLocale>

namespace ff::cli {

class RecordsCommand : public Command {
public:
    QString name() const override { return QStringLiteral("records"); }
    QString usage() const override
    {
        return QStringLiteral("records IMAGE [--data FILE] count|list|show N|new|set N TAG=VALUE...|clear N");
    }

    int run(const QStringList &argsIn, QTextStream &out, QTextStream &err) override
    {
        QStringList args = argsIn;
        QString dataFile;
        const qsizetype dataAt = args.indexOf(QStringLiteral("--data"));
        if (dataAt >= 0 && dataAt + 1 < args.size()) {
            dataFile = args.at(dataAt + 1);
            args.remove(dataAt, 2);
        }
        if (args.size() < 2)
            return usageError(err);
        const QString image = args.takeFirst();
        const QString verb = args.takeFirst();
        const bool writes = verb == QLatin1String("new") || verb == QLatin1String("set") || verb == QLatin1String("clear");

        CliDatabase opened(err, QStringLiteral("records"));
        if (!opened.open(image, dataFile, writes))
            return 1;
        Database &db = opened.db();
        RecordStore &store = db.store();
        if (writes && !store.writingAllowed()) {
            err << "records: " << db.DataFileName << " is read-only; nothing written\n";
            return 1;
        }

        if (verb == QLatin1String("count") && args.isEmpty()) {
            out << store.RecordCount() << "\n";
            return 0;
        }
        if (verb == QLatin1String("list") && args.isEmpty()) {
            for (int r = 1; r <= store.RecordCount(); ++r) {
                if (!store.JumpToRecord(r))
                    continue;
                out << r;
                for (const auto &v : shownValues(db))
                    out << "\t" << escaped(v.second);
                out << "\n";
            }
            return 0;
        }
        if (verb == QLatin1String("new") && args.isEmpty()) {
            if (!store.NewRecord() || !store.SaveIfDirty()) {
                err << "records: the new record could not be written\n";
                return 1;
            }
            out << store.CurrentRecord() << "\n";
            store.close();
            return 0;
        }
        if (args.isEmpty())
            return usageError(err);
        bool ok = false;
        const int record = args.takeFirst().toInt(&ok);
        if (!ok || record < 1 || record > store.RecordCount()) {
            err << "records: no record " << record << " (the file holds " << store.RecordCount() << ")\n";
            return 1;
        }
        // Every verb below works on the record it names: one that cannot be read is an error,
        // never the record that happened to be on the page.
        if (const Status moved = store.JumpToRecord(record); !moved) {
            err << "records: record " << record << " could not be read: " << moved.error().text << "\n";
            return 1;
        }
        if (verb == QLatin1String("show") && args.isEmpty()) {
            for (const auto &v : shownValues(db))
                out << v.first << "\t" << escaped(v.second) << "\n";
            return 0;
        }
        if (verb == QLatin1String("set") && !args.isEmpty())
            return set(db, record, args, opened.context().locale, out, err);
        if (verb == QLatin1String("clear") && args.isEmpty()) {
            if (!store.ClearRecord()) {
                err << "records: record " << record << " is in use by another user; nothing written\n";
                return 1;
            }
            if (!store.PackRecord()) {
                err << "records: record " << record << " could not be written\n";
                return 1;
            }
            return 0;
        }
        return usageError(err);
    }

private:
    int usageError(QTextStream &err) const
    {
        err << "usage: flatform-cli " << usage() << "\n";
        return 2;
    }

    int set(Database &db, int record, const QStringList &assignments, const QLocale &locale, QTextStream &out,
            QTextStream &err)
    {
        const Design &d = db.design();
        RecordStore &store = db.store();
        // Check every assignment before touching the record.
        const auto changes = parseAssignments(assignments, d);
        if (!changes) {
            err << "records: " << changes.error().text << "\n";
            return 2;
        }
        for (const Assignment &a : *changes) {
            if (a.tag.kind == QLatin1Char('F') && !FieldIsStored(d.Fields[size_t(a.tag.index)])) {
                err << "records: F" << a.tag.index << " is not stored in the record\n";
                return 2;
            }
        }
        if (!store.LockRecord()) {
            err << "records: record " << record << " is in use by another user; nothing written\n";
            return 1;
        }
        Page &p = db.page();
        if (const Status applied = applyAssignments(db, *changes, locale); !applied) {
            err << "records: " << applied.error().text << "; nothing written\n";
            // The program ends next, and the lock with its file handle.
            std::ignore = store.UnlockRecord();
            return 2;
        }
        store.hooks().RunFormulas(p, store.CurrentRecord());
        const Status written = store.PackRecord();
        if (!written) {
            err << "records: record " << record << " could not be written: " << written.error().text << "\n";
            return 1;
        }
        // Shown as stored; when it cannot be read back, as it was written.
        std::ignore = store.UnpackRecord();
        for (const auto &v : shownValues(db))
            out << v.first << "\t" << escaped(v.second) << "\n";
        return 0;
    }
};

FF_REGISTER_COMMAND(RecordsCommand);

} // namespace ff::cli
