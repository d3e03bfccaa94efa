#pragma once
// Serialises the adding of records between copies of the program that share a file set. While a
// copy works out the next record number, claims that slot and writes it, it holds a write lock on
// the first byte of the first file (the header's creation date, where no record lock ever falls:
// record 2, the first one locked, starts at 2 * RecordLength - 1 and up). The lock is an
// open-file-description lock on a descriptor of its own, so it conflicts with other copies and
// with other stores of the same process, and it goes when the guard goes.

#include <QString>

namespace ff {

class AppendLock {
public:
    // Opens `firstFile` and waits for the lock. Without write access nothing is held.
    explicit AppendLock(const QString &firstFile);
    ~AppendLock();
    AppendLock(const AppendLock &) = delete;
    AppendLock &operator=(const AppendLock &) = delete;

    bool held() const { return held_; }

private:
    int fd_ = -1;
    bool held_ = false;
};

} // namespace ff
