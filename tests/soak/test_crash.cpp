// A user killed at a random moment (SIGKILL) during a replace walk, an add or a save: every record
// it was not touching keeps its bytes, its record locks are free again, the records it touched are
// each one whole version, and the file opens and takes edits afterwards. The record file is read
// here by its format alone: a record of the soak design is 105 bytes (96 of fields, 8 of the stamp
// and the one the length starts from), and record r starts at byte r * 105 - 1.

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr int kLength = 105;
constexpr int kFirstRecords = 200;
constexpr int kMarkAt = 84, kMarkSize = 12; // the mark field's bytes in a record, 0-based

QString soakProgram()
{
    return QString::fromLocal8Bit(qgetenv("FLATFORM_BINARY_DIR")) + QStringLiteral("/bin/ff_soak_user");
}

QByteArray bytesOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray recordOf(const QByteArray &file, int r) { return file.mid(qsizetype(r) * kLength - 1, kLength); }

// Records 2..count whose lock byte some descriptor still holds, seen from a descriptor of our own.
int heldRecords(const QString &path, int count)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR);
    if (fd < 0)
        return -1;
    int held = 0;
    for (int r = 2; r <= count; ++r) {
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        lock.l_start = off_t(r) * kLength - 1;
        lock.l_len = 1;
        if (::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK)
            ++held;
    }
    ::close(fd);
    return held;
}

int run(const QStringList &args, QString *out = nullptr)
{
    QProcess p;
    p.start(soakProgram(), args);
    if (!p.waitForFinished(120000))
        return -1;
    if (out)
        *out = QString::fromLocal8Bit(p.readAllStandardOutput() + p.readAllStandardError());
    return p.exitCode();
}

} // namespace

TEST(Crash, AKilledUserDamagesNoRecordItWasNotWriting)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    std::mt19937 random(20261124);
    int runs = 0, damaged = 0;
    for (const char *mode : {"replace", "add", "save"}) {
        const QString data = dir.path() + QStringLiteral("/%1.dat").arg(QLatin1String(mode));
        ASSERT_EQ(run({QStringLiteral("make"), data}), 0);
        // Which bytes of record r the mode may write.
        const auto mayTouch = [&](int r, int at) {
            if (QLatin1String(mode) == QLatin1String("replace"))
                return r % 10 == 3 && at >= kMarkAt && at < kMarkAt + kMarkSize;
            if (QLatin1String(mode) == QLatin1String("save"))
                return r >= 2 && r <= 21;
            return r > kFirstRecords;
        };
        for (int k = 0; k < 34; ++k, ++runs) {
            const QByteArray before = bytesOf(data);
            QProcess user;
            user.start(soakProgram(), {QStringLiteral("crash"), data, QLatin1String(mode)});
            ASSERT_TRUE(user.waitForReadyRead(30000)) << mode;
            ASSERT_TRUE(user.readAllStandardOutput().startsWith("ready"));
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 15000));
            ASSERT_EQ(::kill(pid_t(user.processId()), SIGKILL), 0);
            user.waitForFinished(30000);
            ASSERT_EQ(user.exitStatus(), QProcess::CrashExit) << mode << ": the user ended before the kill";

            const QByteArray after = bytesOf(data);
            for (int r = 1; r <= kFirstRecords; ++r) {
                const QByteArray was = recordOf(before, r), is = recordOf(after, r);
                for (int at = 0; at < kLength; ++at) {
                    if (was[at] != is[at] && !mayTouch(r, at)) {
                        ++damaged;
                        ADD_FAILURE() << mode << " run " << k << ": record " << r << " changed at byte " << at;
                        break;
                    }
                }
            }
            EXPECT_EQ(after.left(kLength - 1), before.left(kLength - 1)) << mode << ": the header changed";
            const int count = int((after.size() + 1) / kLength) - 1;
            EXPECT_EQ(heldRecords(data, count), 0) << mode << " run " << k << ": a dead user's lock is still held";
            QString checked;
            EXPECT_EQ(run({QStringLiteral("check"), data}, &checked), 0) << mode << " run " << k << ": "
                                                                           << checked.toStdString();
        }
        // The file takes a user's edits afterwards, and they verify.
        QString out;
        EXPECT_EQ(run({QStringLiteral("user"), data, QStringLiteral("1"), QStringLiteral("300"), QStringLiteral("5"),
                       dir.path() + QStringLiteral("/after.log")},
                      &out),
                  0)
            << mode << ": " << out.toStdString();
    }
    EXPECT_EQ(runs, 102);
    EXPECT_EQ(damaged, 0);
}
