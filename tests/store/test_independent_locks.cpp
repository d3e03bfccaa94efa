// Record locks seen from outside the store. The other user here is plain fcntl code that knows only
// the file format (docs/formats/record-file.md): the lock of record r is one byte, the first byte
// of its slot, in the part that holds it. Nothing of RecordFile is used to find or take that byte,
// so a store that locks the wrong byte cannot agree with itself and pass.
//
// Two kinds of other user: an open-file-description lock on a descriptor of its own in this
// process (as a second copy of the program takes it), and a classic process-owned lock in a child
// process (as a program of another kind sharing the folder might take it).

#include "support/StoreFixture.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr int kLength = 17; // RecordLength of the small design: two 6-byte texts and a whole number
constexpr int kPerPart = 4; // records per part for these tests
constexpr int kRecords = 12; // parts 0, 1 and 2

struct LockByte {
    int part;
    off_t offset; // 0-based, in the part file
};

// Record r is in part (r - 1) / P; its slot starts at the 1-based position (r - P * part) * L.
LockByte lockByteOf(int record)
{
    const int part = (record - 1) / kPerPart;
    return {part, off_t(record - kPerPart * part) * kLength - 1};
}

QString partFile(const QString &dataFile, int part)
{
    if (part == 0)
        return dataFile;
    const QString base = dataFile.left(dataFile.lastIndexOf(QLatin1Char('.')));
    return base + QString::number(part).rightJustified(4, QLatin1Char('0'));
}

int openPart(const QString &dataFile, int part)
{
    return ::open(QFile::encodeName(partFile(dataFile, part)).constData(), O_RDWR | O_CLOEXEC);
}

struct flock byteRange(short type, off_t start, off_t length)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = start;
    fl.l_len = length;
    fl.l_pid = 0;
    return fl;
}

// What another description sees of [start, start + length); length 0 reaches to the end of file.
struct Seen {
    bool held = false;
    off_t start = -1;
    off_t length = 0;
};

Seen probe(int fd, off_t start, off_t length)
{
    struct flock fl = byteRange(F_WRLCK, start, length);
    Seen seen;
    if (::fcntl(fd, F_OFD_GETLK, &fl) != 0) {
        ADD_FAILURE() << "F_OFD_GETLK: " << std::strerror(errno);
        return seen;
    }
    seen.held = fl.l_type != F_UNLCK;
    if (seen.held) {
        seen.start = fl.l_start;
        seen.length = fl.l_len;
    }
    return seen;
}

// The bytes of a record's slot, read straight from its part.
QByteArray rawSlot(const QString &dataFile, int record)
{
    const LockByte at = lockByteOf(record);
    QFile f(partFile(dataFile, at.part));
    if (!f.open(QIODevice::ReadOnly) || !f.seek(at.offset))
        return {};
    return f.read(kLength);
}

// A holder of one byte. In this process it is an open-file-description lock on a descriptor of
// its own; in a child process it is a classic F_SETLK lock, owned by that process.
class Holder {
public:
    enum Kind { SameProcess, ChildProcess };

    Holder(Kind kind, const QString &dataFile, LockByte at) : kind_(kind)
    {
        const QByteArray name = QFile::encodeName(partFile(dataFile, at.part));
        if (kind == SameProcess) {
            fd_ = ::open(name.constData(), O_RDWR | O_CLOEXEC);
            struct flock fl = byteRange(F_WRLCK, at.offset, 1);
            held_ = fd_ >= 0 && ::fcntl(fd_, F_OFD_SETLK, &fl) == 0;
            return;
        }
        int ready[2], release[2];
        if (::pipe(ready) != 0 || ::pipe(release) != 0)
            return;
        child_ = ::fork();
        if (child_ == 0) {
            // Only plain system calls from here on: the child holds the byte until told to go.
            ::close(ready[0]);
            ::close(release[1]);
            const int fd = ::open(name.constData(), O_RDWR);
            struct flock fl = byteRange(F_WRLCK, at.offset, 1);
            const char ok = (fd >= 0 && ::fcntl(fd, F_SETLK, &fl) == 0) ? '1' : '0';
            (void)!::write(ready[1], &ok, 1);
            char go;
            (void)!::read(release[0], &go, 1);
            ::_exit(0);
        }
        ::close(ready[1]);
        ::close(release[0]);
        releaseFd_ = release[1];
        char ok = '0';
        held_ = child_ > 0 && ::read(ready[0], &ok, 1) == 1 && ok == '1';
        ::close(ready[0]);
    }

