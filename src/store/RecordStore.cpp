#include "store/RecordStore.h"

#include "store/AppendLock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <tuple>
#include <memory>

namespace ff {

RecordStore::RecordStore(const Design &design, Page &page, FormulaHooks *hooks, StoreHost *host)
    : design_(design), page_(page), hooks_(hooks ? hooks : &defaultHooks_), host_(host),
      layout_(ComputeRecordLayout(design)), decimalSeparator_(FormulaHooks::SystemDecimalSeparator()),
      codec_(design, layout_, *hooks_, decimalSeparator_)
{
    recordBuffer_ = QByteArray(layout_.RecordLength, ' ');
    sortIndex_.resize(1);
}

void RecordStore::setBrowseOrder(BrowseOrder order, QVector<int> index)
{
    browseOrder_ = order;
    if (order == BrowseOrder::FileOrder || index.isEmpty())
        index = QVector<int>(1, 0);
    sortIndex_ = std::move(index);
}

void RecordStore::setHooks(FormulaHooks *hooks)
{
    hooks_ = hooks ? hooks : &defaultHooks_;
    codec_.setHooks(*hooks_);
}

void RecordStore::setClock(const Clock &clock)
{
    clock_ = &clock;
    defaultHooks_.setClock(clock);
}

void RecordStore::setDecimalSeparator(QChar separator)
{
    decimalSeparator_ = separator;
    codec_.setDecimalSeparator(separator);
}

void RecordStore::showMessage(const QString &text)
{
    if (host_)
        host_->ShowMessage(design_.MainCap, text, 0);
}

void RecordStore::yieldToEvents()
{
    if (host_)
        host_->YieldToEvents();
}

// ---- opening ----

Status RecordStore::openFileSet(const QString &dataFileName, OpenMode mode, const QString &title, bool readOnlyFile)
{
    close();
    setBrowseOrder(BrowseOrder::FileOrder);
    readOnlyMode_ = readOnlyFile || viewOnlyMode_;
    recordBuffer_ = QByteArray(layout_.RecordLength, ' ');
    file_.setFileSet(dataFileName, layout_.RecordLength, readOnlyMode_);
    currentRecord_ = 1;
    listPosition_ = 1;
    recordIsNew_ = false;
    recordDirty_ = false;
    recordLocked_ = false;
    Status s = file_.OpenRecordPart(0);
    if (!s)
        return s;

    // A new file (under 9 bytes) gets its date of creation and the record length.
    const int64_t lengthAtOpen = file_.lengthOfOpenPart();
    if (lengthAtOpen < 9 && !readOnlyMode_) {
        QByteArray date(8, '\0');
        creationDate_ = FormulaHooks::Now(*clock_);
        RecordCodec::writeDouble(date, 1, creationDate_);
        QByteArray length(4, '\0');
        RecordCodec::writeInt32(length, 1, layout_.RecordLength);
        // The first file is open read-write: a header write that fails anyway leaves the header
        // blank, which readers take as it comes; the record writes report their own errors.
        std::ignore = file_.writeHeaderBytes(1, date);
        std::ignore = file_.writeHeaderBytes(16, length);
    } else if (Result<QByteArray> date = file_.readHeaderBytes(1, 8); date && date->size() == 8) {
        creationDate_ = RecordCodec::readDouble(*date, 1);
    }
    nextPictureNumber_ = 0;
    if (Result<QByteArray> number = file_.readHeaderBytes(10, 4); number && number->size() == 4)
        nextPictureNumber_ = RecordCodec::readInt32(*number, 1);

    const int probedLastPart = file_.probeLastPart();
    file_.setLastPart(probedLastPart);
    Status counted = refreshCount();
    if (!counted)
        return counted;
    if (lengthAtOpen >= 9)
        reportDamage(probedLastPart);

    if (mode == OpenMode::Create && !readOnlyMode_) {
        // The title, padded to the record length, from position 9; then NextPictureNumber 0.
        QByteArray text = codec_.codePage().encode(title);
        text.resize(layout_.RecordLength, ' ');
        Status header = file_.OpenPart() != 0 ? file_.OpenRecordPart(0) : Status();
        if (header)
            header = file_.writeHeaderBytes(9, text);
        if (header)
            header = file_.writeHeaderBytes(10, QByteArray(4, '\0'));
        // A title that cannot be written leaves a blank one (`header` fails): the database works
        // without it.
        nextPictureNumber_ = 0;
        recordCount_ = 0;
    }
    return {};
}

Status RecordStore::showFirstRecord(OpenMode mode, bool fileOpened, const std::function<void()> &autoRun)
{
    recordBuffer_ = QByteArray(layout_.RecordLength, ' ');
    // The auto-run button fires before the first record is shown.
    if (design_.AutoRunButton == 1 && autoRun) {
        recordDirty_ = false;
        autoRun();
    }
    // An empty file or a new database starts with one blank record. When it cannot be written
    // (a read-only file) the blank page is shown all the same; a later save reports the fault.
    if (mode == OpenMode::Open && recordCount_ == 0 && fileOpened) {
        std::ignore = NewRecord();
        recordCount_ = 1;
        std::ignore = PackRecord();
    } else if (mode == OpenMode::Create) {
        recordCount_ = 0;
        std::ignore = NewRecord();
        if (!recordPictureFolder_.isEmpty())
            QDir().mkdir(recordPictureFolder_);
        nextPictureNumber_ = 0;
        if (writingAllowed() && file_.OpenRecordPart(0))
            std::ignore = file_.writeHeaderBytes(10, QByteArray(4, '\0')); // as the title above
    }
    return UnpackRecord();
}

void RecordStore::close()
{
    file_.close();
    merge_.close();
    recordLocked_ = false;
}

Status RecordStore::refreshCount()
{
    Result<int64_t> count = file_.countRecords();
    if (!count && count.error().code == ErrorCode::Overflow) {
        // The count did not fit: work the last part out from the record on the page and recount.
        file_.setLastPart(static_cast<int>(currentRecord_ / file_.RecordsPerPart()));
        count = file_.countRecords();
    }
    if (!count)
        return count.error();
    recordCount_ = static_cast<int>(std::min<int64_t>(*count, INT32_MAX));
    return {};
}

void RecordStore::reportDamage(int probedLastPart)
{
    // The parts are probed until a name is missing: the records of parts after a gap are not
    // counted. They are left as they are, and the user is told where the set breaks off.
    const QFileInfo first(file_.partName(0));
    const QString base = QFileInfo(file_.DataFileBase()).fileName();
    const QStringList later = first.dir().entryList({base + QStringLiteral("[0-9][0-9][0-9][0-9]")}, QDir::Files);
    for (const QString &name : later) {
        if (name.mid(base.size()).toInt() > probedLastPart + 1) {
            showMessage(QStringLiteral("The record file %1 is missing: the records of %2 and the parts after it are not shown.")
                            .arg(file_.partName(probedLastPart + 1), name));
            break;
        }
    }
    // A file written whole ends on the last byte of a slot. One that does not was cut short, or
    // was made for another version of the design, whose records lie shifted against these.
    const int64_t length = file_.lengthOfOpenPart();
    const int64_t slot = layout_.RecordLength;
    if (length <= 0 || (length + 1) % slot == 0)
        return; // a later part is made empty before its first record is written
    const QString name = file_.partName(file_.LastPart());
    if (length >= slot - 1) {
        showMessage(QStringLiteral("The data file %1 ends inside a record: it was cut short, or made for another "
                                   "version of this database. The last record shows what is left of it.")
                        .arg(name));
    } else if (file_.LastPart() == 0) {
        // Ahead of record 1 lies the header in the first file; in a later part the bytes are unused.
        showMessage(QStringLiteral("The data file %1 ends inside its header: it holds no records.").arg(name));
    }
}

// ---- one record ----

void RecordStore::lockAllElements()
{
    std::fill(page_.FieldLocked.begin(), page_.FieldLocked.end(), true);
    std::fill(page_.ComboLocked.begin(), page_.ComboLocked.end(), true);
    std::fill(page_.CheckLocked.begin(), page_.CheckLocked.end(), true);
    std::fill(page_.NoteLocked.begin(), page_.NoteLocked.end(), true);
}

Status RecordStore::UnpackRecord()
{
    QByteArray stored;
    Status s = file_.readRecord(currentRecord_, stored, codec_.blankRecord());
    if (!s)
        return s; // the page stays as it stands
    recordBuffer_ = stored;
    codec_.unpack(stored, page_, currentRecord_, recordIsNew_);
    if (!writingAllowed())
        lockAllElements();
    hooks_->RunFormulas(page_, currentRecord_);
    recordDirty_ = false;
    yieldToEvents();
    page_.notifyAll();
    return {};
}

Status RecordStore::PackRecord()
{
    if (!writingAllowed())
        return {};
    Result<QByteArray> packed = codec_.pack(page_);
    if (!packed)
        return packed.error();
    recordBuffer_ = *packed;
    Status written = file_.writeRecord(currentRecord_, recordBuffer_);
    if (!written)
        return written; // the record stays dirty and keeps its lock
    // The record is written; a lock byte that cannot be released dies with the file handle.
    std::ignore = UnlockRecord();
    yieldToEvents();
    recordDirty_ = false;
    return {};
}

Status RecordStore::UnlockRecord()
{
    Status s;
    if (currentRecord_ > 1 && file_.isOpen()) {
        const RecordPosition p = file_.readPosition(currentRecord_);
        if (p.part == file_.OpenPart())
            s = file_.unlockRecordByte(p.position);
    }
    recordLocked_ = false;
    return s;
}

int32_t RecordStore::NextPictureNumber() const
{
    QFile first(file_.partName(0));
    if (file_.RecordLength() < 14 || !first.open(QIODevice::ReadOnly) || !first.seek(9))
        return nextPictureNumber_;
    const QByteArray number = first.read(4);
    return number.size() == 4 ? RecordCodec::readInt32(number, 1) : nextPictureNumber_;
}

Status RecordStore::LockRecord()
{
    recordDirty_ = true;
    if (recordLocked_)
        return {};
    recordLocked_ = true;
    if (currentRecord_ < 2)
        return {}; // record 1 is never locked: the header shares its part
    if (!writingAllowed())
        return {}; // nothing will be written, so nothing to guard
    const RecordPosition p = file_.readPosition(currentRecord_);
    Status s;
    if (file_.OpenPart() != p.part || !file_.isOpen())
        s = file_.OpenRecordPart(p.part);
    // The lock is advisory: test for another user's lock explicitly, then take it.
    if (s)
        s = file_.testRecordByte(p.position);
    if (s)
        s = file_.lockRecordByte(p.position);
    if (!s && s.error().code == ErrorCode::PermissionDenied) {
        // Another user holds the record: show it again as stored, throwing the edit away. When
        // the stored record cannot be read the page stays as it is; the refusal is what counts.
        recordDirty_ = false;
        recordLocked_ = false;
        std::ignore = UnpackRecord();
        return s;
    }
    return s;
}

void RecordStore::saveBeforeMove()
{
    if (SaveIfDirty())
        return;
    // The failed save has been shown. The page moves on, so the record left behind gives up its
    // lock and its dirty mark: the next record's first edit must take a lock of its own.
    std::ignore = UnlockRecord();
    recordDirty_ = false;
}

Status RecordStore::SaveIfDirty()
{
    if (!recordDirty_)
        return {};
    Status saved = PackRecord();
    if (!saved)
        showMessage(QStringLiteral("The record could not be saved: %1").arg(saved.error().text));
    return saved;
}

// ---- moving ----

Status RecordStore::NavigateRecord(NavigationButton button)
{
    saveBeforeMove();
    // Other users' new records come into the count. When the last part cannot be opened or
    // counted, the count stays as it was and the move works within it.
    if (file_.OpenRecordPart(file_.LastPart()))
        std::ignore = refreshCount();
    recordIsNew_ = false;
    listPosition_ = std::clamp(listPosition_, 1, std::max(1, recordCount_));

    switch (button) {
    case NavigationButton::First: listPosition_ = 1; break;
    case NavigationButton::TenBack:
        if (listPosition_ - 10 > 0) {
            listPosition_ -= 10;
            stepBack_ = true;
        }
        break;
    case NavigationButton::OneBack:
        if (listPosition_ - 1 >= 1) {
            listPosition_ -= 1;
            stepBack_ = true;
        }
        break;
    case NavigationButton::OneOn:
        if (listPosition_ + 1 <= recordCount_) {
            listPosition_ += 1;
            stepBack_ = false;
        }
        break;
    case NavigationButton::TenOn:
        if (listPosition_ + 10 <= recordCount_) {
            listPosition_ += 10;
            stepBack_ = false;
        }
        break;
    case NavigationButton::Last: listPosition_ = std::max(1, recordCount_); break;
    }

    if (browseOrder_ == BrowseOrder::FileOrder) {
        if (currentRecord_ == listPosition_)
            return {};
        currentRecord_ = listPosition_;
    } else if (browseOrder_ == BrowseOrder::SortIndexDown) {
        const int at = recordCount_ - (listPosition_ - 1);
        if (at >= 1 && at < sortIndex_.size())
            currentRecord_ = sortIndex_[at];
    } else {
        if (listPosition_ >= 1 && listPosition_ < sortIndex_.size())
            currentRecord_ = sortIndex_[listPosition_];
    }
    return UnpackRecord();
}

Status RecordStore::StepRecord(StepDirection direction)
{
    saveBeforeMove();
    if (direction == StepDirection::Back && currentRecord_ > 1)
        --currentRecord_;
    else if (direction == StepDirection::On && currentRecord_ < recordCount_)
        ++currentRecord_;
    recordIsNew_ = false;
    return UnpackRecord();
}

Status RecordStore::JumpToRecord(int record)
{
    saveBeforeMove();
    if (record < 1 || record > recordCount_)
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("no record %1").arg(record));
    currentRecord_ = record;
    listPosition_ = record;
    recordIsNew_ = false;
    return UnpackRecord();
}

