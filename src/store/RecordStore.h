#pragma once
// The record store of one open database: the file set, the record on the page and its life.
//
// A record on the page is Clean or Dirty. The first edit calls LockRecord, which marks it dirty and
// takes the one-byte lock; when another user holds the record, it is unpacked again and the edit
// snaps back. Every action that leaves the record saves it first when it is dirty (PackRecord
// writes it and drops the lock). There is no delete: a slot keeps its number for good.

#include "core/Result.h"
#include "design/Page.h"
#include "store/FormulaHooks.h"
#include "store/RecordCodec.h"
#include "store/RecordFile.h"
#include "store/RecordLayout.h"
#include "store/StoreHost.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace ff {

class RecordStore {
public:
    // `hooks` may be null: the plain FormulaHooks base is used. `host` may be null: messages are
    // dropped.
    RecordStore(const Design &design, Page &page, FormulaHooks *hooks = nullptr, StoreHost *host = nullptr);
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;

    void setHooks(FormulaHooks *hooks);
    void setHost(StoreHost *host) { host_ = host; }
    void setDecimalSeparator(QChar separator);

    const Design &design() const { return design_; }
    Page &page() { return page_; }
    const RecordLayout &layout() const { return layout_; }
    const RecordCodec &codec() const { return codec_; }
    RecordFile &file() { return file_; }
    FormulaHooks &hooks() { return *hooks_; }

    // State of the record on the page and of the browse order.
    int CurrentRecord = 1;
    int RecordCount = 0;
    int ListPosition = 1;
    int SortMode = 0;           // 0 file order, 1 SortIndex in order, 2 SortIndex reversed, 3 a result list
    QVector<int> SortIndex;     // 1-based record numbers: entry 0 is unused
    uint8_t StepBack = 0;       // 1 when the last move went towards lower numbers
    uint8_t RecordIsNew = 0;    // set by ClearRecord, cleared by navigation
    bool RecordDirty = false;
    bool RecordLocked = false;
    bool ReadOnlyMode = false;  // the data file is read-only, or the user may only read
    bool ViewOnlyMode = false;  // the logged-in user may only read
    int32_t NextPictureNumber = 0;
    double CreationDate = 0;
    QString RecordPictureFolder; // with a trailing '/', empty when the design has no record pictures
    QByteArray RecordBuffer;

    bool writingAllowed() const { return !ReadOnlyMode && !ViewOnlyMode; }

    // Opens the file set: the first file, its header (a new file gets its date and length), the
    // parts and the count. `create`: a new database, whose header title is written.
    Status openFileSet(const QString &dataFileName, bool create, const QString &title);
    void close();

    Status PackRecord();
    Status UnpackRecord();
    // PermissionDenied when another user holds the record: the page has been unpacked again.
    Status LockRecord();
    Status UnlockRecord();
    Status SaveIfDirty(); // the saving rule: PackRecord when dirty

    Status refreshCount(); // RecordCount from the length of the last part
    void NavigateRecord(int button); // the six buttons 0..5: first, back 10, back 1, on 1, on 10, last
    void StepRecord(int direction);  // 0 one back, 1 one forward, on CurrentRecord directly
    Status JumpToRecord(int record); // the number box: CurrentRecord and ListPosition become it
    Status NewRecord();
    Status ClearRecord();

    // A stored record unscrambled, for the search, the statistics and the command line.
    Result<QByteArray> readPlainRecord(int record);

    // The second file set kept open by import and export.
    void setMergeSet(const QString &dataFileBase, const QString &dataExtension);
    Status OpenMergePart(int part);
    RecordFile &mergeFile() { return merge_; }

    static constexpr const char *kRecordLimitMessage = "Maximum Record Limited Reached";

private:
    // Takes the lock of a new record's slot when it is free and not yet written; PermissionDenied
    // when another user holds or has written it.
    Status claimNewSlot(int64_t record);
    void blankPage();
    void lockAllElements();
    void showMessage(const QString &text);
    void yieldToEvents();

    const Design &design_;
    Page &page_;
    FormulaHooks defaultHooks_;
    FormulaHooks *hooks_;
    StoreHost *host_;
    RecordLayout layout_;
    QChar decimalSeparator_;
    RecordCodec codec_;
    RecordFile file_;
    RecordFile merge_;
};

} // namespace ff
