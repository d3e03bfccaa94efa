#include "support/Programs.h"

#include <QDir>
#include <QProcess>

namespace ff::testsupport {

QString sourcePath(const QString &relative)
{
    return QDir(qEnvironmentVariable("FLATFORM_SOURCE_DIR")).filePath(relative);
}

QString binaryPath(const QString &program)
{
    return QDir(qEnvironmentVariable("FLATFORM_BINARY_DIR")).filePath(QStringLiteral("bin/") + program);
}

QString supportScript(const QString &name) { return sourcePath(QStringLiteral("tests/support/") + name); }

ProgramRun runProgram(const QString &program, const QStringList &arguments, const QByteArray &input, int timeoutMs)
{
    QProcess p;
    p.start(program, arguments);
    ProgramRun run;
    if (!p.waitForStarted(timeoutMs)) {
        run.err = p.errorString().toLocal8Bit();
        return run;
    }
    if (!input.isEmpty())
        p.write(input);
    p.closeWriteChannel();
    const bool finished = p.waitForFinished(timeoutMs);
    run.out = p.readAllStandardOutput();
    run.err = p.readAllStandardError();
    if (finished && p.exitStatus() == QProcess::NormalExit)
        run.exitCode = p.exitCode();
    else
        p.kill();
    return run;
}

ProgramRun runSupportScript(const QString &name, const QStringList &arguments, int timeoutMs)
{
    return runProgram(QStringLiteral("python3"), QStringList{supportScript(name)} + arguments, QByteArray(), timeoutMs);
}

} // namespace ff::testsupport
