#pragma once
// What the record verbs of flatform-cli share: opening an app image's data file with the same
// formulas and formats as the window, naming elements by tag (F1 a field, C1 a combo, K0 a check
// box, M1 a note, P1 a record picture), putting typed values into the page the way leaving a field
// does, and listing what the page shows.

#include "entry/EngineFormulaHooks.h"
#include "formula/FormulaContext.h"
#include "store/Database.h"

#include <QTextStream>
#include <memory>

namespace ff::cli {

struct CliHost : StoreHost {
    QTextStream &err;
    QString verb;
    CliHost(QTextStream &e, QString v) : err(e), verb(std::move(v)) {}
    void ShowMessage(const QString &, const QString &text, int) override { err << verb << ": " << text << "\n"; }
};

struct Tag {
    QChar kind;
    int index = -1;
};

// One opened data file of an image, with the formula engine behind the page.
class CliDatabase {
public:
    CliDatabase(QTextStream &err, const QString &verb) : host_(err, verb), hooks_(context_) { context_.host = &host_; }

    // Reads the design and opens the data file (DATAFILE or the image's own); `writes` false opens it
    // for reading only. A missing data file is created only for a writing verb that may make one.
    // Messages go to `err`; false when nothing could be opened.
    bool open(const QString &image, const QString &dataFile, bool writes, bool mayCreate = true);
    Database &db() { return *db_; }
    FormulaContext &context() { return context_; }

private:
    CliHost host_;
    FormulaContext context_;
    EngineFormulaHooks hooks_;
    std::unique_ptr<Database> db_;
};

Tag parseTag(const QString &text, const Design &d);
// Tabs and line breaks written as \t and \n, so that a value stays on its line.
QString escaped(QString text);
// The elements that a record holds, in record order, with what the page shows for them.
QList<QPair<QString, QString>> shownValues(Database &db);
// Every text field with what the page shows, stored or not (formulas fill fields that are not).
QList<QPair<QString, QString>> fieldValues(Database &db);

// Checks "TAG=VALUE" assignments against the design; an error text names the first bad one.
struct Assignment {
    Tag tag;
    QString value;
};
Result<QList<Assignment>> parseAssignments(const QStringList &texts, const Design &d);
// Puts the values into the page as typing them and leaving the field would; a date field that is
// given no date is an error and changes nothing further.
Status applyAssignments(Database &db, const QList<Assignment> &changes, const QLocale &locale);

} // namespace ff::cli
