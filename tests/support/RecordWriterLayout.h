#pragma once
// The layout file of the independent record writer (independent_record_writer.py, written from
// the record file format alone): the stored elements of a design, and a run of the script.

#include "design/Design.h"
#include "support/Programs.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace ff::testsupport {

inline QJsonObject recordWriterLayout(const Design &d, qint64 recordsPerPart)
{
    QJsonArray fields, combos, checks, pictures, notes;
    for (size_t i = 1; i < d.Fields.size(); ++i)
        fields.append(QJsonObject{{"type", d.Fields[i].FieldType}, {"maxLength", d.Fields[i].MaxLength},
                                  {"page", d.Fields[i].FieldPage}, {"global", d.Fields[i].FieldGlobal}});
    for (size_t i = 1; i < d.Combos.size(); ++i)
        combos.append(QJsonObject{{"maxLength", d.Combos[i].MaxLength}, {"page", d.Combos[i].ComboPage}});
    for (const CheckElement &c : d.Checks)
        checks.append(QJsonObject{{"page", c.CheckPage}});
    for (const PictureElement &p : d.Pictures)
        pictures.append(QJsonObject{{"stretch", p.Stretch}});
    for (size_t i = 1; i < d.Notes.size(); ++i)
        notes.append(QJsonObject{{"maxLength", d.Notes[i].MaxLength}, {"page", d.Notes[i].NotePage}});
    return QJsonObject{{"recordsPerPart", recordsPerPart}, {"scramble", d.ScrambleRecords}, {"flow", d.FlowPageEnabled},
                       {"stamp", d.Titles[4].present && Design::onPage(d.Titles[4].TitlePage)}, {"title", d.MainCap},
                       {"fields", fields}, {"combos", combos}, {"checks", checks}, {"pictures", pictures}, {"notes", notes}};
}

// Writes `layout` beside `dataFile` and runs the script's `verb` ("write" or "read") on the file.
inline ProgramRun runRecordWriter(const QString &verb, const QJsonObject &layout, const QString &dataFile)
{
    const QString layoutPath = dataFile + QStringLiteral(".layout.json");
    QFile f(layoutPath);
    if (!f.open(QIODevice::WriteOnly) || f.write(QJsonDocument(layout).toJson()) <= 0)
        return {};
    f.close();
    return runSupportScript(QStringLiteral("independent_record_writer.py"), {verb, layoutPath, dataFile});
}

} // namespace ff::testsupport