    ~Holder()
    {
        if (fd_ >= 0)
            ::close(fd_);
        if (releaseFd_ >= 0)
            ::close(releaseFd_); // the child's read returns and it exits, dropping its lock
        if (child_ > 0)
            ::waitpid(child_, nullptr, 0);
    }

    bool held() const { return held_; }

private:
    Kind kind_;
    int fd_ = -1;
    int releaseFd_ = -1;
    pid_t child_ = -1;
    bool held_ = false;
};

class IndependentLock : public ::testing::Test {
protected:
    void SetUp() override
    {
        data_ = dir_.filePath(QStringLiteral("Shared.dat"));
        writeSmallSet(data_, kRecords, kPerPart);
    }

    // The store's user types into field 1 of `record` and then leaves the record. True when the
    // store let the edit through.
    static bool typeAndLeave(StoreUser &user, int record, const QString &text)
    {
        if (!user.store.JumpToRecord(record))
            return false;
        const Status locked = user.store.LockRecord();
        if (locked)
            user.page.FieldText[1] = text;
        if (!user.store.JumpToRecord(record == 1 ? 2 : 1)) // leaving saves a dirty record
            return false;
        return bool(locked);
    }

    QTemporaryDir dir_;
    QString data_;
    SmallParts parts_{kPerPart};
};

QByteArray stored(const char *text)
{
    QByteArray field(text);
    return field.leftJustified(6, ' ');
}

} // namespace

// (a) The other user holds record N's byte: the store refuses N, writes nothing to it, and takes
// the records beside it. Records lie in the first file and in later parts; 4 and 8 are exact
// multiples of the part size, whose bytes lie at the end of the part before. A neighbour that is
// such a multiple is not tried: the writer cannot place it.
TEST_F(IndependentLock, StoreRefusesTheRecordWhoseByteAnotherHolds)
{
    struct Case {
        int record;
        Holder::Kind kind;
    };
    const Case cases[] = {
        {2, Holder::SameProcess}, {3, Holder::SameProcess}, {4, Holder::SameProcess}, {6, Holder::SameProcess},
        {8, Holder::SameProcess}, {10, Holder::SameProcess},
        {3, Holder::ChildProcess}, {8, Holder::ChildProcess}, {10, Holder::ChildProcess},
    };
    int round = 0;
    for (const Case &c : cases) {
        SCOPED_TRACE(::testing::Message() << "record " << c.record << (c.kind == Holder::SameProcess ? ", OFD holder" : ", child holder"));
        const QByteArray before = rawSlot(data_, c.record);
        Holder holder(c.kind, data_, lockByteOf(c.record));
        ASSERT_TRUE(holder.held());

        StoreUser user(smallDesign());
        ASSERT_TRUE(user.store.openFileSet(data_, OpenMode::Open, QString()));
        ASSERT_TRUE(user.store.JumpToRecord(c.record));
        EXPECT_EQ(user.store.LockRecord().error().code, ErrorCode::PermissionDenied);
        EXPECT_EQ(user.text(), QString::fromLatin1(before.left(6)).trimmed()); // the stored record again
        EXPECT_FALSE(typeAndLeave(user, c.record, QStringLiteral("lost")));
        EXPECT_EQ(rawSlot(data_, c.record), before);

        ++round;
        for (int beside : {c.record - 1, c.record + 1}) {
            if (beside % kPerPart == 0)
                continue;
            const QString text = QStringLiteral("n%1").arg(round * 10 + (beside > c.record));
            EXPECT_TRUE(typeAndLeave(user, beside, text)) << "record " << beside;
            EXPECT_EQ(rawSlot(data_, beside).left(6), stored(text.toLatin1().constData())) << "record " << beside;
        }
    }
}