// ---- new and cleared records ----

void RecordStore::blankPage()
{
    const bool showZeros = design_.ShowZeros == 1;
    for (size_t i = 1; i < design_.Fields.size() && i < size_t(page_.FieldText.size()); ++i) {
        if (layout_.FieldOffset[i] == 0)
            continue;
        page_.FieldText[i].clear();
        page_.FieldDate[i] = 0;
        page_.FieldLocked[i] = false;
        hooks_->SetFieldDefault(page_, int(i), showZeros);
        if (design_.Fields[i].FieldDefault == 1) {
            page_.FieldDate[i] = 0;
            page_.FieldText[i].clear();
        }
    }
    for (size_t i = 0; i < design_.Checks.size() && i < size_t(page_.CheckValue.size()); ++i) {
        page_.CheckValue[i] = design_.Checks[i].CheckDefault ? 1 : 0;
        page_.CheckLocked[i] = false;
    }
    for (qsizetype i = 1; i < page_.ComboText.size(); ++i) {
        page_.ComboText[i].clear();
        page_.ComboLocked[i] = false;
    }
    for (qsizetype i = 1; i < page_.NoteText.size(); ++i) {
        page_.NoteText[i].clear();
        page_.NoteLocked[i] = false;
    }
    for (QString &name : page_.PictureRecordName)
        name.clear();
    page_.FlowLabels.clear();
    page_.FlowImages.clear();
    page_.RecordStamp = FormulaHooks::Today(*clock_);
    if (layout_.StampOffset && page_.TitleCaption.size() > 4)
        page_.TitleCaption[4] = design_.Titles[4].Caption + RecordCodec::StampText(page_.RecordStamp, design_.StampFormat);
    if (page_.TitleCaption.size() > 2)
        page_.TitleCaption[2] = design_.Titles[2].Caption + RecordCodec::RecordNumberText(currentRecord_);
}

