#pragma once
// Runs flatform-cli verbs in the test's own process, on text buffers instead of the standard
// streams, and builds the example images they work on.

#include "cli/CommandLine.h"
#include "support/ExampleImage.h"

#include <QBuffer>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ff::testsupport {

struct CliRun {
    int code = -1;
    QString out, err;
};

// `input`: what the verb reads as standard input.
inline CliRun runCli(const QStringList &arguments, const QByteArray &input = QByteArray())
{
    CliRun run;
    QTextStream out(&run.out), err(&run.err);
    QBuffer in;
    in.setData(input);
    in.open(QIODevice::ReadOnly);
    ff::cli::CommandIo io{out, err, &in};
    run.code = ff::cli::runCommandLine(arguments, io);
    out.flush();
    err.flush();
    return run;
}

inline QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The line "TAG<tab>value" of a record listing; "<missing>" when there is none.
inline QString valueOf(const QString &listing, const QString &tag)
{
    for (const QString &line : listing.split(QLatin1Char('\n')))
        if (line.startsWith(tag + QLatin1Char('\t')))
            return line.mid(tag.size() + 1);
    return QStringLiteral("<missing>");
}

inline QJsonDocument parsedJson(const CliRun &run)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(run.out.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << "\n" << run.out.toStdString();
    return document;
}

// An example image in a folder of its own, with a data file named apart from the image's.
class ExampleCli : public ::testing::Test {
protected:
    void open(const QString &example)
    {
        ASSERT_TRUE(dir.isValid());
        image = buildExample(example, dir.path()).path;
        data = dir.filePath(QStringLiteral("people.dat"));
    }
    // flatform-cli VERB IMAGE --data DATA args...
    CliRun cli(const QString &verb, const QStringList &args) const
    {
        return runCli(QStringList{verb, image, QStringLiteral("--data"), data} + args);
    }
    CliRun records(const QStringList &args) const { return cli(QStringLiteral("records"), args); }

    QTemporaryDir dir;
    QString image, data;
};

} // namespace ff::testsupport
