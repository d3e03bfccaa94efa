// Records written by an independent implementation of the format (a Python script written from the
// format alone) read value for value, and records this store writes read back there.

#include "support/RecordWriterLayout.h"
#include "support/StoreFixture.h"

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

QByteArray runScript(const QString &verb, const QJsonObject &setup, const QString &data)
{
    const ProgramRun run = runRecordWriter(verb, setup, data);
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    return run.out;
}

QJsonObject recordValues(int r)
{
    return QJsonObject{
        {"F1", QStringLiteral("Näme %1").arg(r)}, {"F2", 1.5 * r}, {"F3", 1234.56 * r}, {"F4", -0.0625 * r},
        {"F5", 40 + r}, {"F6", 45000.25 + r}, {"F7", 45100.0 + r}, {"F8", QStringLiteral("10:00:%1").arg(r, 2, 10, QLatin1Char('0'))},
        {"F9", QStringLiteral("tag%1").arg(r)}, {"F12", QStringLiteral("w%1").arg(r)}, {"F13", 0},
        {"C1", QStringLiteral("combo%1").arg(r)}, {"C2", QStringLiteral("c%1").arg(r)}, {"K0", r % 2}, {"K1", 1 - r % 2},
        {"P1", QStringLiteral("%1.jpg").arg(r)}, {"P2", QString()}, {"M1", QStringLiteral("note\r\nof %1").arg(r)},
        {"stamp", 44000 + r},
        {"labels", QJsonArray{QJsonObject{{"page", 1}, {"style", 111}, {"size", 10}, {"align", 2}, {"text", QStringLiteral("Lbl %1").arg(r)},
                                          {"color", 255}, {"left", 100 * r}, {"top", -5}}}},
        {"images", QJsonArray{QJsonObject{{"page", 0}, {"left", 1}, {"top", 2}, {"width", 30}, {"height", 40}, {"id", r}, {"link", r + 1}}}}};
}

} // namespace

TEST(IndependentWriter, ItsFilesReadValueForValue)
{
    SmallParts parts(4);
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Ind.dat"));
    const Design design = fullDesign(true, true);
    QJsonObject setup = recordWriterLayout(design, 4);
    QJsonArray records;
    for (int r = 1; r <= 9; ++r)
        records.append(recordValues(r));
    setup[QStringLiteral("records")] = records;
    runScript(QStringLiteral("write"), setup, data);
    ASSERT_TRUE(QFile::exists(partFileName(data, 2)));

    StoreUser u{Design(design)};
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Open, QString()));
    EXPECT_EQ(u.store.RecordCount(), 9);
    for (int r = 1; r <= 9; ++r) {
        ASSERT_TRUE(u.store.JumpToRecord(r));
        const Page &p = u.page;
        EXPECT_EQ(p.FieldText[1], QStringLiteral("Näme %1").arg(r));
        EXPECT_EQ(p.FieldText[2], QLocale().toString(1.5 * r, 'g', 15).remove(QLatin1Char(',')));
        EXPECT_EQ(p.FieldText[3], QLocale().toString(1234.56 * r, 'f', 2));
        EXPECT_EQ(p.FieldText[4], QLocale().toString(-0.0625 * r, 'f', 4));
        EXPECT_EQ(p.FieldText[5], QString::number(40 + r));
        EXPECT_DOUBLE_EQ(p.FieldDate[6], 45000.25 + r);
        EXPECT_DOUBLE_EQ(p.FieldDate[7], 45100.0 + r);
        EXPECT_EQ(p.FieldText[8], QStringLiteral("10:00:%1").arg(r, 2, 10, QLatin1Char('0')));
        EXPECT_EQ(p.FieldText[9], QStringLiteral("tag%1").arg(r));
        EXPECT_EQ(p.FieldText[12], QStringLiteral("w%1").arg(r));
        EXPECT_TRUE(p.FieldText[13].isEmpty());
        EXPECT_EQ(p.ComboText[1], QStringLiteral("combo%1").arg(r));
        EXPECT_EQ(p.ComboText[2], QStringLiteral("c%1").arg(r));
        EXPECT_EQ(p.CheckValue[0], r % 2);
        EXPECT_EQ(p.CheckValue[1], 1 - r % 2);
        EXPECT_EQ(p.PictureRecordName[1], QStringLiteral("%1.jpg").arg(r));
        EXPECT_EQ(p.NoteText[1], QStringLiteral("note\r\nof %1").arg(r));
        EXPECT_DOUBLE_EQ(p.RecordStamp, 44000 + r);
        ASSERT_EQ(p.FlowLabels.size(), 1);
        EXPECT_EQ(p.FlowLabels[0].text, QStringLiteral("Lbl %1").arg(r));
        EXPECT_EQ(p.FlowLabels[0].left, 100 * r);
        EXPECT_EQ(p.FlowLabels[0].style, 111);
        ASSERT_EQ(p.FlowImages.size(), 1);
        EXPECT_EQ(p.FlowImages[0].FlowImageLink, r + 1);
    }
}

