#include "cli/ExportCommand.h"

#include "export/RecordExport.h"
#include "export/XmlRecord.h"
#include "pdf/PdfRecordExport.h"
#include "pdf/PdfReportExport.h"
#include "print/StoreRecords.h"
#include "search/SearchEngine.h"
#include "search/SearchNames.h"
#include "search/SortIndexBuilder.h"
#include "web/WebExport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <optional>

namespace ff::cli {

namespace {

const char kKinds[] = "text, copy, template:I, templates:I, xls, listing, html, htm, php, pdf, pdfs or xml";

// The kinds by name; xml, one record's text, is told apart ahead of these.
std::optional<ExportChoice> parseKind(const QString &word)
{
    const QString kind = word.toLower();
    if (kind == QLatin1String("text"))
        return ExportChoice{ExportKind::DelimitedText, -1, true};
    if (kind == QLatin1String("copy"))
        return ExportChoice{ExportKind::RecordCopy, -1, true};
    if (kind == QLatin1String("xls"))
        return ExportChoice{ExportKind::Spreadsheet, -1, true};
    if (kind == QLatin1String("listing"))
        return ExportChoice{ExportKind::Listing, -1, true};
    if (kind == QLatin1String("html"))
        return ExportChoice{ExportKind::HtmlPages, -1, true};
    if (kind == QLatin1String("htm"))
        return ExportChoice{ExportKind::HtmlCurrent, -1, true};
    if (kind == QLatin1String("php"))
        return ExportChoice{ExportKind::PhpSite, -1, true};
    if (kind == QLatin1String("pdf"))
        return ExportChoice{ExportKind::Pdf, -1, true};
    if (kind == QLatin1String("pdfs"))
        return ExportChoice{ExportKind::PdfPerRecord, -1, true};
    for (const bool oneFile : {true, false}) {
        const QString prefix = oneFile ? QStringLiteral("template:") : QStringLiteral("templates:");
        if (!kind.startsWith(prefix))
            continue;
        bool ok = false;
        const int index = kind.mid(prefix.size()).toInt(&ok);
        if (!ok || index < 0 || index >= kTemplateCount)
            return std::nullopt;
        return ExportChoice::Template(index, oneFile);
    }
    return std::nullopt;
}

} // namespace

ExportCommand::ExportCommand()
    : DatabaseCommand(QStringLiteral("export"), QStringLiteral("KIND OUT"),
                      QStringLiteral("Writes records to a file as the export command does.\n"
                                     "KIND is text, copy, template:I (template I, 0 to 9, one file), templates:I (a file\n"
                                     "a record in a folder), xls, listing, html (a folder of record pages with index.php),\n"
                                     "htm (the pages of record --record N, 1 unless given), php (the form site), pdf (one\n"
                                     "PDF document) or pdfs (a PDF document a record, OUT and its place in ten digits). OUT is\n"
                                     "the folder and name; the kind adds its extension. All records in file order unless\n"
                                     "--from, --to, --sort or --search.\n"
                                     "KIND xml writes the XML text of record --record N to OUT (\"-\": standard output).")),
      fromOption_(QStringLiteral("from"), QStringLiteral("The first place of the range (default 1)."), QStringLiteral("N")),
      toOption_(QStringLiteral("to"), QStringLiteral("The last place of the range (default the last record)."),
                QStringLiteral("M")),
      searchOption_(QStringLiteral("search"),
                    QStringLiteral("Exports the records a select or find line lists, in its order."),
                    QStringLiteral("LINE")),
      sortOption_(QStringLiteral("sort"),
                  QStringLiteral("Walks the range in the order of one element (a name from the tags, or F1, C1, K0, M1)."),
                  QStringLiteral("TAG")),
      downOption_(QStringLiteral("down"), QStringLiteral("With --sort: from the largest value down.")),
      threadsOption_(QStringLiteral("threads"), QStringLiteral("Threads of the text export (default: as it sees fit)."),
                     QStringLiteral("N")),
      recordOption_(QStringLiteral("record"), QStringLiteral("With xml and htm: the record to write."), QStringLiteral("N")),
      reportOption_(QStringLiteral("report"),
                    QStringLiteral("With pdf: report K of the design (from 1) over all records or the --search hits."),
                    QStringLiteral("K"))
{
    addOption(fromOption_);
    addOption(toOption_);
    addOption(searchOption_);
    addOption(sortOption_);
    addOption(downOption_);
    addOption(threadsOption_);
    addOption(recordOption_);
    addOption(reportOption_);
}

std::optional<CliDatabase::Access> ExportCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 2)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

