#pragma once
// What the record verbs of flatform-cli share: naming elements by the names in their tags or by
// code (F1 a field, C1 a combo, K0 a check box, M1 a note, P1 a record picture), putting typed
// values into the page the way leaving a field does, and listing what the page shows.

#include "core/Result.h"
#include "design/Design.h"
#include "store/Database.h"

#include <QJsonObject>
#include <QList>
#include <QLocale>
#include <QPair>
#include <QString>

namespace ff {
class SearchNames;
}

namespace ff::cli {

struct Tag {
    QChar kind; // 'F', 'C', 'K', 'M' or 'P'
    int index = -1;
    bool valid() const { return index >= 0; }
    QString code() const { return kind + QString::number(index); }
};

// A name from the elements' tags (as a search line names them: a stored field, combo, check box
// or note, the first of them when two share a name) or a code such as "F3"; invalid when neither.
Tag parseTag(const QString &text, const Design &design, const SearchNames &names);

// Tabs and line breaks written as \t and \n, so that a value stays on its line.
QString escaped(QString text);

using ShownValues = QList<QPair<QString, QString>>; // code, text
// The elements that a record holds, in record order, with what the page shows for them.
ShownValues shownValues(Database &db);
// Every text field with what the page shows, stored or not (formulas fill fields that are not).
ShownValues fieldValues(Database &db);
// The values as an object keyed by code, as the page shows them (a note's line breaks as \n).
QJsonObject valuesObject(const ShownValues &values);

// Checks "TAG=VALUE" assignments against the design; an error text names the first bad one.
struct Assignment {
    Tag tag;
    QString value;
};
Result<QList<Assignment>> parseAssignments(const QStringList &texts, const Design &design, const SearchNames &names);
// Puts the values into the page as typing them and leaving the field would; a date field that is
// given no date is an error and changes nothing further.
Status applyAssignments(Database &db, const QList<Assignment> &changes, const QLocale &locale);

} // namespace ff::cli
