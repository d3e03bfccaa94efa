// A short soak: four users changing, adding, replacing over searches and reading on one record
// file at once, with random pauses; the verifier finds no torn record, no write into a record
// another user held, and counts that add up. The full run (4 x 10,000 edits) is
// `ff_soak_user run DIR 4 10000 SEED` by hand.

#include "support/Programs.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString soakProgram()
{
    return QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR")) + QStringLiteral("/bin/ff_soak_user");
}

} // namespace

TEST(Soak, FourUsersLeaveWholeRecordsAndNoWriteIntoAHeldOne)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    for (const char *seed : {"11", "29"}) {
        QProcess soak;
        soak.start(soakProgram(), {QStringLiteral("run"), dir.path() + QLatin1Char('/') + QLatin1String(seed),
                                   QStringLiteral("4"), QStringLiteral("1500"), QLatin1String(seed)});
        ASSERT_TRUE(soak.waitForFinished(240000));
        const QString out = QString::fromLocal8Bit(soak.readAllStandardOutput());
        const QString err = QString::fromLocal8Bit(soak.readAllStandardError());
        EXPECT_EQ(soak.exitCode(), 0) << out.toStdString() << err.toStdString();
        EXPECT_TRUE(out.contains(QLatin1String("torn records 0, unknown versions 0, writes into held records (forks) 0, "
                                               "broken chains 0, foreign marks 0, count mismatch 0")))
            << out.toStdString();
        // The users met: some changes were refused by a lock, some replaces passed held records
        // over or wrote; a soak where nobody met anybody proves nothing.
        EXPECT_FALSE(out.contains(QLatin1String("changes refused by another user's lock 0;"))) << out.toStdString();
    }
}
