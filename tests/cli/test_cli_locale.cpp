// flatform-cli run as a whole process under the locale a server or a minimal install gives it:
// LC_ALL=C or POSIX read and write dates and numbers as en_US does, and de_DE reads its own
// order. Over the contacts example, whose F7 is a long date, F8 money and F13 a short date.

#include <gtest/gtest.h>

#include <QDir>
#include "support/Programs.h"
#include <QTemporaryDir>

namespace {

// The program run with LC_ALL and LANG set to `locale`: a child takes this process's environment.
ff::testsupport::ProgramRun run(const QString &program, const QStringList &args, const QString &locale)
{
    qputenv("LC_ALL", locale.toLatin1());
    qputenv("LANG", locale.toLatin1());
    return ff::testsupport::runProgram(program, args);
}

QString valueOf(const QByteArray &listing, const QString &tag)
{
    for (const QString &line : QString::fromUtf8(listing).split(QLatin1Char('\n')))
        if (line.startsWith(tag + QLatin1Char('\t')))
            return line.mid(tag.size() + 1);
    return QStringLiteral("<missing>");
}

TEST(CliLocale, DatesAndNumbersAsThePeopleOfEachLocaleTypeThem)
{
    const struct {
        const char *locale;
        const char *birthday, *limit, *firstContact; // typed
        const char *birthdayShown, *limitShown, *firstContactShown;
        const char *searchLine;
    } rows[] = {
        {"C", "12/10/1815", "1234.5", "1.2.03", "Sunday, December 10, 1815", "1,234.50", "1/2/2003",
         "select firstname where birthday>1/1/1800 birthday<1/1/1816 firstcontact=1/2/2003"},
        {"POSIX", "12/10/1815", "1,234.5", "2003-01-02", "Sunday, December 10, 1815", "1,234.50", "1/2/2003",
         "select firstname where birthday>12/9/1815 birthday<12/11/1815"},
        {"C.UTF-8", "December 10, 1815", "1234.5", "1/2/03", "Sunday, December 10, 1815", "1,234.50", "1/2/2003",
         "select firstname where firstcontact>=1/2/2003 firstcontact<1/3/2003"},
        {"de_DE.UTF-8", "12.10.1815", "1.234,5", "1.2.03", "Donnerstag, 12. Oktober 1815", "1.234,50", "01.02.2003",
         "select firstname where birthday>11.10.1815 birthday<13.10.1815 firstcontact=1.2.2003"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.locale);
        QTemporaryDir dir;
        const QString image = dir.filePath(QStringLiteral("contacts.exe"));
        const QString locale = QString::fromLatin1(row.locale);
        const QString json = QDir(QString::fromLocal8Bit(qgetenv("FLATFORM_SOURCE_DIR")))
                                 .filePath(QStringLiteral("examples/contacts/contacts.json"));
        const ff::testsupport::ProgramRun built = run(QStringLiteral(FLATFORM_BUILD_EXE),
                                  {json, QStringLiteral("-o"), image, QStringLiteral("--runtime"), QStringLiteral(FLATFORM_CLI_EXE)},
                                  locale);
        ASSERT_EQ(built.exitCode, 0) << built.err.toStdString();
        auto cli = [&](const QStringList &args) { return run(QStringLiteral(FLATFORM_CLI_EXE), args, locale); };

        const ff::testsupport::ProgramRun set = cli({QStringLiteral("records"), image, QStringLiteral("set"), QStringLiteral("1"),
                                 QStringLiteral("F1=Ada"), QStringLiteral("F7=") + QString::fromUtf8(row.birthday),
                                 QStringLiteral("F8=") + QString::fromUtf8(row.limit),
                                 QStringLiteral("F13=") + QString::fromUtf8(row.firstContact)});
        ASSERT_EQ(set.exitCode, 0) << set.err.toStdString();
        const ff::testsupport::ProgramRun shown = cli({QStringLiteral("records"), image, QStringLiteral("show"), QStringLiteral("1")});
        EXPECT_EQ(valueOf(shown.out, QStringLiteral("F7")), QString::fromUtf8(row.birthdayShown));
        EXPECT_EQ(valueOf(shown.out, QStringLiteral("F8")), QString::fromUtf8(row.limitShown));
        EXPECT_EQ(valueOf(shown.out, QStringLiteral("F13")), QString::fromUtf8(row.firstContactShown));

        const ff::testsupport::ProgramRun found = cli({QStringLiteral("search"), image, QString::fromUtf8(row.searchLine)});
        ASSERT_EQ(found.exitCode, 0) << found.err.toStdString();
        EXPECT_EQ(QString::fromUtf8(found.out).trimmed(), QStringLiteral("1~Ada"));
    }
}

} // namespace
