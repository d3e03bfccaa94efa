#include "store/RecordStore.h"

#include "store/AppendLock.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <memory>

namespace ff {

RecordStore::RecordStore(const Design &design, Page &page, FormulaHooks *hooks, StoreHost *host)
    : design_(design), page_(page), hooks_(hooks ? hooks : &defaultHooks_), host_(host),
      layout_(ComputeRecordLayout(design)), decimalSeparator_(FormulaHooks::SystemDecimalSeparator()),
      codec_(design, layout_, *hooks_, decimalSeparator_)
{
    RecordBuffer = QByteArray(layout_.RecordLength, ' ');
    SortIndex.resize(1);
}

void RecordStore::setHooks(FormulaHooks *hooks)
{
    hooks_ = hooks ? hooks : &defaultHooks_;
    codec_.setHooks(*hooks_);
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

Status RecordStore::openFileSet(const QString &dataFileName, bool create, const QString &title)
{
    close();
    SortMode = 0;
    RecordBuffer = QByteArray(layout_.RecordLength, ' ');
    file_.setFileSet(dataFileName, layout_.RecordLength, ReadOnlyMode);
    CurrentRecord = 1;
    ListPosition = 1;
    RecordIsNew = 0;
    RecordDirty = false;
    RecordLocked = false;
    Status s = file_.OpenRecordPart(0);
    if (!s)
        return s;

    // A new file (under 9 bytes) gets its date of creation and the record length.
    if (file_.lengthOfOpenPart() < 9 && !ReadOnlyMode) {
        QByteArray date(8, '\0');
        CreationDate = FormulaHooks::Now();
        RecordCodec::writeDouble(date, 1, CreationDate);
        file_.writeHeaderBytes(1, date);
        QByteArray length(4, '\0');
        RecordCodec::writeInt32(length, 1, layout_.RecordLength);
        file_.writeHeaderBytes(16, length);
    } else if (Result<QByteArray> date = file_.readHeaderBytes(1, 8); date && date->size() == 8) {
        CreationDate = RecordCodec::readDouble(*date, 1);
    }
    NextPictureNumber = 0;
    if (Result<QByteArray> number = file_.readHeaderBytes(10, 4); number && number->size() == 4)
        NextPictureNumber = RecordCodec::readInt32(*number, 1);

    file_.setLastPart(file_.probeLastPart());
    Status counted = refreshCount();
    if (!counted)
        return counted;

    if (create && !ReadOnlyMode) {
        // The title, padded to the record length, from position 9; then NextPictureNumber 0.
        QByteArray text = codec_.codePage().encode(title);
        text.resize(layout_.RecordLength, ' ');
        if (file_.OpenPart() != 0)
            file_.OpenRecordPart(0);
        file_.writeHeaderBytes(9, text);
        file_.writeHeaderBytes(10, QByteArray(4, '\0'));
        NextPictureNumber = 0;
        RecordCount = 0;
    }
    return {};
}

void RecordStore::close()
{
    file_.close();
    merge_.close();
    RecordLocked = false;
}

Status RecordStore::refreshCount()
{
    Result<int64_t> count = file_.countRecords();
    if (!count && count.error().code == ErrorCode::Overflow) {
        // The count did not fit: work the last part out from the record on the page and recount.
        file_.setLastPart(static_cast<int>(CurrentRecord / file_.RecordsPerPart()));
        count = file_.countRecords();
    }
    if (!count)
        return count.error();
    RecordCount = static_cast<int>(std::min<int64_t>(*count, INT32_MAX));
    return {};
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
    Status s = file_.readRecord(CurrentRecord, stored, codec_.blankRecord());
    if (!s)
        return s; // the page stays as it stands
    RecordBuffer = stored;
    codec_.unpack(stored, page_, CurrentRecord, RecordIsNew != 0);
    if (!writingAllowed())
        lockAllElements();
    hooks_->RunFormulas(page_, CurrentRecord);
    RecordDirty = false;
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
    RecordBuffer = *packed;
    Status written = file_.writeRecord(CurrentRecord, RecordBuffer);
    if (!written)
        return written; // a failed write is not reported; the record stays dirty
    UnlockRecord();
    yieldToEvents();
    RecordDirty = false;
    return {};
}

Status RecordStore::UnlockRecord()
{
    Status s;
    if (CurrentRecord > 1 && file_.isOpen()) {
        const RecordPosition p = file_.readPosition(CurrentRecord);
        if (p.part == file_.OpenPart())
            s = file_.unlockRecordByte(p.position);
    }
    RecordLocked = false;
    return s;
}

Status RecordStore::LockRecord()
{
    RecordDirty = true;
    if (RecordLocked)
        return {};
    RecordLocked = true;
    if (CurrentRecord < 2)
        return {}; // record 1 is never locked: the header shares its part
    if (!writingAllowed())
        return {}; // nothing will be written, so nothing to guard
    const RecordPosition p = file_.readPosition(CurrentRecord);
    Status s;
    if (file_.OpenPart() != p.part || !file_.isOpen())
        s = file_.OpenRecordPart(p.part);
    // The lock is advisory: test for another user's lock explicitly, then take it.
    if (s)
        s = file_.testRecordByte(p.position);
    if (s)
        s = file_.lockRecordByte(p.position);
    if (!s && s.error().code == ErrorCode::PermissionDenied) {
        // Another user holds the record: show it again as stored, throwing the edit away.
        RecordDirty = false;
        RecordLocked = false;
        UnpackRecord();
        return s;
    }
    return s;
}

Status RecordStore::SaveIfDirty()
{
    if (RecordDirty)
        return PackRecord();
    return {};
}

// ---- moving ----

void RecordStore::NavigateRecord(int button)
{
    SaveIfDirty();
    file_.OpenRecordPart(file_.LastPart());
    refreshCount();
    RecordIsNew = 0;
    ListPosition = std::clamp(ListPosition, 1, std::max(1, RecordCount));

    switch (button) {
    case 0: ListPosition = 1; break;
    case 1:
        if (ListPosition - 10 > 0) {
            ListPosition -= 10;
            StepBack = 1;
        }
        break;
    case 2:
        if (ListPosition - 1 >= 1) {
            ListPosition -= 1;
            StepBack = 1;
        }
        break;
    case 3:
        if (ListPosition + 1 <= RecordCount) {
            ListPosition += 1;
            StepBack = 0;
        }
        break;
    case 4:
        if (ListPosition + 10 <= RecordCount) {
            ListPosition += 10;
            StepBack = 0;
        }
        break;
    case 5: ListPosition = std::max(1, RecordCount); break;
    default: return;
    }

    if (SortMode == 0) {
        if (CurrentRecord == ListPosition)
            return;
        CurrentRecord = ListPosition;
    } else if (SortMode == 2) {
        const int at = RecordCount - (ListPosition - 1);
        if (at >= 1 && at < SortIndex.size())
            CurrentRecord = SortIndex[at];
    } else {
        if (ListPosition >= 1 && ListPosition < SortIndex.size())
            CurrentRecord = SortIndex[ListPosition];
    }
    UnpackRecord();
}

void RecordStore::StepRecord(int direction)
{
    SaveIfDirty();
    if (direction == 0 && CurrentRecord > 1)
        --CurrentRecord;
    else if (direction == 1 && CurrentRecord < RecordCount)
        ++CurrentRecord;
    RecordIsNew = 0;
    UnpackRecord();
}

Status RecordStore::JumpToRecord(int record)
{
    SaveIfDirty();
    if (record < 1 || record > RecordCount)
        return makeError(ErrorCode::SubscriptOutOfRange, QStringLiteral("no record %1").arg(record));
    CurrentRecord = record;
    ListPosition = record;
    RecordIsNew = 0;
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
    page_.RecordStamp = FormulaHooks::Today();
    if (layout_.StampOffset && page_.TitleCaption.size() > 4)
        page_.TitleCaption[4] = design_.Titles[4].Caption + RecordCodec::StampText(page_.RecordStamp, design_.StampFormat);
    if (page_.TitleCaption.size() > 2)
        page_.TitleCaption[2] = design_.Titles[2].Caption + RecordCodec::RecordNumberText(CurrentRecord);
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
        file_.unlockRecordByte(p.position);
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("record %1 was added by another user").arg(record));
    }
    return {};
}

