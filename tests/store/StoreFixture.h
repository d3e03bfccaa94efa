#pragma once
// A record store over a design built in code, and data files laid out by hand, independently of
// RecordFile: record r of a set with P records per part sits in part (r - 1) / P at the 1-based
// position (r - P * part) * RecordLength.

#include "store/RecordStore.h"
#include "store/StoreTestSupport.h"

#include <QFile>

#include <gtest/gtest.h>

namespace ff::testing {

struct StoreUser {
    Design design;
    Page page;
    RecordingHost host;
    RecordStore store;
    explicit StoreUser(Design d) : design(std::move(d)), page(design), store(design, page, nullptr, &host) {}
    QString text(int field = 1) const { return page.FieldText[field]; }
};

inline QString partFileName(const QString &dataFile, int part)
{
    if (part == 0)
        return dataFile;
    return dataFile.left(dataFile.lastIndexOf(QLatin1Char('.'))) + QStringLiteral("%1").arg(part, 4, 10, QLatin1Char('0'));
}

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

} // namespace ff::testing
