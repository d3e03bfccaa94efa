#pragma once
// export IMAGE KIND OUT [--data FILE] [--from N] [--to M] [--search "LINE"] [--sort TAG [--down]]
// export IMAGE xml OUT --record N
//
// Writes records of an app image's data file as the export command of the window does. KIND is
// text (the delimited text), copy (new record files), template:I (template I, 0 to 9, into one
// file), templates:I (template I, a file a record in a folder), xls (the spreadsheet), listing
// (the ".rtf" listing), html (a folder of HTML record pages with the paging index.php), htm (the
// pages of one record, --record N), php (the web form site; it takes no records), pdf (one PDF
// document of the records, or with --report K report K of the design) or pdfs (a PDF document a
// record). OUT is the folder and name of the export; its extension is cut and the
// kind adds its own. The range is all records, or --from and --to, in file order or in the order
// of --sort; --search exports the records a select or find line lists, in its order. The kind xml
// writes the XML text of one record, as Copy puts it on the clipboard, in UTF-8 (OUT "-" is
// standard output).

#include "cli/DatabaseCommand.h"

namespace ff {
class ExportRange;
struct ExportRequest;
}

namespace ff::cli {

class ExportCommand : public DatabaseCommand {
public:
    ExportCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    // The range the options ask for; false after a message when they do not fit the records.
    bool chooseRange(CliDatabase &database, const QCommandLineParser &parser, CommandIo &io, ExportRange &range);
    int exportXml(CliDatabase &database, const QString &out, const QCommandLineParser &parser, CommandIo &io);
    // pdf and pdfs: the records' pages as PDF documents.
    int exportPdf(CliDatabase &database, const ExportRequest &request, const QCommandLineParser &parser, CommandIo &io);

    QCommandLineOption fromOption_;
    QCommandLineOption toOption_;
    QCommandLineOption searchOption_;
    QCommandLineOption sortOption_;
    QCommandLineOption downOption_;
    QCommandLineOption threadsOption_;
    QCommandLineOption recordOption_;
    QCommandLineOption reportOption_;
};

} // namespace ff::cli
