#pragma once
// import IMAGE FILE... [--data FILE]
//
// Brings records in at the end of the data file, each file by its kind as the import chooser
// tells them apart: the design's text extension and any other name are delimited text with a
// head row, ".xml" an XML record file (one record each), the design's data extension a record
// file of the program's own format. Prints how many records each file added; a file that cannot
// be imported gives its reason and a non-zero exit, and nothing stored before is lost.
// Picture columns are passed over: the command line has no picture encoder.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class ImportCommand : public DatabaseCommand {
public:
    ImportCommand();

    enum class Kind { DelimitedText, Xml, RecordFile };
    // The kind of an import file by its extension, as the chooser's list gives them.
    static Kind kindOf(const QString &fileName, const QString &textExtension, const QString &dataExtension);

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    // Whether the data file held no record before it was opened: then the first imported record
    // takes the blank record the opening makes. Worked out before the opening.
    mutable bool storeWasEmpty_ = false;
};

} // namespace ff::cli