Status RecordStore::NewRecord()
{
    SaveIfDirty();
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

    RecordCount = static_cast<int>(std::max<int64_t>(RecordCount + 1, n));
    if (SortMode != 0)
        SortIndex.push_back(RecordCount);
    CurrentRecord = RecordCount;
    ListPosition = RecordCount;
    RecordBuffer = QByteArray(layout_.RecordLength, ' ');
    blankPage();
    hooks_->RunFormulas(page_, CurrentRecord);
    // The new record is written at once, so that the next user counts it, and stays in edit: its
    // lock is kept from the claim on, dirty and locked.
    Status written;
    if (writingAllowed()) {
        Result<QByteArray> packed = codec_.pack(page_);
        written = packed ? file_.writeRecord(CurrentRecord, *packed) : Status(packed.error());
        if (packed)
            RecordBuffer = *packed;
    }
    turn.reset();
    RecordLocked = true;
    RecordDirty = true;
    yieldToEvents();
    page_.notifyAll();
    return written;
}

Status RecordStore::ClearRecord()
{
    Status locked = LockRecord();
    if (!locked && locked.error().code == ErrorCode::PermissionDenied)
        return locked; // snapped back: the record is another user's
    RecordIsNew = 1;
    if (writingAllowed() && !RecordPictureFolder.isEmpty()) {
        for (const QString &name : page_.PictureRecordName) {
            // Names come from the record: only plain file names inside the folder are deleted.
            if (name.isEmpty() || name.contains(QLatin1Char('/')) || name == QLatin1String("..") || name == QLatin1String("."))
                continue;
            QFile::remove(QDir(RecordPictureFolder).filePath(name));
        }
    }
    blankPage();
    hooks_->RunFormulas(page_, CurrentRecord);
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
