#include "cli/MailCommand.h"

#include "pdf/RecordMailer.h"

#include <QDir>
#include <QJsonObject>

namespace ff::cli {

MailCommand::MailCommand()
    : DatabaseCommand(QStringLiteral("mail"), QStringLiteral("N"),
                      QStringLiteral("Writes the unsent mail message of record N with its pages as a PDF attached, as the\n"
                                     "mail button does, into the temporary folder, and prints its path. Opens nothing.\n"
                                     "With --report K: report K (from 1) over all records instead.")),
      reportOption_(QStringLiteral("report"), QStringLiteral("Mails report K of the design (from 1)."), QStringLiteral("K"))
{
    addOption(reportOption_);
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
    int report = 0;
    if (parser.isSet(reportOption_)) {
        report = parser.value(reportOption_).toInt(&ok);
        if (!ok || report < 1)
            return usageError(io, QStringLiteral("--report takes a report number from 1"));
    }
    const QString caption = database.db().design().MainCap;
    const QDate today = database.db().clock().today();
    Result<QString> written = QString();
    if (report > 0) {
        RecordStore &store = database.db().store();
        if (record < 1 || record > store.RecordCount() || !store.JumpToRecord(record)) {
            io.err << name() << ": no record " << record << " (the data file holds " << store.RecordCount() << ")\n";
            return 1;
        }
        written = mailer.MailReport(report - 1, caption, today);
    } else {
        written = mailer.MailRecord(record, caption, today);
    }
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
