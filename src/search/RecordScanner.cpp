#include "search/RecordScanner.h"

#include "core/Scramble.h"

#include <QFile>
#include <algorithm>
#include <tuple>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ff {

RecordScanner::RecordScanner(const RecordFile &file, int64_t records, bool scrambled, int64_t blockBytes,
                             int64_t mapBytes)
    : file_(file), records_(records), scrambled_(scrambled), length_(std::max(1, file.RecordLength())),
      perPart_(std::max<int64_t>(1, file.RecordsPerPart()))
{
    blockRecords_ = std::max<int64_t>(1, blockBytes / length_);
    mapRecords_ = std::max<int64_t>(1, mapBytes / length_);
    single_.resize(size_t(length_));
}

RecordScanner::~RecordScanner()
{
    unmap();
    for (int fd : readFds_)
        if (fd >= 0)
            ::close(fd);
    for (int fd : writeFds_)
        if (fd >= 0)
            ::close(fd);
}

RecordScanner::Place RecordScanner::place(int64_t record) const
{
    int64_t part = record / perPart_;
    if (part > 0 && record == perPart_ * part)
        --part; // the exact multiple reads from the end of the previous part
    return {int(part), record - perPart_ * part};
}

int RecordScanner::descriptor(int part, bool write)
{
    std::vector<int> &fds = write ? writeFds_ : readFds_;
    if (part >= int(fds.size()))
        fds.resize(size_t(part) + 1, -2);
    int &fd = fds[size_t(part)];
    if (fd == -2) {
        const QByteArray name = QFile::encodeName(file_.partName(part));
        fd = ::open(name.constData(), (write ? O_RDWR : O_RDONLY) | O_CLOEXEC);
        if (fd >= 0 && !write)
            ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    return fd;
}

// Reads records first..last, all in one part, into `into`; bytes past the end read as blanks.
bool RecordScanner::load(int64_t first, int64_t last, uint8_t *into)
{
    const Place p = place(first);
    const int fd = descriptor(p.part, false);
    if (fd < 0)
        return false;
    const size_t want = size_t(last - first + 1) * size_t(length_);
    const off_t start = off_t(p.local * length_ - 1);
    size_t done = 0;
    while (done < want) {
        const ssize_t n = ::pread(fd, into + done, want - done, start + off_t(done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (n == 0)
            break;
        done += size_t(n);
    }
    if (done < want) {
        // The stored blank, so that a missing record reads as a blank one in either form.
        uint8_t blank = ' ';
        if (scrambled_)
            ScrambleBytes(reinterpret_cast<char *>(&blank), 1);
        std::memset(into + done, blank, want - done);
    }
    return true;
}

void RecordScanner::unmap()
{
    if (map_)
        ::munmap(map_, mapLength_);
    map_ = nullptr;
    mapLength_ = 0;
}

int64_t RecordScanner::partSize(int part, int fd, int64_t atLeast)
{
    if (part >= int(sizes_.size()))
        sizes_.resize(size_t(part) + 1, -1);
    int64_t &size = sizes_[size_t(part)];
    if (size < atLeast) { // unknown, or the file may have grown since
        struct stat st {};
        size = ::fstat(fd, &st) == 0 ? int64_t(st.st_size) : -1;
    }
    return size;
}

// Maps records first..last (one part) when all their bytes exist.
bool RecordScanner::map(int64_t first, int64_t last)
{
    const Place p = place(first);
    const int fd = descriptor(p.part, false);
    if (fd < 0)
        return false;
    const int64_t start = p.local * length_ - 1;
    const int64_t end = start + (last - first + 1) * length_;
    if (partSize(p.part, fd, end) < end)
        return false;
    static const int64_t page = ::sysconf(_SC_PAGESIZE);
    const int64_t aligned = start - start % page;
    unmap();
    void *m = ::mmap(nullptr, size_t(end - aligned), PROT_READ, MAP_SHARED, fd, off_t(aligned));
    if (m == MAP_FAILED)
        return false;
    map_ = m;
    mapLength_ = size_t(end - aligned);
    blockData_ = static_cast<const uint8_t *>(m) + (start - aligned);
    return true;
}

const uint8_t *RecordScanner::fetch(int64_t record, Access access)
{
    if (record < 1)
        return nullptr;
    if (access == Access::Random) {
        if (!load(record, record, single_.data()))
            return nullptr;
        return single_.data();
    }
    // A block of whole records within the record's part, on the side the walk goes to.
    const Place p = place(record);
    const int64_t partFirst = perPart_ * p.part + 1;
    const int64_t partLast = std::min(perPart_ * (p.part + 1), std::max(records_, record));
    auto window = [&](int64_t count, int64_t &first, int64_t &last) {
        if (access == Access::Backward) {
            last = record;
            first = std::max(partFirst, record - count + 1);
        } else {
            first = record;
            last = std::min(partLast, record + count - 1);
        }
    };
    int64_t first, last;
    window(mapRecords_, first, last);
    blockFirst_ = 1;
    blockLast_ = 0;
    if (!map(first, last)) {
        unmap();
        window(blockRecords_, first, last);
        const size_t bytes = size_t(last - first + 1) * size_t(length_);
        if (block_.size() < bytes)
            block_.resize(bytes);
        if (!load(first, last, block_.data()))
            return nullptr;
        blockData_ = block_.data();
    }
    blockFirst_ = first;
    blockLast_ = last;
    return blockData_ + size_t(record - first) * size_t(length_);
}

const uint8_t *RecordScanner::record(int64_t record, Access access)
{
    const uint8_t *p = stored(record, access);
    if (!p || !scrambled_)
        return p;
    plain_.assign(p, p + length_);
    UnscrambleBytes(reinterpret_cast<char *>(plain_.data()), length_);
    return plain_.data();
}

Status RecordScanner::write(int64_t record, int offset, const QByteArray &bytes)
{
    const Place p = place(record);
    const int fd = descriptor(p.part, true);
    if (fd < 0)
        return makeError(ErrorCode::PathError, file_.partName(p.part));
    const off_t at = off_t(p.local * length_ - 1 + offset);
    if (::pwrite(fd, bytes.constData(), size_t(bytes.size()), at) != bytes.size())
        return makeError(ErrorCode::PathError, file_.partName(p.part));
    // Later reads of this record see the new bytes (a mapping sees them by itself).
    if (!map_ && record >= blockFirst_ && record <= blockLast_)
        std::memcpy(block_.data() + size_t(record - blockFirst_) * size_t(length_) + offset, bytes.constData(),
                    size_t(bytes.size()));
    return {};
}

bool RecordScanner::heldByOther(int64_t record)
{
    return lockByte(record, F_OFD_GETLK, F_WRLCK) == LockAnswer::Held;
}

bool RecordScanner::claim(int64_t record)
{
    return lockByte(record, F_OFD_SETLK, F_WRLCK) != LockAnswer::Held;
}

void RecordScanner::release(int64_t record)
{
    std::ignore = lockByte(record, F_OFD_SETLK, F_UNLCK); // a lock not taken has nothing to drop
}

RecordScanner::LockAnswer RecordScanner::lockByte(int64_t record, int command, short type)
{
    if (record < 2)
        return LockAnswer::Free;
    const Place p = place(record);
    const int fd = descriptor(p.part, true);
    if (fd < 0)
        return LockAnswer::Free;
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = off_t(p.local * length_ - 1);
    lock.l_len = 1;
    lock.l_pid = 0;
    if (::fcntl(fd, command, &lock) != 0)
        return command == F_OFD_GETLK ? LockAnswer::Free : LockAnswer::Held; // no lock, no write
    if (command == F_OFD_GETLK)
        return lock.l_type != F_UNLCK ? LockAnswer::Held : LockAnswer::Free;
    return LockAnswer::Free;
}

} // namespace ff
