#pragma once
// Writes imported records at the end of the record store in large blocks. While an import runs it
// holds the store's append lock, so that other copies of the program adding records wait for it
// and the record numbers it hands out stay its own. Records are placed where readers look for
// them (RecordFile::readPosition: the exact multiple of RecordsPerPart at the end of the part
// before), parts are started as they fill, and no record goes past the record limit.
//
// At the end the store opens its file set again, so that it counts the new records and reads the
// new NextPictureNumber, and shows the last record written.

#include "core/MessageSink.h"
#include "core/Result.h"
#include "store/AppendLock.h"
#include "store/RecordStore.h"

#include <QByteArray>
#include <memory>
#include <optional>
#include <vector>

namespace ff {

class ImportAppender {
public:
    ImportAppender(RecordStore &store, MessageSink *messages);
    ~ImportAppender();
    ImportAppender(const ImportAppender &) = delete;
    ImportAppender &operator=(const ImportAppender &) = delete;

    // Saves the record on the page when it is dirty (a failed save stops the import before it
    // starts), takes the append lock and counts the stored records. `intoRecordOne`: the first
    // record handed out is record 1, when the store holds no more than that one.
    Status begin(bool intoRecordOne);

    // The number of the next record, or nothing when the limit is reached: then the message
    // "Maximum Record Limited Reached" has been shown, once.
    std::optional<int64_t> nextRecord();
    bool limitReached() const { return limitReached_; }

    // Writes `count` stored records (RecordLength bytes each) numbered `first`, `first` + 1, ...
    Status write(int64_t first, const char *records, int64_t count);
    // The records written so far, and the first of them (0 when none).
    int64_t written() const { return written_; }
    int64_t firstWritten() const { return firstWritten_; }

    // The picture counter in the header of the first file.
    int32_t nextPictureNumber() const { return nextPictureNumber_; }
    Status setNextPictureNumber(int32_t number);

    // Lets the lock go, opens the store's file set again and shows the last record written (the
    // record that was on the page when nothing was written).
    Status finish();

private:
    Status openPart(int part);
    int64_t limit() const;

    RecordStore &store_;
    MessageSink *messages_;
    std::unique_ptr<AppendLock> lock_;
    int recordLength_ = 1;
    int64_t perPart_ = 1;
    int64_t count_ = 0;          // records in the store, the ones written included
    bool intoRecordOne_ = false;
    bool limitReached_ = false;
    bool finished_ = true;
    int64_t written_ = 0;
    int64_t firstWritten_ = 0;
    int64_t lastWritten_ = 0;
    int32_t nextPictureNumber_ = 0;
    int fd_ = -1;
    int openPart_ = -1;
    int shownRecord_ = 1;
};

} // namespace ff