// (b) The store edits record N: another description sees exactly N's byte held, in N's part, and
// nothing else in any part. Saving the record drops the lock.
TEST_F(IndependentLock, StoreHoldsExactlyTheRecordsByte)
{
    const int lastPart = (kRecords - 1) / kPerPart;
    // 4 and 8 are exact multiples of the part size: their bytes lie at the end of the part before.
    for (int record : {2, 3, 4, 5, 7, 8, 9, 11}) {
        SCOPED_TRACE(::testing::Message() << "record " << record);
        const LockByte at = lockByteOf(record);
        StoreUser user(smallDesign());
        ASSERT_TRUE(user.store.openFileSet(data_, OpenMode::Open, QString()));
        ASSERT_TRUE(user.store.JumpToRecord(record));
        ASSERT_TRUE(user.store.LockRecord());

        for (int part = 0; part <= lastPart; ++part) {
            const int fd = openPart(data_, part);
            ASSERT_GE(fd, 0);
            const Seen whole = probe(fd, 0, 0);
            if (part != at.part) {
                EXPECT_FALSE(whole.held) << "part " << part << " byte " << whole.start;
            } else {
                EXPECT_TRUE(whole.held);
                EXPECT_EQ(whole.start, at.offset);
                EXPECT_EQ(whole.length, 1);
                EXPECT_TRUE(probe(fd, at.offset, 1).held);
                EXPECT_FALSE(probe(fd, 0, at.offset).held);      // every byte before it is free
                EXPECT_FALSE(probe(fd, at.offset + 1, 0).held);  // and every byte after it
            }
            ::close(fd);
        }
        if (record % kPerPart == 0)
            continue; // the writer cannot place an exact multiple; the lock dies with the handle
        user.page.FieldText[1] = QStringLiteral("s%1").arg(record);
        ASSERT_TRUE(user.store.PackRecord());
        const int fd = openPart(data_, at.part);
        EXPECT_FALSE(probe(fd, 0, 0).held) << "the lock outlived the save";
        ::close(fd);
    }
}

// Record 1 shares its part with the header and is never locked: an edit of record 1 holds no byte
// anywhere, and a holder of the header and of record 1's first byte stops no one.
TEST_F(IndependentLock, RecordOneAndTheHeaderAreNeverLocked)
{
    StoreUser user(smallDesign());
    ASSERT_TRUE(user.store.openFileSet(data_, OpenMode::Open, QString()));
    ASSERT_TRUE(user.store.JumpToRecord(1));
    ASSERT_TRUE(user.store.LockRecord());
    const int fd = openPart(data_, 0);
    ASSERT_GE(fd, 0);
    EXPECT_FALSE(probe(fd, 0, 0).held);
    user.page.FieldText[1] = QStringLiteral("first");
    ASSERT_TRUE(user.store.PackRecord());

    // Another user holds every byte up to and including record 1's first byte.
    struct flock fl = byteRange(F_WRLCK, 0, kLength);
    ASSERT_EQ(::fcntl(fd, F_OFD_SETLK, &fl), 0);
    EXPECT_TRUE(typeAndLeave(user, 1, QStringLiteral("again")));
    EXPECT_EQ(rawSlot(data_, 1).left(6), stored("again"));
    EXPECT_TRUE(typeAndLeave(user, 2, QStringLiteral("second")));
    EXPECT_EQ(rawSlot(data_, 2).left(6), stored("second"));
    ::close(fd);
}
