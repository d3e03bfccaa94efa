#pragma once
// One verb of flatform-cli. A verb declares its options and positional arguments once; run() parses
// what follows the verb on the command line with QCommandLineParser, answers --help with the verb's
// own help, and otherwise calls execute(). A word that starts with a minus and then no letter
// ("-5", "-(2)") is a positional argument, not an option. Output goes to `io.out`, errors to `io.err`, and the
// return value is the process's exit code: 0 done, 1 failed, 2 a usage error.

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QIODevice>
#include <QList>
#include <QStringList>
#include <QTextStream>

namespace ff::cli {

// Where a verb reads and writes: the process's standard streams, or buffers in a test.
struct CommandIo {
    QTextStream &out;
    QTextStream &err;
    QIODevice *in = nullptr; // lines for verbs that read them; null reads nothing
};

class Command {
public:
    // `arguments`: the positional part of the usage line ("IMAGE N"); `description`: one or more
    // lines for --help and the verb list.
    Command(QString name, QString arguments, QString description);
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    const QString &name() const { return name_; }
    const QString &description() const { return description_; }
    QString usage() const; // "records IMAGE SUBCOMMAND... [options]"
    QString helpText() const;

    // `arguments`: what follows the verb.
    int run(const QStringList &arguments, CommandIo &io);

protected:
    void addOption(const QCommandLineOption &option) { options_.append(option); }
    // Options only ahead of the first positional argument, and an argument that is not one of the
    // verb's options starts the positional ones: "eval -5+2" is an expression, not an option.
    void takeOptionsFirst() { optionsFirst_ = true; }
    // `arguments`: the positional arguments as they were given.
    virtual int execute(const QCommandLineParser &parser, const QStringList &arguments, CommandIo &io) = 0;
    // Long output already in UTF-8: straight to the stream's device when it has one (no second
    // conversion of a million lines), through the stream otherwise.
    static void writeUtf8(QTextStream &out, const QByteArray &text);
    // "VERB: why" (when given) and the usage line on stderr; exit code 2.
    int usageError(CommandIo &io, const QString &why = QString()) const;

private:
    bool namesOption(const QString &argument) const;

    QString name_;
    QString arguments_;
    QString description_;
    QList<QCommandLineOption> options_;
    QCommandLineOption helpOption_;
    bool optionsFirst_ = false;
};

} // namespace ff::cli
