#include "store/RecordFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ff {

static int64_t g_recordsPerPartForTesting = 0;

static Error errnoError(int err, const QString &what)
{
    ErrorCode code = ErrorCode::PathError;
    if (err == EACCES || err == EPERM || err == EROFS || err == EAGAIN)
        code = ErrorCode::PermissionDenied;
    else if (err == ENOENT)
        code = ErrorCode::FileNotFound;
    return makeError(code, what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(err)));
}

RecordFile::~RecordFile() { close(); }

int64_t RecordFile::DefaultRecordsPerPart(int recordLength)
{
    if (recordLength < 1)
        recordLength = 1;
    return int64_t(2140000000) / recordLength - 1;
}

void RecordFile::SetRecordsPerPartForTesting(int64_t recordsPerPart) { g_recordsPerPartForTesting = recordsPerPart; }

void RecordFile::setFileSet(const QString &dataFileName, int recordLength, bool readOnly)
{
    close();
    dataFileName_ = dataFileName;
    const qsizetype dot = dataFileName.lastIndexOf(QLatin1Char('.'));
    const qsizetype slash = dataFileName.lastIndexOf(QLatin1Char('/'));
    dataFileBase_ = dot > slash ? dataFileName.left(dot) : dataFileName;
    recordLength_ = recordLength < 1 ? 1 : recordLength;
    recordsPerPart_ = g_recordsPerPartForTesting > 0 ? g_recordsPerPartForTesting : DefaultRecordsPerPart(recordLength_);
    readOnly_ = readOnly;
    lastPart_ = 0;
}

void RecordFile::close()
{
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
    openPart_ = -1;
}

QString RecordFile::partName(int part) const
{
    if (part < 1)
        return dataFileName_;
    return dataFileBase_ + QStringLiteral("%1").arg(part, 4, 10, QLatin1Char('0'));
}

RecordPosition RecordFile::readPosition(int64_t record) const
{
    RecordPosition p;
    int64_t part = record / recordsPerPart_;
    if (part > 0 && record == recordsPerPart_ * part)
        --part; // the exact multiple reads from the end of the previous part
    p.part = static_cast<int>(part);
    p.position = (record - recordsPerPart_ * part) * recordLength_;
    return p;
}

RecordPosition RecordFile::writePosition(int64_t record) const
{
    RecordPosition p;
    const int64_t part = record / recordsPerPart_;
    p.part = static_cast<int>(part);
    p.position = (record - recordsPerPart_ * part) * recordLength_;
    return p;
}

Status RecordFile::OpenRecordPart(int part)
{
    close();
    if (part < 0)
        part = 0;
    const QByteArray name = QFile::encodeName(partName(part));
    const int flags = readOnly_ ? O_RDONLY : (O_RDWR | O_CREAT);
    const int fd = ::open(name.constData(), flags | O_CLOEXEC, 0666);
    if (fd < 0)
        return errnoError(errno, partName(part));
    // A folder opens for reading like a file; it holds no records.
    struct stat st {};
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(fd);
        return errnoError(EISDIR, partName(part));
    }
    fd_ = fd;
    openPart_ = part;
    return {};
}

int RecordFile::probeLastPart() const
{
    int part = 0;
    while (part < 9999 && QFileInfo::exists(partName(part + 1)))
        ++part;
    return part;
}

int64_t RecordFile::lengthOfOpenPart() const
{
    if (fd_ < 0)
        return -1;
    struct stat st {};
    if (::fstat(fd_, &st) != 0)
        return -1;
    return st.st_size;
}

Result<int64_t> RecordFile::countRecords()
{
    if (openPart_ != lastPart_ || fd_ < 0) {
        Status s = OpenRecordPart(lastPart_);
        if (!s)
            return s.error();
    }
    const int64_t lof = lengthOfOpenPart();
    if (lof < 0)
        return makeError(ErrorCode::PathError, QStringLiteral("cannot read the length of ") + partName(lastPart_));
    const int64_t count = lastPart_ * recordsPerPart_ + lof / recordLength_;
    if (count > INT32_MAX)
        return makeError(ErrorCode::Overflow, QStringLiteral("record count out of range"));
    return count;
}