TEST(IndependentWriter, ReadsWhatThisStoreWrote)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Ours.dat"));
    const Design design = fullDesign(true, true);
    {
        StoreUser u{Design(design)};
        ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, design.MainCap));
        for (int r = 1; r <= 5; ++r) {
            ASSERT_TRUE(u.store.NewRecord());
            Page &p = u.page;
            const QJsonObject v = recordValues(r);
            p.FieldText[1] = v["F1"].toString();
            p.FieldText[2] = QString::number(v["F2"].toDouble());
            p.FieldText[3] = QString::number(v["F3"].toDouble(), 'f', 2);
            p.FieldText[4] = QString::number(v["F4"].toDouble(), 'f', 4);
            p.FieldText[5] = QString::number(v["F5"].toInt());
            p.FieldDate[6] = v["F6"].toDouble();
            p.FieldDate[7] = v["F7"].toDouble();
            p.FieldText[8] = v["F8"].toString();
            p.FieldText[9] = v["F9"].toString();
            p.FieldText[12] = v["F12"].toString();
            p.ComboText[1] = v["C1"].toString();
            p.ComboText[2] = v["C2"].toString();
            p.CheckValue[0] = v["K0"].toInt();
            p.CheckValue[1] = v["K1"].toInt();
            p.PictureRecordName[1] = v["P1"].toString();
            p.NoteText[1] = v["M1"].toString();
            p.RecordStamp = v["stamp"].toDouble();
            p.FlowLabels = {FlowLabel{1, 111, 10, 2, QStringLiteral("Lbl %1").arg(r), 255, 100 * r, -5}};
            p.FlowImages = {FlowImage{0, 1, 2, 30, 40, r, r + 1}};
            ASSERT_TRUE(u.store.SaveIfDirty());
        }
    }
    const QJsonObject back = QJsonDocument::fromJson(runScript(QStringLiteral("read"), recordWriterLayout(design, 2140000000 / 10155 - 1), data)).object();
    EXPECT_EQ(back["recordLength"].toInt(), 10155);
    ASSERT_EQ(back["count"].toInt(), 5);
    const QJsonArray records = back["records"].toArray();
    for (int r = 1; r <= 5; ++r) {
        QJsonObject expected = recordValues(r);
        QJsonObject got = records[r - 1].toObject();
        EXPECT_NEAR(got["F13"].toDouble(), 0, 1e-9);
        for (const QString &key : expected.keys()) {
            if (expected[key].isDouble())
                EXPECT_NEAR(got[key].toDouble(), expected[key].toDouble(), 1e-9) << key.toStdString() << " of " << r;
            else
                EXPECT_EQ(got[key], expected[key]) << key.toStdString() << " of " << r;
        }
    }
}

TEST(IndependentWriter, ThePictureCounterIsReadWhereItLives)
{
    // Another program (or the picture library of another user) raises the counter in the first
    // file's header, position 10, little-endian: a store opened before sees the new number.
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("Counter.dat"));
    StoreUser u{fullDesign()};
    ASSERT_TRUE(u.store.openFileSet(data, OpenMode::Create, QStringLiteral("Counter")));
    ASSERT_TRUE(u.store.NewRecord());
    ASSERT_TRUE(u.store.SaveIfDirty());
    EXPECT_EQ(u.store.NextPictureNumber(), 0);
    {
        QFile other(data);
        ASSERT_TRUE(other.open(QIODevice::ReadWrite));
        ASSERT_TRUE(other.seek(9));
        ASSERT_EQ(other.write(QByteArray::fromHex("2a010000")), 4); // 298
    }
    EXPECT_EQ(u.store.NextPictureNumber(), 298);
}
