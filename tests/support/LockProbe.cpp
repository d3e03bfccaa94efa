#include "support/LockProbe.h"

#include "support/Programs.h"

namespace ff::testsupport {

namespace {

QString probe() { return binaryPath(QStringLiteral("ff_lock_probe")); }

} // namespace

LockProbe::~LockProbe()
{
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished(5000);
    }
}

bool LockProbe::hold(const RecordPlace &place, const QByteArray &onRelease)
{
    QStringList args{QStringLiteral("hold"), place.file, QString::number(place.offset)};
    if (!onRelease.isEmpty())
        args << QString::fromLatin1(onRelease);
    process_.start(probe(), args);
    if (!process_.waitForStarted(10000))
        return false;
    while (!process_.canReadLine())
        if (!process_.waitForReadyRead(10000))
            return false;
    return process_.readLine().trimmed() == "locked";
}

bool LockProbe::release()
{
    process_.write("\n");
    process_.closeWriteChannel();
    if (!process_.waitForFinished(10000))
        return false;
    return process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0 &&
           process_.readAll().trimmed() == "released";
}

bool LockProbe::held(const RecordPlace &place)
{
    const ProgramRun run = runProgram(probe(), {QStringLiteral("test"), place.file, QString::number(place.offset)});
    return run.exitCode == 3 && run.out.trimmed() == "held";
}

bool LockProbe::write(const QVector<Write> &writes, bool wait)
{
    LockProbe probe;
    probe.startWrites(writes, wait);
    return probe.finishWrites();
}

void LockProbe::startWrites(const QVector<Write> &writes, bool wait)
{
    QStringList args{QStringLiteral("write")};
    if (wait)
        args << QStringLiteral("--wait");
    for (const Write &w : writes)
        args << w.place.file << QString::number(w.place.offset) << QString::fromLatin1(w.bytes);
    process_.start(probe(), args);
}

bool LockProbe::finishWrites(int timeoutMs)
{
    if (!process_.waitForFinished(timeoutMs))
        return false;
    return process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0 &&
           process_.readAllStandardOutput().trimmed() == "written";
}

} // namespace ff::testsupport