Status RecordFile::readRecord(int64_t record, QByteArray &buffer, const QByteArray &blank)
{
    const RecordPosition p = readPosition(record);
    buffer = blank;
    buffer.resize(recordLength_, ' ');
    if (p.position < 1)
        return makeError(ErrorCode::Invalid, QStringLiteral("bad record number"));
    if (openPart_ != p.part || fd_ < 0) {
        Status s = OpenRecordPart(p.part);
        if (!s)
            return s;
    }
    qsizetype done = 0;
    while (done < recordLength_) {
        const ssize_t n = ::pread(fd_, buffer.data() + done, recordLength_ - done, p.position - 1 + done);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errnoError(errno, partName(p.part));
        }
        if (n == 0)
            break; // beyond the end: the rest stays as the blank record
        done += n;
    }
    return {};
}

Status RecordFile::writeRecord(int64_t record, const QByteArray &buffer)
{
    if (readOnly_)
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("the data file is read-only"));
    const RecordPosition p = writePosition(record);
    if (openPart_ != p.part || fd_ < 0) {
        Status s = OpenRecordPart(p.part);
        if (!s)
            return s;
    }
    if (p.position < 1)
        return makeError(ErrorCode::Invalid, QStringLiteral("bad record number"));
    qsizetype done = 0;
    const qsizetype size = std::min<qsizetype>(buffer.size(), recordLength_);
    while (done < size) {
        const ssize_t n = ::pwrite(fd_, buffer.constData() + done, size - done, p.position - 1 + done);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errnoError(errno, partName(p.part));
        }
        done += n;
    }
    return {};
}

Status RecordFile::writeOpenPart(int64_t position1, const QByteArray &bytes)
{
    if (readOnly_ || fd_ < 0 || position1 < 1)
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("the data file is not open for writing"));
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::pwrite(fd_, bytes.constData() + done, bytes.size() - done, position1 - 1 + done);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errnoError(errno, partName(openPart_));
        }
        done += n;
    }
    return {};
}

Status RecordFile::writeHeaderBytes(int64_t position1, const QByteArray &bytes)
{
    if (readOnly_ || fd_ < 0 || openPart_ != 0)
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("header not writable"));
    // The header never reaches into the slot of record 1.
    const int64_t room = int64_t(recordLength_) - position1;
    if (position1 < 1 || room <= 0)
        return {};
    const qsizetype size = std::min<int64_t>(room, bytes.size());
    if (::pwrite(fd_, bytes.constData(), size, position1 - 1) != size)
        return errnoError(errno, dataFileName_);
    return {};
}

Result<QByteArray> RecordFile::readHeaderBytes(int64_t position1, int size)
{
    if (fd_ < 0 || openPart_ != 0)
        return makeError(ErrorCode::PathError, QStringLiteral("first file not open"));
    QByteArray out(size, '\0');
    const ssize_t n = ::pread(fd_, out.data(), size, position1 - 1);
    if (n < 0)
        return errnoError(errno, dataFileName_);
    out.truncate(n);
    return out;
}

static struct flock oneByte(short type, int64_t position1)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = position1 - 1;
    fl.l_len = 1;
    fl.l_pid = 0; // required for open-file-description locks
    return fl;
}

Status RecordFile::testRecordByte(int64_t position1) const
{
    if (fd_ < 0)
        return makeError(ErrorCode::PathError, QStringLiteral("no part open"));
    struct flock fl = oneByte(F_WRLCK, position1);
    if (::fcntl(fd_, F_OFD_GETLK, &fl) != 0)
        return errnoError(errno, partName(openPart_));
    if (fl.l_type != F_UNLCK)
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("the record is in use by another user"));
    return {};
}

Status RecordFile::lockRecordByte(int64_t position1) const
{
    if (fd_ < 0)
        return makeError(ErrorCode::PathError, QStringLiteral("no part open"));
    struct flock fl = oneByte(F_WRLCK, position1);
    if (::fcntl(fd_, F_OFD_SETLK, &fl) != 0) {
        if (errno == EAGAIN || errno == EACCES)
            return makeError(ErrorCode::PermissionDenied, QStringLiteral("the record is in use by another user"));
        return errnoError(errno, partName(openPart_));
    }
    return {};
}

Status RecordFile::unlockRecordByte(int64_t position1) const
{
    if (fd_ < 0)
        return {};
    struct flock fl = oneByte(F_UNLCK, position1);
    if (::fcntl(fd_, F_OFD_SETLK, &fl) != 0)
        return errnoError(errno, partName(openPart_));
    return {};
}

} // namespace ff
