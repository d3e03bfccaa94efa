#include "cli/RecordAccess.h"

#include "entry/FieldLeave.h"
#include "formula/DateNumber.h"
#include "search/SearchNames.h"
#include "formula/DateReader.h"

#include <QFileInfo>

namespace ff::cli {

static QChar kindLetter(SearchKind kind)
{
    switch (kind) {
    case SearchKind::Field: return QLatin1Char('F');
    case SearchKind::Combo: return QLatin1Char('C');
    case SearchKind::Check: return QLatin1Char('K');
    case SearchKind::Note: return QLatin1Char('M');
    case SearchKind::Picture: return QLatin1Char('P');
    case SearchKind::None: break;
    }
    return QChar();
}

Tag parseTag(const QString &text, const Design &d, const SearchNames &names)
{
    const SearchField named = names.lookup(text.trimmed().toLower());
    if (named.valid())
        return Tag{kindLetter(named.kind), named.index};
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

ShownValues shownValues(Database &db)
{
    const Design &d = db.design();
    const RecordLayout &l = db.store().layout();
    Page &p = db.page();
    ShownValues out;
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

ShownValues fieldValues(Database &db)
{
    ShownValues out;
    for (size_t i = 1; i < db.design().Fields.size(); ++i)
        out.append({QStringLiteral("F%1").arg(i), db.page().FieldText[i]});
    return out;
}

QJsonObject valuesObject(const ShownValues &values)
{
    QJsonObject o;
    for (const auto &[code, text] : values)
        o.insert(code, QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    return o;
}

Result<QList<Assignment>> parseAssignments(const QStringList &texts, const Design &d, const SearchNames &names)
{
    QList<Assignment> changes;
    for (const QString &a : texts) {
        const qsizetype eq = a.indexOf(QLatin1Char('='));
        const Tag tag = eq > 0 ? parseTag(a.left(eq), d, names) : Tag{};
        if (tag.index < 0)
            return makeError(ErrorCode::Invalid,
                             QStringLiteral("\"%1\" does not name an element of the record (a name from the tags, or F1, C1, K0, M1, P1 = value)").arg(a));
        changes.append({tag, a.mid(eq + 1)});
    }
    return changes;
}

Status applyAssignments(Database &db, const QList<Assignment> &changes, const QLocale &locale)
{
    const Design &d = db.design();
    Page &p = db.page();
    for (const auto &[tag, value] : changes) {
        const int i = tag.index;
        switch (tag.kind.unicode()) {
        case 'F': {
            const int type = d.Fields[size_t(i)].FieldType;
            const QString before = p.FieldText[i];
            p.FieldText[i] = value;
            if (type >= 6 && type <= 9 && !value.isEmpty() && !ReadDate(value, locale))
                return makeError(ErrorCode::Invalid, QStringLiteral("\"%1\" is not a date").arg(value));
            if (type >= 6 && type <= 9 && value.isEmpty())
                p.FieldDate[i] = 0;
            // The same conversion as leaving the field after typing: dates in the field's form,
            // number fields evaluated.
            FieldLeave::leaveTextField(p, i, value == before ? QString(QChar(0)) : before, locale);
            break;
        }
        case 'C':
            p.ComboText[i] = value;
            FieldLeave::leaveCombo(p, i, locale);
            break;
        case 'K': p.CheckValue[i] = value.toInt() != 0 ? 1 : 0; break;
        case 'M': p.NoteText[i] = QString(value).replace(QLatin1String("\\n"), QLatin1String("\r\n")); break;
        case 'P': p.PictureRecordName[i] = value; break;
        default: break;
        }
    }
    return {};
}

} // namespace ff::cli
