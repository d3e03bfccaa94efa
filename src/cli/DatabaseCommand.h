#pragma once
// A verb that works on an app image and its data file: `flatform-cli VERB IMAGE ... [--data FILE]
// [--json]`. The base reads the image and opens the data file once, the way the verb asks for it,
// refuses a writing verb on a read-only file, and hands the verb the open database and the
// arguments after IMAGE. --json asks for the output as one JSON document.

#include "cli/CliDatabase.h"
#include "cli/Command.h"

#include <QJsonDocument>
#include <optional>

namespace ff::cli {

class DatabaseCommand : public Command {
protected:
    DatabaseCommand(const QString &name, const QString &arguments, const QString &description);

    // How the data file is opened for these arguments (those after IMAGE); nothing when they do
    // not fit the verb, which is a usage error. Called before anything is opened.
    virtual std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const = 0;
    virtual int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                          CommandIo &io) = 0;

    bool jsonWanted(const QCommandLineParser &parser) const { return parser.isSet(jsonOption_); }
    static void writeJson(QTextStream &out, const QJsonDocument &document);

private:
    int execute(const QCommandLineParser &parser, const QStringList &arguments, CommandIo &io) final;

    QCommandLineOption dataOption_;
    QCommandLineOption jsonOption_;
};

} // namespace ff::cli
