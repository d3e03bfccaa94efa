#include "cli/DatabaseCommand.h"

namespace ff::cli {

DatabaseCommand::DatabaseCommand(const QString &name, const QString &arguments, const QString &description)
    : Command(name, QStringLiteral("IMAGE ") + arguments, description),
      dataOption_(QStringLiteral("data"), QStringLiteral("The record file to use instead of the image's own."),
                  QStringLiteral("FILE")),
      jsonOption_(QStringLiteral("json"), QStringLiteral("Writes the output as one JSON document."))
{
    addOption(dataOption_);
    addOption(jsonOption_);
}

void DatabaseCommand::writeJson(QTextStream &out, const QJsonDocument &document)
{
    out << QString::fromUtf8(document.toJson(QJsonDocument::Indented));
}

int DatabaseCommand::execute(const QCommandLineParser &parser, const QStringList &positional, CommandIo &io)
{
    QStringList arguments = positional;
    if (arguments.isEmpty())
        return usageError(io, QStringLiteral("no image given"));
    const QString image = arguments.takeFirst();
    const std::optional<CliDatabase::Access> how = access(arguments, parser);
    if (!how)
        return usageError(io);
    CliDatabase database(io.err, name());
    if (!database.open(image, parser.value(dataOption_), *how))
        return 1;
    if (*how != CliDatabase::Access::Read && !database.db().store().writingAllowed()) {
        io.err << name() << ": " << database.db().DataFileName << " is read-only; nothing written\n";
        return 1;
    }
    return executeOn(database, arguments, parser, io);
}

} // namespace ff::cli
