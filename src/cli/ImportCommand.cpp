#include "cli/ImportCommand.h"

#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "export/ImportXmlFiles.h"
#include "export/RecordImport.h"
#include "export/TextImport.h"
#include "store/RecordLayout.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace ff::cli {

namespace {

// The import's messages (the record limit) on stderr after the verb's name.
class ErrorStreamMessages : public MessageSink {
public:
    ErrorStreamMessages(QTextStream &err, QString verb) : err_(err), verb_(std::move(verb)) {}
    void ShowMessage(const QString &, const QString &text, int) override { err_ << verb_ << ": " << text << "\n"; }

private:
    QTextStream &err_;
    QString verb_;
};

bool extensionIs(const QString &fileName, const QString &extension)
{
    return !extension.isEmpty() && QFileInfo(fileName).suffix().compare(extension, Qt::CaseInsensitive) == 0;
}

} // namespace

ImportCommand::ImportCommand()
    : DatabaseCommand(QStringLiteral("import"), QStringLiteral("FILE..."),
                      QStringLiteral(
                          "Adds records from files at the end of the data file.\n"
                          "A file with the design's data extension is a record file of this design, one\n"
                          "ending in .xml an XML record (one record each), any other delimited text whose\n"
                          "head row names the fields by their tags, separated by the design's separator."))
{
}

ImportCommand::Kind ImportCommand::kindOf(const QString &fileName, const QString &textExtension,
                                          const QString &dataExtension)
{
    if (extensionIs(fileName, textExtension))
        return Kind::DelimitedText;
    if (extensionIs(fileName, QStringLiteral("xml")))
        return Kind::Xml;
    if (extensionIs(fileName, dataExtension))
        return Kind::RecordFile;
    return Kind::DelimitedText;
}

std::optional<CliDatabase::Access> ImportCommand::access(const QStringList &arguments, const QCommandLineParser &parser) const
{
    if (arguments.isEmpty())
        return std::nullopt;
    // Whether the data file holds a record yet, before the opening adds a blank one to an empty file.
    storeWasEmpty_ = false;
    const QString image = parser.positionalArguments().value(0);
    const DesignLoad load = ReadDesign(image, DesignReadOptions{});
    if (load.complete()) {
        QString data = parser.value(QStringLiteral("data"));
        if (data.isEmpty())
            data = ParseCommandLine(QFileInfo(image).absoluteFilePath(), {}).dataFileName(load.design.DataExtension);
        const QFileInfo info(data);
        const int length = ComputeRecordLayout(load.design).RecordLength;
        const QString secondPart = (data.lastIndexOf(QLatin1Char('.')) > data.lastIndexOf(QLatin1Char('/'))
                                        ? data.left(data.lastIndexOf(QLatin1Char('.')))
                                        : data)
                                   + QStringLiteral("0001");
        storeWasEmpty_ = (!info.exists() || info.size() < length) && !QFileInfo::exists(secondPart);
    }
    return CliDatabase::Access::Write;
}

int ImportCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                             CommandIo &io)
{
    Database &db = database.db();
    const Design &design = db.design();
    ErrorStreamMessages messages(io.err, name());
    ImportSetup setup;
    setup.store = &db.store();
    setup.messages = &messages;
    setup.formulaContext = &database.context();
    setup.storeWasEmpty = storeWasEmpty_;

    int status = 0;
    int total = 0;
    QJsonArray files;
    for (const QString &file : arguments) {
        Result<ImportReport> report = makeError(ErrorCode::Invalid, QString());
        if (!QFileInfo(file).isFile()) {
            report = makeError(ErrorCode::FileNotFound, QStringLiteral("%1: no such file").arg(file));
        } else {
            switch (kindOf(file, design.TextExtension, design.DataExtension)) {
            case Kind::DelimitedText: report = TextImport::run(file, setup); break;
            case Kind::Xml: report = ImportXmlFiles::run(QStringList{file}, setup); break;
            case Kind::RecordFile: report = RecordImport::run(file, setup); break;
            }
        }
        QJsonObject entry{{QStringLiteral("file"), file}};
        if (!report) {
            io.err << name() << ": " << report.error().text << "\n";
            entry.insert(QStringLiteral("error"), report.error().text);
            files.append(entry);
            status = 1;
            continue;
        }
        for (const QString &warning : std::as_const(report->warnings))
            io.err << name() << ": " << file << ": " << warning << "\n";
        // Only the first file can fill the blank record of an empty store.
        if (report->added > 0)
            setup.storeWasEmpty = false;
        total += report->added;
        entry.insert(QStringLiteral("added"), report->added);
        entry.insert(QStringLiteral("first"), report->firstRecord);
        files.append(entry);
        if (!jsonWanted(parser)) {
            io.out << file << ": " << report->added << (report->added == 1 ? " record" : " records") << " added";
            if (report->added > 0)
                io.out << " (" << report->firstRecord << " to " << report->firstRecord + report->added - 1 << ")";
            io.out << "\n";
        }
        if (report->limitReached) {
            status = 1; // the rest could not be added; what was added stays
            break;
        }
        if (report->added == 0 && !report->warnings.isEmpty())
            status = 1; // nothing of the file could be used
    }
    if (jsonWanted(parser))
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("added"), total}, {QStringLiteral("files"), files},
                                                    {QStringLiteral("count"), db.store().RecordCount()}}));
    return status;
}

} // namespace ff::cli
