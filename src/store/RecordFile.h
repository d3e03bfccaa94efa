#pragma once
// The file set of one database: the first file (the data file name with its extension) and further
// parts named base + four digits with no extension. One part is open at a time (the "file 20" of
// the record store); closing it releases any record lock held through it.
//
// Records are fixed slots numbered from 1. Record r lives in part Int(r / RecordsPerPart) at the
// 1-based byte position (r - RecordsPerPart * part) * RecordLength, so the bytes ahead of record 1
// in the first file hold the header. On reading, a record that is an exact multiple of
// RecordsPerPart is taken from the end of the previous part; the writer does not make that
// correction, its position computes to 0 and the write fails. Both are kept that way on purpose:
// files written by other copies of the program place their records by the same rules.

#include "core/Result.h"

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace ff {

struct RecordPosition {
    int part = 0;
    int64_t position = 0; // 1-based byte position in the part; 0 is invalid
};

class RecordFile {
public:
    RecordFile() = default;
    ~RecordFile();
    RecordFile(const RecordFile &) = delete;
    RecordFile &operator=(const RecordFile &) = delete;

    // Int(2,140,000,000 / recordLength) - 1: a part stays below 2.14 GB.
    static int64_t DefaultRecordsPerPart(int recordLength);
    // Tests make parts small so that several parts are exercised with tiny files.
    static void SetRecordsPerPartForTesting(int64_t recordsPerPart); // 0 restores the rule

    // Sets the names and record length and closes any open part. Nothing is opened yet.
    void setFileSet(const QString &dataFileName, int recordLength, bool readOnly);
    void close();

    const QString &DataFileName() const { return dataFileName_; }
    const QString &DataFileBase() const { return dataFileBase_; }
    QString partName(int part) const; // below 1: the first file
    int RecordLength() const { return recordLength_; }
    int64_t RecordsPerPart() const { return recordsPerPart_; }
    bool readOnly() const { return readOnly_; }

    RecordPosition readPosition(int64_t record) const;
    RecordPosition writePosition(int64_t record) const;

    // Closes the open part and opens `part` (shared, read-write unless read-only; a missing part is
    // created unless read-only). Part numbers below 1 mean the first file.
    Status OpenRecordPart(int part);
    int OpenPart() const { return openPart_; }
    bool isOpen() const { return fd_ >= 0; }

    // Finds LastPart by probing base0001, base0002, ... until a name does not exist.
    int probeLastPart() const;
    int LastPart() const { return lastPart_; }
    void setLastPart(int part) { lastPart_ = part; }

    int64_t lengthOfOpenPart() const; // LOF of the open part, -1 when none is open
    // Int(LastPart * RecordsPerPart + LOF / RecordLength) with the last part open.
    Result<int64_t> countRecords();

    // One positioned read or write of a whole slot. A short read fills the rest from `blank`.
    Status readRecord(int64_t record, QByteArray &buffer, const QByteArray &blank);
    Status writeRecord(int64_t record, const QByteArray &buffer);
    // Bytes at a 1-based position of the open part, as they are.
    Status writeOpenPart(int64_t position1, const QByteArray &bytes);

    // Header of the first file (open part must be the first file).
    Status writeHeaderBytes(int64_t position1, const QByteArray &bytes); // clipped ahead of record 1
    Result<QByteArray> readHeaderBytes(int64_t position1, int size);

    // The one-byte record lock, on the open part: an open-file-description lock, so that it
    // conflicts with every other descriptor, in this process or another, and dies with the handle.
    Status testRecordByte(int64_t position1) const;   // PermissionDenied when another holds it
    Status lockRecordByte(int64_t position1) const;
    Status unlockRecordByte(int64_t position1) const;

private:
    QString dataFileName_, dataFileBase_;
    int recordLength_ = 1;
    int64_t recordsPerPart_ = 1;
    bool readOnly_ = false;
    int fd_ = -1;
    int openPart_ = -1;
    int lastPart_ = 0;
};

} // namespace ff
