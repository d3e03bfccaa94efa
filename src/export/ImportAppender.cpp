#include "export/ImportAppender.h"

#include "store/RecordCodec.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ff {

namespace {

Error fileError(const QString &name)
{
    const int err = errno;
    const ErrorCode code = (err == EACCES || err == EPERM || err == EROFS) ? ErrorCode::PermissionDenied
                                                                           : ErrorCode::PathError;
    return makeError(code, name + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(err)));
}

int64_t fileSize(const QString &name)
{
    struct stat st {};
    if (::stat(QFile::encodeName(name).constData(), &st) != 0)
        return 0;
    return st.st_size;
}

} // namespace

ImportAppender::ImportAppender(RecordStore &store, MessageSink *messages) : store_(store), messages_(messages) {}

ImportAppender::~ImportAppender()
{
    if (fd_ >= 0)
        ::close(fd_);
}

int64_t ImportAppender::limit() const { return (int64_t(2140000000) / perPart_) * perPart_; }

Status ImportAppender::begin(bool intoRecordOne)
{
    if (!store_.writingAllowed())
        return makeError(ErrorCode::PermissionDenied, store_.file().DataFileName() + QStringLiteral(" is read-only"));
    if (Status saved = store_.SaveIfDirty(); !saved)
        return saved;
    RecordFile &file = store_.file();
    recordLength_ = file.RecordLength();
    perPart_ = file.RecordsPerPart();
    lock_ = std::make_unique<AppendLock>(file.partName(0));
    // Counted from the files themselves: other users' records come in, as on a move.
    const int lastPart = file.probeLastPart();
    count_ = lastPart * perPart_ + fileSize(file.partName(lastPart)) / recordLength_;
    intoRecordOne_ = intoRecordOne && count_ <= 1;
    shownRecord_ = store_.CurrentRecord();
    if (Status opened = openPart(0); !opened)
        return opened;
    unsigned char number[4] = {0, 0, 0, 0};
    if (::pread(fd_, number, 4, 9) == 4)
        nextPictureNumber_ = int32_t(uint32_t(number[0]) | uint32_t(number[1]) << 8 | uint32_t(number[2]) << 16
                                     | uint32_t(number[3]) << 24);
    finished_ = false;
    return {};
}

std::optional<int64_t> ImportAppender::nextRecord()
{
    if (intoRecordOne_) {
        intoRecordOne_ = false;
        count_ = std::max<int64_t>(count_, 1);
        return 1;
    }
    if (limitReached_)
        return std::nullopt;
    if (count_ + 1 > limit()) {
        limitReached_ = true;
        if (messages_)
            messages_->ShowMessage(store_.design().MainCap, QString::fromLatin1(RecordStore::kRecordLimitMessage), 0);
        return std::nullopt;
    }
    return ++count_;
}

Status ImportAppender::openPart(int part)
{
    if (part == openPart_ && fd_ >= 0)
        return {};
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
    openPart_ = -1;
    const QString name = store_.file().partName(part);
    const int fd = ::open(QFile::encodeName(name).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        return fileError(name);
    fd_ = fd;
    openPart_ = part;
    return {};
}

Status ImportAppender::write(int64_t first, const char *records, int64_t count)
{
    const RecordFile &file = store_.file();
    int64_t done = 0;
    while (done < count) {
        // A run of records that lie one after the other in one part.
        const RecordPosition start = file.readPosition(first + done);
        int64_t run = 1;
        while (done + run < count) {
            const RecordPosition next = file.readPosition(first + done + run);
            if (next.part != start.part || next.position != start.position + run * recordLength_)
                break;
            ++run;
        }
        if (start.position < 1)
            return makeError(ErrorCode::Invalid, QStringLiteral("bad record number %1").arg(first + done));
        if (Status opened = openPart(start.part); !opened)
            return opened;
        const char *from = records + done * recordLength_;
        const int64_t size = run * recordLength_;
        int64_t put = 0;
        while (put < size) {
            const ssize_t n = ::pwrite(fd_, from + put, size_t(size - put), off_t(start.position - 1 + put));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return fileError(file.partName(start.part));
            }
            put += n;
        }
        done += run;
    }
    if (count > 0) {
        if (firstWritten_ == 0)
            firstWritten_ = first;
        lastWritten_ = std::max(lastWritten_, first + count - 1);
        written_ += count;
    }
    return {};
}

Status ImportAppender::setNextPictureNumber(int32_t number)
{
    nextPictureNumber_ = number;
    if (recordLength_ < 14)
        return {}; // the header has no room for it ahead of record 1
    if (Status opened = openPart(0); !opened)
        return opened;
    QByteArray bytes(4, '\0');
    RecordCodec::writeInt32(bytes, 1, number);
    if (::pwrite(fd_, bytes.constData(), 4, 9) != 4)
        return fileError(store_.file().partName(0));
    return {};
}

Status ImportAppender::finish()
{
    if (finished_)
        return {};
    finished_ = true;
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
    openPart_ = -1;
    lock_.reset();
    const QString name = store_.file().DataFileName();
    // Opened again, the store counts the new records and reads the picture counter; its browse
    // order starts again in file order.
    Status opened = store_.openFileSet(name, OpenMode::Open, store_.design().MainCap, false);
    if (!opened)
        return opened;
    const int show = lastWritten_ > 0 ? int(lastWritten_) : shownRecord_;
    if (show >= 1 && show <= store_.RecordCount())
        return store_.JumpToRecord(show);
    return {};
}

} // namespace ff