Status RecordStore::claimNewSlot(int64_t record)
{
    if (record < 2)
        return {}; // record 1 is never locked: the header shares its slot
    const RecordPosition p = file_.readPosition(record);
    Status s;
    if (file_.OpenPart() != p.part || !file_.isOpen())
        s = file_.OpenRecordPart(p.part);
    if (s)
        s = file_.testRecordByte(p.position);
    if (s)
        s = file_.lockRecordByte(p.position);
    if (!s)
        return s;
    // Locked, but written meanwhile by someone who has let it go again: not free either.
    if (file_.lengthOfOpenPart() >= p.position - 1 + layout_.RecordLength) {
        std::ignore = file_.unlockRecordByte(p.position); // a lock left would only be dropped on close
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("record %1 was added by another user").arg(record));
    }
    return {};
}

void RecordStore::completeLastSlot()
{
    // A record cut short at the end of the open part reads as its bytes with the blank record
    // after them. The new record goes into the slot after it, and writing there would leave a gap
    // of zero bytes in it: the gap is filled first with what the record already shows.
    const int64_t length = file_.lengthOfOpenPart();
    const int64_t slot = layout_.RecordLength;
    if (length < slot || (length + 1) % slot == 0)
        return; // whole, or cut inside the header, which holds no record
    const int64_t have = (length + 1) % slot;
    // Only the missing tail is written, after the bytes that are there. A write that fails leaves
    // the gap, as it was before this step.
    std::ignore = file_.writeOpenPart(length + 1, codec_.blankRecord().mid(have));
}

