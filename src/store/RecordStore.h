#pragma once
// The record store of one open database: the file set, the record on the page and its life.
//
// A record on the page is Clean or Dirty. The first edit calls LockRecord, which marks it dirty and
// takes the one-byte lock; when another user holds the record, it is unpacked again and the edit
// snaps back. Every action that leaves the record saves it first when it is dirty (PackRecord
// writes it and drops the lock). There is no delete: a slot keeps its number for good.

#include "core/Clock.h"
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

#include <functional>

namespace ff {

// The order in which the navigation walks the records.
enum class BrowseOrder {
    FileOrder,     // record numbers as they are
    SortIndexUp,   // SortIndex from its start
    SortIndexDown, // SortIndex from its end
    ResultList,    // a walk over a result list
};

// The six navigation buttons.
enum class NavigationButton { First, TenBack, OneBack, OneOn, TenOn, Last };

enum class StepDirection { Back, On };

// Opening an existing data file, or making a new one.
enum class OpenMode { Open, Create };

class RecordStore {
public:
    // `hooks` may be null: the plain FormulaHooks base is used. `host` may be null: messages are
    // dropped.
    RecordStore(const Design &design, Page &page, FormulaHooks *hooks = nullptr, StoreHost *host = nullptr);
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;

    void setHooks(FormulaHooks *hooks);
    void setHost(StoreHost *host) { host_ = host; }
    // The clock of the creation date of a new file and the stamp of a new record.
    void setClock(const Clock &clock);
    const Clock &clock() const { return *clock_; }
    void setDecimalSeparator(QChar separator);

    const Design &design() const { return design_; }
    Page &page() { return page_; }
    const RecordLayout &layout() const { return layout_; }
    const RecordCodec &codec() const { return codec_; }
    RecordFile &file() { return file_; }
    FormulaHooks &hooks() { return *hooks_; }

    // The record on the page and the browse order, for reading; they change only through the calls
    // below.
    int CurrentRecord() const { return currentRecord_; }
    int RecordCount() const { return recordCount_; }
    int ListPosition() const { return listPosition_; }
    BrowseOrder browseOrder() const { return browseOrder_; }
    // 1-based record numbers: entry 0 is unused. Read only in a sort order or a result list.
    const QVector<int> &SortIndex() const { return sortIndex_; }
    bool StepBack() const { return stepBack_; }     // the last move went towards lower numbers
    bool RecordIsNew() const { return recordIsNew_; } // set by ClearRecord, cleared by navigation
    bool RecordDirty() const { return recordDirty_; }
    bool RecordLocked() const { return recordLocked_; }
    bool ReadOnlyMode() const { return readOnlyMode_; } // the data file is read-only, or the user may only read
    bool ViewOnlyMode() const { return viewOnlyMode_; } // the logged-in user may only read
    // The counter in the first file's header, read where it lives: another user or the picture
    // library may have taken pictures since the file was opened. The value read at opening when
    // the header cannot be read.
    int32_t NextPictureNumber() const;
    double CreationDate() const { return creationDate_; }
    // With a trailing '/', empty when the design has no record pictures.
    const QString &RecordPictureFolder() const { return recordPictureFolder_; }
    const QByteArray &RecordBuffer() const { return recordBuffer_; }

    bool writingAllowed() const { return !readOnlyMode_ && !viewOnlyMode_; }

    // The order the navigation walks. `index` (entry 0 unused) is kept for the sort orders and a
    // result list; file order drops it.
    void setBrowseOrder(BrowseOrder order, QVector<int> index = {});
    // The logged-in user may only read: nothing is written from now on, and the next opening is
    // read-only.
    void setViewOnly(bool viewOnly) { viewOnlyMode_ = viewOnly; }
    void setRecordPictureFolder(const QString &folder) { recordPictureFolder_ = folder; }
    // The record on the page counts as saved, as after an unpack.
    void markClean() { recordDirty_ = false; }

    // Opens the file set in file order: the first file, its header (a new file gets its date and
    // length), the parts and the count. `mode` Create: a new database, whose header title is
    // written. The store is read-only when `readOnlyFile` or the user may only read.
    Status openFileSet(const QString &dataFileName, OpenMode mode, const QString &title, bool readOnlyFile = false);
    // After openFileSet: an empty file gets its first record, a new database its first record and
    // a cleared picture number; then record 1 is on the page.
    // `fileOpened` false: the opening failed and goes on with what it has, so no blank record is
    // added. With AutoRunButton 1, `autoRun` runs before the first record is shown.
    Status showFirstRecord(OpenMode mode, bool fileOpened, const std::function<void()> &autoRun = {});
    void close();

    Status PackRecord();
    Status UnpackRecord();
    // PermissionDenied when another user holds the record: the page has been unpacked again.
    Status LockRecord();
    Status UnlockRecord();
    // The saving rule: PackRecord when dirty. A failed save is shown through the host, and the
    // record stays on the page, dirty and locked: a caller that would lose it (closing, a search
    // or replace over the stored records, another file) stops there.
    Status SaveIfDirty();

    Status refreshCount(); // RecordCount from the length of the last part
    // Every move saves first. A failed save has been shown and the move goes on, as the user
    // asked: a record whose slot can never be written (see RecordFile) must not hold the page.
    Status NavigateRecord(NavigationButton button);
    Status StepRecord(StepDirection direction); // on CurrentRecord directly
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
    // The saving rule before a move: a record that cannot be saved has been shown to the user and
    // is left behind unlocked and clean, as the move goes on.
    void saveBeforeMove();
    // Tells the user of a file set that breaks off at a missing part, or whose last part does not
    // end on a whole record (cut short, or made for another version of the design).
    void reportDamage(int probedLastPart);
    // Fills the missing tail of a record cut short at the end of the open part with the blank
    // record's bytes, so that a record written after it does not leave zero bytes in it.
    void completeLastSlot();
    void blankPage();
    void lockAllElements();
    void showMessage(const QString &text);
    void yieldToEvents();

    const Design &design_;
    Page &page_;
    FormulaHooks defaultHooks_;
    FormulaHooks *hooks_;
    StoreHost *host_;
    const Clock *clock_ = &Clock::system();
    RecordLayout layout_;
    QChar decimalSeparator_;
    RecordCodec codec_;
    RecordFile file_;
    RecordFile merge_;

    int currentRecord_ = 1;
    int recordCount_ = 0;
    int listPosition_ = 1;
    BrowseOrder browseOrder_ = BrowseOrder::FileOrder;
    QVector<int> sortIndex_;
    bool stepBack_ = false;
    bool recordIsNew_ = false;
    bool recordDirty_ = false;
    bool recordLocked_ = false;
    bool readOnlyMode_ = false;
    bool viewOnlyMode_ = false;
    int32_t nextPictureNumber_ = 0;
    double creationDate_ = 0;
    QString recordPictureFolder_;
    QByteArray recordBuffer_;
};

} // namespace ff
