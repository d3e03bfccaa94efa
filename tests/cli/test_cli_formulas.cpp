// The record verbs of flatform-cli as a script uses them, over the invoice example: typed values
// are converted as leaving a field converts them, formulas run before a record is written and
// printed, and `formulas` tries values without writing them.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

Outcome run(const QString &program, const QStringList &args)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("en_US.UTF-8"));
    p.setProcessEnvironment(env);
    p.start(program, args);
    p.waitForFinished(30000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

QString valueOf(const QString &listing, const QString &tag)
{
    for (const QString &line : listing.split(QLatin1Char('\n')))
        if (line.startsWith(tag + QLatin1Char('\t')))
            return line.mid(tag.size() + 1);
    return QStringLiteral("<missing>");
}

class CliRecords : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        image = dir.filePath(QStringLiteral("invoice.exe"));
        const QString json = QDir(QString::fromLocal8Bit(qgetenv("FLATFORM_SOURCE_DIR")))
                                 .filePath(QStringLiteral("examples/invoice/invoice.json"));
        const Outcome built = run(QStringLiteral(FLATFORM_BUILD_EXE),
                              {json, QStringLiteral("-o"), image, QStringLiteral("--runtime"), QStringLiteral(FLATFORM_CLI_EXE)});
        ASSERT_EQ(built.code, 0) << built.err.toStdString();
    }
    Outcome cli(const QStringList &args) { return run(QStringLiteral(FLATFORM_CLI_EXE), args); }

    QTemporaryDir dir;
    QString image;
};

TEST_F(CliRecords, SetConvertsTypedValuesAndRunsFormulas)
{
    // The first write makes the data file with its first record.
    const Outcome set = cli({QStringLiteral("records"), image, QStringLiteral("set"), QStringLiteral("1"),
                         QStringLiteral("F2=3/4/2026"), QStringLiteral("F6=2"), QStringLiteral("F7=3.5"),
                         QStringLiteral("F10=1"), QStringLiteral("F11=999+1"), QStringLiteral("F22=10")});
    ASSERT_EQ(set.code, 0) << set.err.toStdString();
    const Outcome shown = cli({QStringLiteral("records"), image, QStringLiteral("show"), QStringLiteral("1")});
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F2")), QStringLiteral("3/4/2026"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F7")), QStringLiteral("3.50"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F11")), QStringLiteral("1,000.00")); // evaluated as typed
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F8")), QStringLiteral("7.00"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F24")), QStringLiteral("1,107.70"));
    EXPECT_EQ(valueOf(shown.out, QStringLiteral("F25")),
              QStringLiteral("One Thousand One Hundred Seven Dollars and Seventy Cents"));

    const Outcome bad = cli({QStringLiteral("records"), image, QStringLiteral("set"), QStringLiteral("1"),
                         QStringLiteral("F2=not a date")});
    EXPECT_NE(bad.code, 0);
    EXPECT_TRUE(bad.err.contains(QStringLiteral("not a date")));
    EXPECT_EQ(valueOf(cli({QStringLiteral("records"), image, QStringLiteral("show"), QStringLiteral("1")}).out,
                      QStringLiteral("F2")),
              QStringLiteral("3/4/2026"));
}

TEST_F(CliRecords, FormulasTriesValuesWithoutWriting)
{
    ASSERT_EQ(cli({QStringLiteral("records"), image, QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("F6=4"),
                   QStringLiteral("F7=2.5"), QStringLiteral("F22=10")})
                  .code,
              0);
    const Outcome tried = cli({QStringLiteral("formulas"), image, QStringLiteral("1"), QStringLiteral("--set"),
                           QStringLiteral("F22=50")});
    ASSERT_EQ(tried.code, 0) << tried.err.toStdString();
    EXPECT_EQ(valueOf(tried.out, QStringLiteral("F23")), QStringLiteral("5.00"));
    EXPECT_EQ(valueOf(tried.out, QStringLiteral("F24")), QStringLiteral("15.00"));
    EXPECT_EQ(valueOf(tried.out, QStringLiteral("F25")), QStringLiteral("Fifteen Dollars and No Cents"));
    const Outcome stored = cli({QStringLiteral("records"), image, QStringLiteral("show"), QStringLiteral("1")});
    EXPECT_EQ(valueOf(stored.out, QStringLiteral("F22")), QStringLiteral("10"));
    EXPECT_EQ(valueOf(stored.out, QStringLiteral("F24")), QStringLiteral("11.00"));

    EXPECT_EQ(cli({QStringLiteral("formulas"), image, QStringLiteral("9")}).code, 1); // no such record
    EXPECT_EQ(cli({QStringLiteral("formulas"), image, QStringLiteral("1"), QStringLiteral("--set"), QStringLiteral("Z9=1")})
                  .code,
              2);
}

} // namespace
