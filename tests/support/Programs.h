#pragma once
// The test's surroundings and the programs it starts: the source and build folders (set by CTest),
// the built programs, the Python scripts beside this file, and a runner that collects the exit
// code and both outputs.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace ff::testsupport {

QString sourcePath(const QString &relative);  // in the source tree
QString binaryPath(const QString &program);  // a program built into bin/
QString supportScript(const QString &name);   // a script in tests/support

struct ProgramRun {
    int exitCode = -1; // -1 when the program did not start, crashed or timed out
    QByteArray out;
    QByteArray err;
};

ProgramRun runProgram(const QString &program, const QStringList &arguments, const QByteArray &input = QByteArray(),
                      int timeoutMs = 60000);
// python3 with a script of tests/support.
ProgramRun runSupportScript(const QString &name, const QStringList &arguments, int timeoutMs = 60000);

} // namespace ff::testsupport
