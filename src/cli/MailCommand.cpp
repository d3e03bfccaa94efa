#include "cli/MailCommand.h"

#include "pdf/RecordMailer.h"

#include <QDir>
#include <QJsonObject>

namespace ff::cli {

MailCommand::MailCommand()
    : DatabaseCommand(QStringLiteral("mail"), QStringLiteral("N"),
                      QStringLiteral("Writes the unsent mail message of record N with its pages as a PDF attached, as the\n"
                                     "mail button does, into the temporary folder, and prints its path. Opens nothing."))
{
}

std::optional<CliDatabase::Access> MailCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

int MailCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                           CommandIo &io)
{
    bool ok = false;
    const int record = arguments[0].toInt(&ok);
    if (!ok)
        return usageError(io, QStringLiteral("N must be a record number, not \"%1\"").arg(arguments[0]));
    pdf::RecordMailer mailer(database.db().store(), database.context(), database.db().paths().AppFolder);
    const Result<QString> written =
        mailer.MailRecord(record, database.db().design().MainCap, database.db().clock().today());
    if (!written) {
        io.err << name() << ": " << written.error().text << "\n";
        return 1;
    }
    if (jsonWanted(parser)) {
        writeJson(io.out, QJsonDocument(QJsonObject{{QStringLiteral("path"), *written}}));
        return 0;
    }
    io.out << QDir::toNativeSeparators(*written) << "\n";
    return 0;
}

} // namespace ff::cli
