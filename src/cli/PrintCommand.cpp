#include "cli/PrintCommand.h"

#include "print/PdfTarget.h"
#include "print/RecordPrinter.h"
#include "print/ReportEngine.h"
#include "print/StoreRecords.h"
#include "search/SearchEngine.h"
#include "search/SearchNames.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace ff::cli {

namespace {

// A page size in twips as a paper size; the standard sheet when it is one.
QPageSize pageSizeOf(double widthTwips, double heightTwips, QPageLayout::Orientation &orientation)
{
    orientation = widthTwips > heightTwips ? QPageLayout::Landscape : QPageLayout::Portrait;
    const QSizeF points(qMin(widthTwips, heightTwips) / 20.0, qMax(widthTwips, heightTwips) / 20.0);
    return QPageSize(points, QPageSize::Point, QString(), QPageSize::FuzzyMatch);
}

} // namespace

PrintCommand::PrintCommand()
    : DatabaseCommand(QStringLiteral("print"), QStringLiteral("OUT.pdf"),
                      QStringLiteral("Prints records into a PDF file as the print command sends them to the printer.\n"
                                     "Without --report: the pages of each record (--record N, or --from N --to M, or the\n"
                                     "records of --search; all records when none is given) on A4 sheets. With --report K:\n"
                                     "report K (from 1, as in the report menu) over all records or the --search hits, on\n"
                                     "the report's own page size. Tells the sheets and the records printed.")),
      recordOption_(QStringLiteral("record"), QStringLiteral("The one record to print."), QStringLiteral("N")),
      fromOption_(QStringLiteral("from"), QStringLiteral("The first record to print."), QStringLiteral("N")),
      toOption_(QStringLiteral("to"), QStringLiteral("The last record to print."), QStringLiteral("M")),
      reportOption_(QStringLiteral("report"), QStringLiteral("Prints report K of the design (from 1)."), QStringLiteral("K")),
      searchOption_(QStringLiteral("search"), QStringLiteral("Prints the records a select or find line lists."),
                    QStringLiteral("LINE"))
{
    addOption(recordOption_);
    addOption(fromOption_);
    addOption(toOption_);
    addOption(reportOption_);
    addOption(searchOption_);
}

std::optional<CliDatabase::Access> PrintCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

std::optional<QVector<int>> PrintCommand::searched(CliDatabase &database, const QString &line, CommandIo &io)
{
    RecordStore &store = database.db().store();
    SearchEngine engine(store, database.db().DecimalSeparator);
    const CompiledQuery query = engine.compile(line, false, engine.names().describe(SearchKind::Field, 1));
    if (!query.unmatchedNames.isEmpty()) {
        io.err << name() << ": \"" << query.unmatchedNames.join(QStringLiteral("\", \"")) << "\" names no stored element\n";
        return std::nullopt;
    }
    if ((query.command != CommandKind::Select && query.command != CommandKind::Find) || !query.runnable()) {
        io.err << name() << ": the search line must select or find records\n";
        return std::nullopt;
    }
    SearchOptions options;
    options.hitCap = INT32_MAX;
    const SearchResult result = engine.run(query, options);
    if (result.hits.isEmpty()) {
        io.err << name() << ": the search found no records; nothing printed\n";
        return std::nullopt;
    }
    return QVector<int>(result.hits.begin(), result.hits.end());
}

int PrintCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                            CommandIo &io)
{
    const QString out = arguments[0];
    if (QFileInfo(out).fileName().isEmpty() || QFileInfo(out).isDir())
        return usageError(io, QStringLiteral("OUT must name a PDF file, not \"%1\"").arg(out));
    RecordStore &store = database.db().store();
    const Design &design = database.db().design();
    const int count = store.RecordCount();

    const auto number = [&](const QCommandLineOption &option, int fallback, bool &ok) {
        ok = true;
        if (!parser.isSet(option))
            return fallback;
        const int value = parser.value(option).toInt(&ok);
        if (!ok)
            io.err << name() << ": --" << option.names().first() << " takes a number, not \"" << parser.value(option) << "\"\n";
        return value;
    };
    bool ok = true;
    if (parser.isSet(recordOption_) && (parser.isSet(fromOption_) || parser.isSet(toOption_)))
        return usageError(io, QStringLiteral("give --record or --from and --to, not both"));
    if (parser.isSet(searchOption_) && (parser.isSet(recordOption_) || parser.isSet(fromOption_) || parser.isSet(toOption_)))
        return usageError(io, QStringLiteral("--search prints the listed records; it takes no --record, --from or --to"));

    QVector<int> records;
    std::optional<QVector<int>> hits;
    if (parser.isSet(searchOption_)) {
        hits = searched(database, parser.value(searchOption_), io);
        if (!hits)
            return 1;
        records = *hits;
    } else {
        const int one = number(recordOption_, 0, ok);
        if (!ok)
            return 2;
        int first = one > 0 ? one : number(fromOption_, 1, ok);
        if (!ok)
            return 2;
        int last = one > 0 ? one : number(toOption_, count, ok);
        if (!ok)
            return 2;
        if (parser.isSet(recordOption_) && (one < 1 || one > count)) {
            io.err << name() << ": no record " << one << " (the data file holds " << count << ")\n";
            return 1;
        }
        first = qMax(1, first);
        last = qMin(count, last);
        if (first > last) {
            io.err << name() << ": no records from " << first << " to " << last << " (the data file holds " << count << ")\n";
            return 1;
        }
        for (int r = first; r <= last; ++r)
            records.append(r);
    }

    const QString pictures = database.db().paths().AppFolder;
    print::RecordPrinter drawing(design, pictures, QDir(pictures).filePath(QStringLiteral("Images")));
    drawing.setRecordPictureFolder(store.RecordPictureFolder());
    drawing.setDecimalSeparator(database.db().DecimalSeparator);
    print::StoreRecords source(store);
    int sheets = 0;
    QVector<int> printed;

    if (parser.isSet(reportOption_)) {
        const int k = number(reportOption_, 1, ok);
        if (!ok)
            return 2;
        Result<print::ReportEngine> loaded = print::ReportEngine::ReportLoading(design, k - 1);
        if (!loaded) {
            io.err << name() << ": " << loaded.error().text << "\n";
            return 1;
        }
        print::ReportEngine &report = *loaded;
        report.setPictureFolder(pictures);
        report.setRecordPictureFolder(store.RecordPictureFolder());
        if (hits)
            report.setSource(print::ReportSource::SearchList, *hits);
        if (Status started = report.ReportStart(source, 1); !started) {
            io.err << name() << ": " << started.error().text << "\n";
            return 1;
        }
        QPageLayout::Orientation orientation;
        const QPageSize size = pageSizeOf(report.pageWidth(), report.pageHeight(), orientation);
        print::PdfTarget target(out, size, orientation);
        print::Printer printer(target);
        const Result<int> done = report.printPages(printer, drawing, source, 1, report.pageCount());
        if (!done) {
            io.err << name() << ": " << done.error().text << "\n";
            return 1;
        }
        sheets = target.pages();
        for (int p = 0; p * report.RowsPerPage() < report.RecordTotal(); ++p)
            for (int row = 1; row <= report.RowsPerPage(); ++row) {
                const int position = p * report.RowsPerPage() + row;
                if (position <= report.RecordTotal())
                    printed.append(hits ? (*hits)[position - 1] : position);
            }
    } else {
        QPageLayout::Orientation orientation;
        const QPageSize size = design.PageWidth > 11906 || design.PageWidth > design.PageHeight
                                   ? pageSizeOf(16838, 11906, orientation)
                                   : pageSizeOf(11906, 16838, orientation);
        print::PdfTarget target(out, size, orientation);
        print::Printer printer(target);
        drawing.setPageRange(0, design.PageCount);
        drawing.setShownPage(store.page().CurrentPage);
        for (const int record : records) {
            if (Status shown = store.JumpToRecord(record); !shown) {
                io.err << name() << ": record " << record << ": " << shown.error().text << "\n";
                printer.KillDoc();
                return 1;
            }
            drawing.PrintRecordPages(printer, store.page());
            printed.append(record);
        }
        if (Status ended = printer.EndDoc(); !ended) {
            io.err << name() << ": " << ended.error().text << "\n";
            return 1;
        }
        sheets = target.pages();
    }

    if (jsonWanted(parser)) {
        QJsonArray list;
        for (const int r : printed)
            list.append(r);
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("pages"), sheets},
                                                    {QStringLiteral("records"), list},
                                                    {QStringLiteral("path"), QFileInfo(out).absoluteFilePath()}}));
        return 0;
    }
    io.out << "pages: " << sheets << "\n";
    io.out << "records:";
    for (const int r : printed)
        io.out << " " << r;
    io.out << "\n";
    return 0;
}

} // namespace ff::cli
