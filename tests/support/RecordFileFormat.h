#pragma once
// Where a record sits in a file set, worked out from the format rather than from the store's code,
// for tests that take the other side: parts after the first are named base + four digits with no
// extension; record r of a set with P records per part lies in part (r - 1) / P, and its first
// byte, which is also its lock byte, at the 0-based offset (r - P * part) * RecordLength - 1.

#include <QString>

namespace ff::testsupport {

inline QString partFileName(const QString &dataFile, int part)
{
    if (part == 0)
        return dataFile;
    return dataFile.left(dataFile.lastIndexOf(QLatin1Char('.'))) + QStringLiteral("%1").arg(part, 4, 10, QLatin1Char('0'));
}

// A part stays below 2.14 GB unless a test makes parts smaller.
inline qint64 defaultRecordsPerPart(int recordLength) { return qint64(2140000000) / recordLength - 1; }

struct RecordPlace {
    QString file;
    qint64 offset = 0; // 0-based offset of the record's first byte
};

inline RecordPlace recordPlace(const QString &dataFile, int record, int recordLength, qint64 perPart)
{
    const qint64 part = (record - 1) / perPart;
    return {partFileName(dataFile, int(part)), (record - perPart * part) * recordLength - 1};
}

} // namespace ff::testsupport
