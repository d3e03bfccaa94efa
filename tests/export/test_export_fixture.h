#pragma once
// A shop design built in code and a record file filled through the record codec, for the export
// tests. Columns in tab order: Name, 2_Name (a second "Name"), Price (money), Qty (whole), Day
// (short date), Ratio (float), Secret (on page 1), Paid (check 0), Kind and 3_Kind (two combos
// at one position), Remark (note); then the record picture Photo.

#include "core/FixedClock.h"
#include "export/RecordExport.h"
#include "formula/FormulaContext.h"
#include "store/RecordStore.h"
#include "support/StoreDesigns.h"
#include "support/StoreFixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ff::testsupport {

inline Design shopDesign(int fontCharset = 0, bool scramble = false)
{
    Design d;
    d.MainCap = QStringLiteral("Shop");
    d.DataExtension = QStringLiteral("dat");
    d.TextExtension = QStringLiteral("txt");
    d.FieldSeparator = QStringLiteral(";");
    d.FontCharset = fontCharset;
    d.ScrambleRecords = scramble ? 1 : 0;
    const auto field = [](uint8_t type, int length, const char *tag, int tab, int page = 0) {
        FieldElement f = makeField(type, length, int16_t(page));
        f.Tag = QLatin1String(tag);
        f.FieldTabOrder = int16_t(tab);
        f.Width = 1500;
        f.Alignment = type >= 1 && type <= 5 ? 1 : 0;
        return f;
    };
    d.Fields = {FieldElement(),
                field(0, 24, "Name", 1),
                field(0, 12, "Name", 2),
                field(2, 0, "Price", 3),
                field(5, 0, "Qty", 4),
                field(7, 0, "Day", 5),
                field(1, 0, "Ratio", 6),
                field(0, 10, "Secret", 7, 1)};
    d.FieldCount = 7;
    d.Combos.resize(3);
    d.Combos[1].Tag = QStringLiteral("Kind");
    d.Combos[1].MaxLength = 10;
    d.Combos[1].ComboTabOrder = 9;
    d.Combos[2].Tag = QStringLiteral("Kind");
    d.Combos[2].MaxLength = 10;
    d.Combos[2].ComboTabOrder = 9;
    d.ComboCount = 2;
    d.Checks.resize(1);
    d.Checks[0].Tag = QStringLiteral("Paid");
    d.Checks[0].CheckTabOrder = 9;
    d.CheckCount = 0;
    d.Notes.resize(2);
    d.Notes[1].Tag = QStringLiteral("Remark");
    d.Notes[1].MaxLength = 60;
    d.Notes[1].NoteTabOrder = 10;
    d.NoteCount = 1;
    d.Pictures.resize(1);
    d.Pictures[0].PictureName = QStringLiteral("Photo");
    d.Pictures[0].Stretch = true;
    d.PictureCount = 0;
    d.HasRecordPictures = true;
    addLabels(d, 6);
    d.Titles[4].TitlePage = 5; // no stamp
    return d;
}

struct ShopRecord {
    QString name, second, price, qty, day, ratio, secret;
    int paid = 0;
    QString kind, kind2, remark, photo;
};

inline ShopRecord named(const QString &name)
{
    ShopRecord r;
    r.name = name;
    return r;
}

// An open store over a file of the shop design, with the en_US context of the tests.
struct ShopStore {
    QTemporaryDir dir;
    Design design;
    Page page;
    FixedClock clock{storeTestMoment()};
    RecordStore store;
    FormulaContext context;
    QString data;

    explicit ShopStore(Design d) : design(std::move(d)), page(design), store(design, page)
    {
        store.setClock(clock);
        store.setDecimalSeparator(QLatin1Char('.'));
        context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
        context.clock = &clock;
        data = dir.filePath(QStringLiteral("Shop.dat"));
        store.setRecordPictureFolder(dir.filePath(QStringLiteral("ShopPics/")));
        QDir().mkpath(dir.filePath(QStringLiteral("ShopPics")));
    }

    // Writes the records through the codec (record 1 onwards) and opens the file set.
    void write(const std::vector<ShopRecord> &records)
    {
        RecordFile file;
        file.setFileSet(data, store.layout().RecordLength, false);
        ASSERT_TRUE(file.OpenRecordPart(0));
        ASSERT_TRUE(file.writeHeaderBytes(1, QByteArray(8, '\0')));
        for (size_t k = 0; k < records.size(); ++k) {
            const ShopRecord &r = records[k];
            page.FieldText[1] = r.name;
            page.FieldText[2] = r.second;
            page.FieldText[3] = r.price;
            page.FieldText[4] = r.qty;
            page.FieldDate[5] = r.day.isEmpty() ? 0 : QDate::fromString(r.day, Qt::ISODate).toJulianDay() - QDate(1899, 12, 30).toJulianDay();
            page.FieldText[6] = r.ratio;
            page.FieldText[7] = r.secret;
            page.CheckValue[0] = r.paid;
            page.ComboText[1] = r.kind;
            page.ComboText[2] = r.kind2;
            page.NoteText[1] = r.remark;
            page.PictureRecordName[0] = r.photo;
            const Result<QByteArray> packed = store.codec().pack(page);
            ASSERT_TRUE(packed) << packed.error().text.toStdString();
            // A record that is an exact multiple of the part size lies at the end of the part before.
            const RecordPosition at = file.readPosition(int64_t(k) + 1);
            QFile part(file.partName(at.part));
            ASSERT_TRUE(part.open(QIODevice::ReadWrite));
            part.seek(at.position - 1);
            part.write(*packed);
        }
        file.close();
        ASSERT_TRUE(store.openFileSet(data, OpenMode::Open, QString(), true));
    }

    Result<ExportOutcome> run(ExportRequest request, Progress *progress = nullptr)
    {
        if (request.folder.isEmpty())
            request.folder = dir.path();
        RecordExport exporter(store, context);
        return exporter.run(request, progress);
    }
    QByteArray file(const QString &name) const
    {
        QFile f(QDir(dir.path()).filePath(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

// Asks to stop at the n-th question, which the exporters ask at every tenth index.
struct StopAt : Progress {
    int stopAt;
    int calls = 0;
    std::vector<int> percents;
    explicit StopAt(int n) : stopAt(n) {}
    void setPercent(int p) override { percents.push_back(p); }
    bool cancelled() override { return ++calls == stopAt; }
};

inline ExportRequest request(ExportChoice choice, const ExportRange &range, const QString &name = QStringLiteral("out"))
{
    ExportRequest r;
    r.choice = choice;
    r.name = name;
    r.range = range;
    return r;
}

} // namespace ff::testsupport
