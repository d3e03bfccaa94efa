// The command line itself: the verb list, each verb's --help, usage errors, and eval's expressions,
// which may start with a minus that no option parser may take for an option.

#include "cli/CliRunner.h"

using ff::testsupport::runCli;

namespace {

const char *const kVerbs[] = {"dump-design", "records", "formulas", "eval", "search", "sort"};

TEST(CliCommands, TopLevelHelpListsEveryVerb)
{
    const ff::testsupport::CliRun help = runCli({QStringLiteral("--help")});
    EXPECT_EQ(help.code, 0);
    for (const char *verb : kVerbs)
        EXPECT_TRUE(help.out.contains(QStringLiteral("\n  %1 ").arg(QLatin1String(verb)))) << verb;

    const ff::testsupport::CliRun none = runCli({});
    EXPECT_EQ(none.code, 2);
    EXPECT_TRUE(none.err.contains(QLatin1String("records"))) << "without a verb the list goes to stderr";
    const ff::testsupport::CliRun unknown = runCli({QStringLiteral("frobnicate")});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(unknown.err.contains(QLatin1String("unknown verb \"frobnicate\"")));
}

TEST(CliCommands, EveryVerbAnswersHelpWithItsOwnUsageAndOptions)
{
    struct Case {
        const char *verb;
        QStringList options; // besides --help
    };
    const Case cases[] = {
        {"dump-design", {}},
        {"records", {QStringLiteral("--data <FILE>"), QStringLiteral("--json")}},
        {"formulas", {QStringLiteral("--data <FILE>"), QStringLiteral("--json"), QStringLiteral("--set <TAG=VALUE>")}},
        {"eval", {}},
        {"search", {QStringLiteral("--data <FILE>"), QStringLiteral("--json"), QStringLiteral("--field <TAG>"),
                    QStringLiteral("--forward"), QStringLiteral("--match-case"), QStringLiteral("--one-thread"),
                    QStringLiteral("--silent")}},
        {"sort", {QStringLiteral("--data <FILE>"), QStringLiteral("--json"), QStringLiteral("--down")}},
    };
    for (const Case &c : cases) {
        const QString verb = QLatin1String(c.verb);
        for (const QString &ask : {QStringLiteral("--help"), QStringLiteral("-h")}) {
            const ff::testsupport::CliRun help = runCli({verb, ask});
            EXPECT_EQ(help.code, 0) << c.verb;
            EXPECT_TRUE(help.out.startsWith(QStringLiteral("Usage: flatform-cli ") + verb + QLatin1Char(' ')))
                << help.out.toStdString();
            EXPECT_TRUE(help.out.contains(QLatin1String("-h, --help"))) << c.verb;
            for (const QString &option : c.options)
                EXPECT_TRUE(help.out.contains(option)) << c.verb << " lacks " << option.toStdString();
            EXPECT_TRUE(help.err.isEmpty()) << help.err.toStdString();
        }
        // After an argument too, except for eval, where everything after the first word is expression.
        if (verb != QLatin1String("eval")) {
            EXPECT_TRUE(runCli({verb, QStringLiteral("some.exe"), QStringLiteral("--help")}).out.startsWith(QLatin1String("Usage:")));
        }
    }
}

TEST(CliCommands, BadArgumentsAreUsageErrors)
{
    const QStringList cases[] = {
        {QStringLiteral("records"), QStringLiteral("x.exe")},                                 // no subcommand
        {QStringLiteral("records"), QStringLiteral("x.exe"), QStringLiteral("show")},         // no record
        {QStringLiteral("records"), QStringLiteral("x.exe"), QStringLiteral("list"), QStringLiteral("1")},
        {QStringLiteral("records"), QStringLiteral("x.exe"), QStringLiteral("set"), QStringLiteral("2")},
        {QStringLiteral("records"), QStringLiteral("x.exe"), QStringLiteral("count"), QStringLiteral("--bogus")},
        {QStringLiteral("sort"), QStringLiteral("x.exe")},
        {QStringLiteral("search"), QStringLiteral("x.exe"), QStringLiteral("a"), QStringLiteral("b")},
        {QStringLiteral("formulas"), QStringLiteral("x.exe"), QStringLiteral("--data")},     // option without value
        {QStringLiteral("dump-design")},
    };
    for (const QStringList &args : cases) {
        const ff::testsupport::CliRun run = runCli(args);
        EXPECT_EQ(run.code, 2) << args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("usage: flatform-cli ") + args.first())) << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    // A missing image is no usage error, but nothing to open.
    const ff::testsupport::CliRun missing = runCli({QStringLiteral("records"), QStringLiteral("/nonexistent/x.exe"), QStringLiteral("count")});
    EXPECT_EQ(missing.code, 1);
}

TEST(CliCommands, EvalTakesExpressionsThatStartWithAMinus)
{
    struct Case {
        QStringList args;
        const char *out;
    };
    const Case cases[] = {
        {{QStringLiteral("-5")}, "-5\n"},
        {{QStringLiteral("-5+2")}, "-3\n"},
        {{QStringLiteral("--"), QStringLiteral("-5")}, "-5\n"},
        {{QStringLiteral("-(2*3)")}, "-6\n"},
        {{QStringLiteral("2*(3+4)")}, "14\n"},
    };
    for (const Case &c : cases) {
        const ff::testsupport::CliRun run = runCli(QStringList{QStringLiteral("eval")} + c.args);
        EXPECT_EQ(run.code, 0) << c.args.join(QLatin1Char(' ')).toStdString() << ": " << run.err.toStdString();
        EXPECT_EQ(run.out, QLatin1String(c.out)) << c.args.join(QLatin1Char(' ')).toStdString();
    }
}

TEST(CliCommands, EvalReadsOneExpressionPerLine)
{
    const ff::testsupport::CliRun run = runCli({QStringLiteral("eval")}, QByteArray("1+1\r\n-5\n\n2*3"));
    EXPECT_EQ(run.code, 0);
    const QStringList lines = run.out.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 5) << run.out.toStdString(); // four results and the end
    EXPECT_EQ(lines[0], QLatin1String("2"));
    EXPECT_EQ(lines[1], QLatin1String("-5"));
    EXPECT_EQ(lines[3], QLatin1String("6")); // the last line needs no line break
}

} // namespace