bool ExportCommand::chooseRange(CliDatabase &database, const QCommandLineParser &parser, CommandIo &io,
                                ExportRange &range)
{
    RecordStore &store = database.db().store();
    const int count = store.RecordCount();
    if (parser.isSet(searchOption_)) {
        if (parser.isSet(fromOption_) || parser.isSet(toOption_) || parser.isSet(sortOption_)) {
            io.err << name() << ": --search exports the listed records in their order; it takes no --from, --to or --sort\n";
            return false;
        }
        const QString line = parser.value(searchOption_);
        SearchEngine engine(store, database.db().DecimalSeparator);
        const CompiledQuery query = engine.compile(line, false, engine.names().describe(SearchKind::Field, 1));
        if (!query.unmatchedNames.isEmpty()) {
            io.err << name() << ": \"" << query.unmatchedNames.join(QStringLiteral("\", \"")) << "\" names no stored element\n";
            return false;
        }
        if (query.command != CommandKind::Select && query.command != CommandKind::Find) {
            io.err << name() << ": the search line must select or find records\n";
            return false;
        }
        if (!query.runnable() || (query.command == CommandKind::Find && !query.wholeRecord && !query.findField.valid())) {
            io.err << name() << ": the search line has nothing to find\n";
            return false;
        }
        SearchOptions options;
        options.hitCap = INT32_MAX;
        const SearchResult result = engine.run(query, options);
        if (result.hits.isEmpty()) {
            io.err << name() << ": the search found no records; nothing exported\n";
            return false;
        }
        range = ExportRange::ResultList(result.hits, count);
        return true;
    }

    int first = 1, last = count;
    for (const auto &[option, value] : {std::pair{&fromOption_, &first}, std::pair{&toOption_, &last}}) {
        if (!parser.isSet(*option))
            continue;
        bool ok = false;
        *value = parser.value(*option).toInt(&ok);
        if (!ok) {
            io.err << name() << ": --" << option->names().first() << " takes a number, not \"" << parser.value(*option) << "\"\n";
            return false;
        }
    }
    BrowseOrder order = BrowseOrder::FileOrder;
    if (parser.isSet(sortOption_)) {
        const SearchNames names(store.design(), store.layout());
        const SearchField field = names.byTag(parser.value(sortOption_));
        if (!field.valid()) {
            io.err << name() << ": no stored element " << parser.value(sortOption_) << "\n";
            return false;
        }
        order = parser.isSet(downOption_) ? BrowseOrder::SortIndexDown : BrowseOrder::SortIndexUp;
        if (const Status s = SortIndexBuilder::BuildSortIndex(store, field, order); !s) {
            io.err << name() << ": " << s.error().text << "\n";
            return false;
        }
    } else if (parser.isSet(downOption_)) {
        io.err << name() << ": --down goes with --sort\n";
        return false;
    }
    range = ExportRange::Records(first, last, count, order, store.SortIndex());
    return true;
}

int ExportCommand::exportXml(CliDatabase &database, const QString &out, const QCommandLineParser &parser, CommandIo &io)
{
    bool ok = false;
    const int record = parser.value(recordOption_).toInt(&ok);
    if (!parser.isSet(recordOption_) || !ok)
        return usageError(io, QStringLiteral("xml writes one record: give --record N"));
    RecordStore &store = database.db().store();
    if (record < 1 || record > store.RecordCount() || !store.JumpToRecord(record)) {
        io.err << name() << ": no record " << record << " (the data file holds " << store.RecordCount() << ")\n";
        return 1;
    }
    const QString text = XmlRecord::CopyAll(store.page(), record);
    if (out == QLatin1String("-")) {
        io.out << text;
        return 0;
    }
    QFile file(out);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        io.err << name() << ": " << out << ": " << file.errorString() << "\n";
        return 1;
    }
    io.out << "exported record " << record << " to " << QDir::toNativeSeparators(out) << "\n";
    return 0;
}

int ExportCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                             CommandIo &io)
{
    if (arguments[0].compare(QLatin1String("xml"), Qt::CaseInsensitive) == 0)
        return exportXml(database, arguments[1], parser, io);
    const std::optional<ExportChoice> choice = parseKind(arguments[0]);
    if (!choice)
        return usageError(io, QStringLiteral("unknown kind \"%1\" (%2)").arg(arguments[0], QLatin1String(kKinds)));
    const QFileInfo out(arguments[1]);
    if (out.fileName().isEmpty() || out.isDir())
        return usageError(io, QStringLiteral("OUT must name a file in a folder, not \"%1\"").arg(arguments[1]));

    ExportRequest request;
    request.choice = *choice;
    request.folder = out.path();
    request.name = out.fileName();
    if (parser.isSet(threadsOption_)) {
        bool ok = false;
        request.threads = parser.value(threadsOption_).toInt(&ok);
        if (!ok || request.threads < 1)
            return usageError(io, QStringLiteral("--threads takes a number from 1"));
    }
    RecordStore &store = database.db().store();
    if (request.choice.kind == ExportKind::HtmlCurrent) {
        // The record on screen: the one --record names.
        int record = 1;
        if (parser.isSet(recordOption_)) {
            bool ok = false;
            record = parser.value(recordOption_).toInt(&ok);
            if (!ok)
                return usageError(io, QStringLiteral("--record takes a number"));
        }
        if (record < 1 || record > store.RecordCount()) {
            io.err << name() << ": no record " << record << " (the data file holds " << store.RecordCount() << ")\n";
            return 1;
        }
        request.range = ExportRange::Records(record, record, store.RecordCount());
    } else if (request.choice.kind != ExportKind::PhpSite && !chooseRange(database, parser, io, request.range)) {
        return 1;
    }

    if (request.choice.kind == ExportKind::Pdf || request.choice.kind == ExportKind::PdfPerRecord)
        return exportPdf(database, request, parser, io);

    const bool web = web::WebExport::handles(request.choice.kind);
    RecordExport exporter(store, database.context());
    web::WebExport webExporter(store, database.context(), database.db().paths().AppFolder);
    const Result<ExportOutcome> done = web ? webExporter.run(request.choice.kind, request.range, request.folder, request.name)
                                           : exporter.run(request, nullptr);
    if (!done) {
        io.err << name() << ": " << done.error().text << "\n";
        return 1;
    }
    if (jsonWanted(parser)) {
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("records"), done->records},
                                                    {QStringLiteral("path"), done->path},
                                                    {QStringLiteral("pictures"), done->pictures}}));
        return 0;
    }
    io.out << "exported " << done->records << (done->records == 1 ? " record" : " records") << " to "
           << QDir::toNativeSeparators(done->path);
    if (done->pictures > 0)
        io.out << " with " << done->pictures << (done->pictures == 1 ? " picture" : " pictures");
    io.out << "\n";
    return 0;
}

int ExportCommand::exportPdf(CliDatabase &database, const ExportRequest &request, const QCommandLineParser &parser,
                             CommandIo &io)
{
    const bool perRecord = request.choice.kind == ExportKind::PdfPerRecord;
    const QString base = QDir(request.folder).filePath(CutExportExtension(request.name));
    if (parser.isSet(reportOption_)) {
        bool ok = false;
        const int report = parser.value(reportOption_).toInt(&ok);
        if (!ok || perRecord)
            return usageError(io, QStringLiteral("--report K goes with the kind pdf and takes a number"));
        RecordStore &store = database.db().store();
        QVector<int> list;
        if (request.range.resultList())
            for (int i = request.range.ExportFirst(); i <= request.range.ExportLast(); ++i)
                list.append(request.range.recordAt(i));
        print::StoreRecords records(store);
        pdf::PdfReportExport exporter(database.db().design(), database.db().paths().AppFolder, store.RecordPictureFolder());
        const Result<int> pages = exporter.ExportPDFreport(report - 1, records, base + QStringLiteral(".pdf"),
                                                           request.range.resultList() ? &list : nullptr);
        if (!pages) {
            io.err << name() << ": " << pages.error().text << "\n";
            return 1;
        }
        io.out << "exported report " << report << " on " << *pages << (*pages == 1 ? " page" : " pages") << " to "
               << QDir::toNativeSeparators(base + QStringLiteral(".pdf")) << "\n";
        return 0;
    }
    pdf::PdfRecordExport exporter(database.db().store(), database.context(), database.db().paths().AppFolder);
    const Result<pdf::PdfOutcome> done =
        exporter.PrintPDF(perRecord ? base : base + QStringLiteral(".pdf"),
                          perRecord ? pdf::PdfMode::DocumentPerRecord : pdf::PdfMode::OneDocument, request.range);
    if (!done) {
        io.err << name() << ": " << done.error().text << "\n";
        return 1;
    }
    if (jsonWanted(parser)) {
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("records"), done->records},
                                                    {QStringLiteral("pages"), done->pages},
                                                    {QStringLiteral("files"), QJsonArray::fromStringList(done->files)}}));
        return 0;
    }
    io.out << "exported " << done->records << (done->records == 1 ? " record" : " records") << " on " << done->pages
           << (done->pages == 1 ? " page" : " pages") << " to ";
    if (done->files.size() == 1)
        io.out << QDir::toNativeSeparators(done->files.first()) << "\n";
    else
        io.out << done->files.size() << " files named " << QDir::toNativeSeparators(base) << "NNNNNNNNNN.pdf\n";
    return 0;
}

} // namespace ff::cli
