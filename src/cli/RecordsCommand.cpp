// records IMAGE [--data FILE] count|list|show N|new|set N TAG=VALUE...|clear N
//
// Lists, shows, adds and changes records of an app image's data file, with the record store's own
// rules: values print as the page shows them, read-only files write nothing, and a record that
// another user holds is not changed. Tags name elements as formulas do: F1 a field, C1 a combo,
// K0 a check box, M1 a note, P1 a record picture.

#include "cli/Command.h"
#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "store/Database.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

namespace ff::cli {

namespace {

struct CliHost : StoreHost {
    QTextStream &err;
    explicit CliHost(QTextStream &e) : err(e) {}
    void ShowMessage(const QString &, const QString &text, int) override { err << "records: " << text << "\n"; }
};

struct Tag {
    QChar kind;
    int index = -1;
};

Tag parseTag(const QString &text, const Design &d)
{
    Tag t;
    if (text.size() < 2)
        return t;
    t.kind = text.at(0).toUpper();
    bool ok = false;
    const int n = text.mid(1).toInt(&ok);
    if (!ok)
        return {};
    const bool valid = (t.kind == QLatin1Char('F') && n >= 1 && n < int(d.Fields.size()))
        || (t.kind == QLatin1Char('C') && n >= 1 && n < int(d.Combos.size()))
        || (t.kind == QLatin1Char('K') && n >= 0 && n < int(d.Checks.size()))
        || (t.kind == QLatin1Char('M') && n >= 1 && n < int(d.Notes.size()))
        || (t.kind == QLatin1Char('P') && n >= 0 && n < int(d.Pictures.size()) && d.Pictures[n].Stretch);
    if (valid)
        t.index = n;
    return t;
}

QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1String("\r\n"), QStringLiteral("\\n"));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    text.replace(QLatin1Char('\t'), QStringLiteral("\\t"));
    return text;
}

// The elements that a record holds, in record order, with what the page shows for them.
QList<QPair<QString, QString>> shownValues(Database &db)
{
    const Design &d = db.design();
    const RecordLayout &l = db.store().layout();
    Page &p = db.page();
    QList<QPair<QString, QString>> out;
    for (size_t i = 1; i < d.Fields.size(); ++i)
        if (l.FieldOffset[i] && l.FieldSize[i] > 0)
            out.append({QStringLiteral("F%1").arg(i), p.FieldText[i]});
    for (size_t i = 1; i < d.Combos.size(); ++i)
        if (l.ComboOffset[i])
            out.append({QStringLiteral("C%1").arg(i), p.ComboText[i]});
    for (size_t i = 0; i < d.Checks.size(); ++i)
        if (l.CheckOffset[i])
            out.append({QStringLiteral("K%1").arg(i), QString::number(p.CheckValue[i])});
    for (size_t i = 0; i < d.Pictures.size(); ++i)
        if (l.PictureOffset[i])
            out.append({QStringLiteral("P%1").arg(i), p.PictureRecordName[i]});
    for (size_t i = 1; i < d.Notes.size(); ++i)
        if (l.NoteOffset[i])
            out.append({QStringLiteral("M%1").arg(i), p.NoteText[i]});
    if (l.StampOffset)
        out.append({QStringLiteral("stamp"), p.TitleCaption[4]});
    return out;
}

