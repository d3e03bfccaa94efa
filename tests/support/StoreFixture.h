#pragma once
// A record store over a design built in code, and data files laid out by hand, independently of
// RecordFile: record r of a set with P records per part sits in part (r - 1) / P at the 1-based
// position (r - P * part) * RecordLength.

#include "core/FixedClock.h"
#include "store/RecordFile.h"
#include "store/RecordStore.h"
#include "support/RecordingStoreHost.h"
#include "support/RecordFileFormat.h"
#include "support/StoreDesigns.h"

#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ff::testsupport {

// Formats come from the default locale: pin it so that results are stable.
inline const bool kLocalePinned = [] {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return true;
}();

// Small parts for the length of one test.
struct SmallParts {
    explicit SmallParts(int64_t perPart) { RecordFile::SetRecordsPerPartForTesting(perPart); }
    ~SmallParts() { RecordFile::SetRecordsPerPartForTesting(0); }
};

// The moment every StoreUser's clock shows: 17 May 2024, 10:30, day number 45429.4375.
inline QDateTime storeTestMoment() { return QDateTime(QDate(2024, 5, 17), QTime(10, 30)); }

struct StoreUser {
    Design design;
    Page page;
    RecordingStoreHost host;
    FixedClock clock{storeTestMoment()};
    RecordStore store;
    explicit StoreUser(Design d) : design(std::move(d)), page(design), store(design, page, nullptr, &host)
    {
        store.setClock(clock);
    }
    QString text(int field = 1) const { return page.FieldText[field]; }
};

// Writes `count` records of the small design: field 1 "r<n>", field 2 "p<part>", field 3 n.
inline void writeSmallSet(const QString &dataFile, int count, int perPart)
{
    const int length = 17;
    for (int r = 1; r <= count; ++r) {
        const int part = (r - 1) / perPart;
        const qint64 position = qint64(r - perPart * part) * length;
        QFile f(partFileName(dataFile, part));
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        QByteArray rec(length, ' ');
        const QByteArray a = QStringLiteral("r%1").arg(r).toLatin1(), b = QStringLiteral("p%1").arg(part).toLatin1();
        rec.replace(0, a.size(), a);
        rec.replace(6, b.size(), b);
        for (int k = 0; k < 4; ++k)
            rec[12 + k] = char((r >> (8 * k)) & 0xFF);
        f.seek(position - 1);
        f.write(rec);
    }
}

} // namespace ff::testsupport
