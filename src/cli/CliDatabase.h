#pragma once
// One opened data file of an app image, with the formula engine behind the page, as the window
// opens it: the same formulas and formats, so a record prints here as the page shows it.

#include "cli/CliHost.h"
#include "entry/EngineFormulaHooks.h"
#include "formula/FormulaContext.h"
#include "store/Database.h"

#include <QTextStream>
#include <memory>

namespace ff::cli {

class CliDatabase {
public:
    enum class Access {
        Read,          // nothing is written, not even the first record of an empty file
        Write,         // a missing data file is made
        WriteExisting, // writes, but only into a data file that is there
    };

    CliDatabase(QTextStream &err, const QString &verb);

    // Reads the design and opens the data file (`dataFile`, or the image's own). Messages go to
    // `err`; false when nothing could be opened.
    bool open(const QString &image, const QString &dataFile, Access access);
    Database &db() { return *db_; }
    FormulaContext &context() { return context_; }

private:
    QTextStream &err_;
    QString verb_;
    CliHost host_;
    FormulaContext context_;
    EngineFormulaHooks hooks_;
    std::unique_ptr<Database> db_;
};

} // namespace ff::cli
