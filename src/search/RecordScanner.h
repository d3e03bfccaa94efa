#pragma once
// Reads the records of a file set for the walks of the search, the sort and the exports: a window
// of a few megabytes of whole records when the walk goes through the file in order, one
// positioned read per record when it jumps (a result list, a sort order). A window is mapped from
// the page cache rather than copied, and its pages are mapped as the walk first touches them (the
// kernel maps a run of cached pages per fault, cheaper than populating the window up front); a
// window that reaches past the end of its part is read into a buffer. Plain and scrambled files
// are read alike: `stored` hands out the bytes as the file holds them, and the walk turns into
// plain bytes only what it tests (see StoredBytes); `record` hands out the plain record, a copy
// for a scrambled file. Records stay valid until the next call: nothing is copied per record on
// the stored path and memory stays at one window whatever the size of the store. Files of a
// record set only grow, so a mapped window never loses its pages. Record positions follow the
// record file's reading rule, parts included. The scanner keeps its own descriptors, so that the
// store's open part and its lock are not disturbed; a scanner serves one thread.

#include "core/Result.h"
#include "store/RecordFile.h"

#include <QByteArray>
#include <cstdint>
#include <vector>

namespace ff {

class RecordScanner {
public:
    // `records`: how many records the walk may reach (the store's RecordCount).
    // `blockBytes`: the size of a window read into a buffer; `mapBytes`: of a mapped window. A
    // mapped window costs no memory of its own, and fewer, larger mappings cost less time.
    RecordScanner(const RecordFile &file, int64_t records, bool scrambled, int64_t blockBytes = 4 << 20,
                  int64_t mapBytes = 8 << 20);
    ~RecordScanner();
    RecordScanner(const RecordScanner &) = delete;
    RecordScanner &operator=(const RecordScanner &) = delete;

    enum class Access { Forward, Backward, Random };
    // The stored bytes of record `record` (RecordLength of them), or null when it cannot be read.
    // A record beyond the end of its part reads as blanks.
    const uint8_t *stored(int64_t record, Access access)
    {
        if (record >= blockFirst_ && record <= blockLast_) // most calls: the present window
            return blockData_ + size_t(record - blockFirst_) * size_t(length_);
        return fetch(record, access);
    }
    // The plain bytes of record `record`: the stored ones of a plain file, an unscrambled copy
    // (valid until the next call) of a scrambled one.
    const uint8_t *record(int64_t record, Access access);

    // Asks the processor to fetch `offset` of `record` when it is in the present window: the walk
    // names the record it will want a few steps ahead.
    void prefetch(int64_t record, int offset, int length) const
    {
        if (record < blockFirst_ || record > blockLast_)
            return;
        const uint8_t *p = blockData_ + size_t(record - blockFirst_) * size_t(length_) + offset;
        for (int k = 0; k < length; k += 64)
            __builtin_prefetch(p + k);
    }

    // Writes `bytes` (stored form) at `offset` (0-based) in record `record`, on a read-write
    // descriptor of its part.
    Status write(int64_t record, int offset, const QByteArray &bytes);
    // True when another descriptor holds the one-byte lock of `record` (record 1 is never locked).
    bool heldByOther(int64_t record);
    // Takes the one-byte lock of `record` on the scanner's own descriptor without waiting: false
    // when another descriptor holds it. A writer holds it from before its write until after, so no
    // user takes the record between the test and the write. Record 1 is never locked: true.
    bool claim(int64_t record);
    void release(int64_t record);

    int recordLength() const { return length_; }

private:
    enum class LockAnswer { Free, Held };
    // fcntl `command` (F_OFD_GETLK or F_OFD_SETLK) with `type` on the lock byte of `record`.
    LockAnswer lockByte(int64_t record, int command, short type);

    struct Place {
        int part;
        int64_t local; // 1-based slot in the part
    };
    Place place(int64_t record) const;
    const uint8_t *fetch(int64_t record, Access access);
    int descriptor(int part, bool write);
    bool load(int64_t first, int64_t last, uint8_t *into);
    bool map(int64_t first, int64_t last);
    void unmap();
    int64_t partSize(int part, int fd, int64_t atLeast);

    const RecordFile &file_;
    int64_t records_;
    bool scrambled_;
    int length_;
    int64_t perPart_;
    int64_t blockRecords_;
    int64_t mapRecords_;
    std::vector<uint8_t> block_;
    std::vector<uint8_t> single_;
    std::vector<uint8_t> plain_;
    int64_t blockFirst_ = 1, blockLast_ = 0;
    const uint8_t *blockData_ = nullptr; // the window: block_ or a mapping
    void *map_ = nullptr;
    size_t mapLength_ = 0;
    std::vector<int64_t> sizes_;
    std::vector<int> readFds_, writeFds_;
};

} // namespace ff
