// flatform-cli as a whole program: the exit code and the standard streams a script sees.

#include "support/Programs.h"

#include <gtest/gtest.h>

namespace {

ff::testsupport::ProgramRun run(const QStringList &args, const QByteArray &input = QByteArray())
{
    return ff::testsupport::runProgram(QStringLiteral(FLATFORM_CLI_EXE), args, input);
}

TEST(CliProcess, ExitCodesAndStreams)
{
    const ff::testsupport::ProgramRun evaluated = run({QStringLiteral("eval"), QStringLiteral("-5+2")});
    EXPECT_EQ(evaluated.exitCode, 0);
    EXPECT_EQ(evaluated.out, QByteArray("-3\n"));
    EXPECT_TRUE(evaluated.err.isEmpty());

    const ff::testsupport::ProgramRun lines = run({QStringLiteral("eval")}, QByteArray("1+1\n2*3\n"));
    EXPECT_EQ(lines.out, QByteArray("2\n6\n"));

    const ff::testsupport::ProgramRun unknown = run({QStringLiteral("nosuchverb")});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.out.isEmpty());
    EXPECT_FALSE(unknown.err.isEmpty());

    const ff::testsupport::ProgramRun missing = run({QStringLiteral("records"), QStringLiteral("/nonexistent/x.exe"), QStringLiteral("list")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.out.isEmpty());

    const ff::testsupport::ProgramRun help = run({QStringLiteral("search"), QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.startsWith("Usage: flatform-cli search"));
}

} // namespace