Status RecordStore::NewRecord()
{
    saveBeforeMove();
    // Two users pressing New together each get a record of their own: copies of this program take
    // turns through the append lock, and a slot whose byte another user holds (a new record being
    // filled by a copy that does not take turns) is passed over for the next.
    std::unique_ptr<AppendLock> turn;
    if (writingAllowed())
        turn = std::make_unique<AppendLock>(file_.partName(0));
    Status s = file_.OpenRecordPart(file_.LastPart());
    if (!s)
        return s;
    const int64_t perPart = file_.RecordsPerPart();
    int64_t n = perPart * file_.LastPart() + file_.lengthOfOpenPart() / layout_.RecordLength + 1;
    if (writingAllowed())
        completeLastSlot();
    for (int tries = 0;; ++tries, ++n) {
        if ((int64_t(2140000000) / perPart) * perPart < n) {
            showMessage(QString::fromLatin1(kRecordLimitMessage));
            return makeError(ErrorCode::Overflow, QString::fromLatin1(kRecordLimitMessage));
        }
        if (tries > 10000)
            return makeError(ErrorCode::PermissionDenied, QStringLiteral("no free slot for a new record"));
        if (n > (file_.LastPart() + 1) * perPart)
            file_.setLastPart(file_.LastPart() + 1); // the write goes to a new part
        if (!writingAllowed())
            break;
        const Status claimed = claimNewSlot(n);
        if (claimed)
            break;
        if (claimed.error().code != ErrorCode::PermissionDenied)
            return claimed;
    }

    recordCount_ = static_cast<int>(std::max<int64_t>(recordCount_ + 1, n));
    if (browseOrder_ != BrowseOrder::FileOrder)
        sortIndex_.push_back(recordCount_);
    currentRecord_ = recordCount_;
    listPosition_ = recordCount_;
    recordBuffer_ = QByteArray(layout_.RecordLength, ' ');
    blankPage();
    hooks_->RunFormulas(page_, currentRecord_);
    // The new record is written at once, so that the next user counts it, and stays in edit: its
    // lock is kept from the claim on, dirty and locked.
    Status written;
    if (writingAllowed()) {
        Result<QByteArray> packed = codec_.pack(page_);
        written = packed ? file_.writeRecord(currentRecord_, *packed) : Status(packed.error());
        if (packed)
            recordBuffer_ = *packed;
    }
    turn.reset();
    recordLocked_ = true;
    recordDirty_ = true;
    yieldToEvents();
    page_.notifyAll();
    return written;
}

