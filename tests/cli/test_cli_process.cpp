// flatform-cli as a whole program: the exit code and the standard streams a script sees.

#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct Outcome {
    int code = -1;
    QByteArray out, err;
};

Outcome run(const QStringList &args, const QByteArray &input = QByteArray())
{
    QProcess p;
    p.start(QStringLiteral(FLATFORM_CLI_EXE), args);
    p.write(input);
    p.closeWriteChannel();
    p.waitForFinished(30000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(), p.readAllStandardError()};
}

TEST(CliProcess, ExitCodesAndStreams)
{
    const Outcome evaluated = run({QStringLiteral("eval"), QStringLiteral("-5+2")});
    EXPECT_EQ(evaluated.code, 0);
    EXPECT_EQ(evaluated.out, QByteArray("-3\n"));
    EXPECT_TRUE(evaluated.err.isEmpty());

    const Outcome lines = run({QStringLiteral("eval")}, QByteArray("1+1\n2*3\n"));
    EXPECT_EQ(lines.out, QByteArray("2\n6\n"));

    const Outcome unknown = run({QStringLiteral("nosuchverb")});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(unknown.out.isEmpty());
    EXPECT_FALSE(unknown.err.isEmpty());

    const Outcome missing = run({QStringLiteral("records"), QStringLiteral("/nonexistent/x.exe"), QStringLiteral("list")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(missing.out.isEmpty());

    const Outcome help = run({QStringLiteral("search"), QStringLiteral("--help")});
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.startsWith("Usage: flatform-cli search"));
}

} // namespace