bool parseDate(const QString &text, double &day)
{
    bool ok = false;
    day = text.toDouble(&ok);
    if (ok)
        return true;
    QDateTime when = QDateTime::fromString(text, Qt::ISODate);
    if (!when.isValid())
        when = QLocale().toDateTime(text, QLocale::ShortFormat);
    if (!when.isValid()) {
        const QDate date = QLocale().toDate(text, QLocale::ShortFormat);
        if (date.isValid())
            when = QDateTime(date, QTime(0, 0));
    }
    if (!when.isValid())
        return false;
    day = FormulaHooks::FromDateTime(when);
    return true;
}

} // namespace

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

        const DesignLoad load = ReadDesign(image, DesignReadOptions{});
        if (!load.complete()) {
            err << "records: " << image << ": " << load.error.text << "\n";
            return 1;
        }
        CliHost host(err);
        Database db(load.design, ParseCommandLine(QFileInfo(image).absoluteFilePath(), {}), &host);
        db.start();
        if (!dataFile.isEmpty())
            db.DataFileName = dataFile;
        else if (QFileInfo(db.DataFileName).isRelative())
            db.DataFileName = db.paths().AppFolder + db.DataFileName;
        if (!writes && !QFileInfo::exists(db.DataFileName)) {
            err << "records: no data file " << db.DataFileName << "\n";
            return 1;
        }
        // Reading verbs never write, not even the first record of an empty file.
        if (!writes)
            db.store().ViewOnlyMode = true;
        if (!db.OpenDatabase(0))
            return 1;
        RecordStore &store = db.store();
        if (writes && !store.writingAllowed()) {
            err << "records: " << db.DataFileName << " is read-only; nothing written\n";
            return 1;
        }

        if (verb == QLatin1String("count") && args.isEmpty()) {
            out << store.RecordCount << "\n";
            return 0;
        }
        if (verb == QLatin1String("list") && args.isEmpty()) {
            for (int r = 1; r <= store.RecordCount; ++r) {
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
            out << store.CurrentRecord << "\n";
            store.close();
            return 0;
        }
        if (args.isEmpty())
            return usageError(err);
        bool ok = false;
        const int record = args.takeFirst().toInt(&ok);
        if (!ok || record < 1 || record > store.RecordCount) {
            err << "records: no record " << record << " (the file holds " << store.RecordCount << ")\n";
            return 1;
        }
        if (verb == QLatin1String("show") && args.isEmpty()) {
            store.JumpToRecord(record);
            for (const auto &v : shownValues(db))
                out << v.first << "\t" << escaped(v.second) << "\n";
            return 0;
        }
        if (verb == QLatin1String("set") && !args.isEmpty())
            return set(db, record, args, out, err);
        if (verb == QLatin1String("clear") && args.isEmpty()) {
            store.JumpToRecord(record);
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

    int set(Database &db, int record, const QStringList &assignments, QTextStream &out, QTextStream &err)
    {
        const Design &d = db.design();
        RecordStore &store = db.store();
        // Check every assignment before touching the record.
        QList<QPair<Tag, QString>> changes;
        for (const QString &a : assignments) {
            const qsizetype eq = a.indexOf(QLatin1Char('='));
            const Tag tag = eq > 0 ? parseTag(a.left(eq), d) : Tag{};
            if (tag.index < 0) {
                err << "records: \"" << a << "\" does not name an element of the record (F1, C1, K0, M1, P1 = value)\n";
                return 2;
            }
            if (tag.kind == QLatin1Char('F') && !FieldIsStored(d.Fields[tag.index])) {
                err << "records: F" << tag.index << " is not stored in the record\n";
                return 2;
            }
            changes.append({tag, a.mid(eq + 1)});
        }
        if (!store.JumpToRecord(record))
            return 1;
        if (!store.LockRecord()) {
            err << "records: record " << record << " is in use by another user; nothing written\n";
            return 1;
        }
        Page &p = db.page();
        for (const auto &[tag, value] : changes) {
            const int i = tag.index;
            switch (tag.kind.unicode()) {
            case 'F': {
                const int type = d.Fields[i].FieldType;
                if (type >= 6 && type <= 9) {
                    double day = 0;
                    if (!value.isEmpty() && !parseDate(value, day)) {
                        err << "records: \"" << value << "\" is not a date; nothing written\n";
                        store.UnlockRecord();
                        return 2;
                    }
                    p.FieldDate[i] = value.isEmpty() ? 0 : day;
                }
                p.FieldText[i] = value;
                break;
            }
            case 'C': p.ComboText[i] = value; break;
            case 'K': p.CheckValue[i] = value.toInt() != 0 ? 1 : 0; break;
            case 'M': p.NoteText[i] = QString(value).replace(QLatin1String("\\n"), QLatin1String("\r\n")); break;
            case 'P': p.PictureRecordName[i] = value; break;
            default: break;
            }
        }
        store.hooks().RunFormulas(p, store.CurrentRecord);
        const Status written = store.PackRecord();
        if (!written) {
            err << "records: record " << record << " could not be written: " << written.error().text << "\n";
            return 1;
        }
        store.UnpackRecord();
        for (const auto &v : shownValues(db))
            out << v.first << "\t" << escaped(v.second) << "\n";
        return 0;
    }
};

FF_REGISTER_COMMAND(RecordsCommand);

} // namespace ff::cli