Status RecordStore::ClearRecord()
{
    Status locked = LockRecord();
    if (!locked && locked.error().code == ErrorCode::PermissionDenied)
        return locked; // snapped back: the record is another user's
    recordIsNew_ = true;
    if (writingAllowed() && !recordPictureFolder_.isEmpty()) {
        for (const QString &name : page_.PictureRecordName) {
            // Names come from the record: only plain file names inside the folder are deleted.
            if (name.isEmpty() || name.contains(QLatin1Char('/')) || name == QLatin1String("..") || name == QLatin1String("."))
                continue;
            QFile::remove(QDir(recordPictureFolder_).filePath(name));
        }
    }
    blankPage();
    hooks_->RunFormulas(page_, currentRecord_);
    page_.notifyAll();
    return {};
}

Result<QByteArray> RecordStore::readPlainRecord(int record)
{
    QByteArray stored;
    Status s = file_.readRecord(record, stored, codec_.blankRecord());
    if (!s)
        return s.error();
    return codec_.plain(stored);
}

void RecordStore::setMergeSet(const QString &dataFileBase, const QString &dataExtension)
{
    merge_.setFileSet(dataFileBase + QLatin1Char('.') + dataExtension, layout_.RecordLength, false);
}

Status RecordStore::OpenMergePart(int part) { return merge_.OpenRecordPart(part); }

} // namespace ff
