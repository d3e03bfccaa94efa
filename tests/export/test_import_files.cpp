// The import of XML record files and of record files of the program's own format, and what a bad
// file of either kind leaves: nothing stored before it is lost.

#include "core/FixedClock.h"
#include "export/ImportXmlFiles.h"
#include "export/RecordImport.h"
#include "export/XmlRecord.h"
#include "store/RecordLayout.h"
#include "store/RecordStore.h"
#include "support/RecordFileFormat.h"
#include "support/RecordingStoreHost.h"
#include "support/StoreFixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

// name text 8, qty whole, a note, flow layer on or off.
Design smallTagged(bool flow = false, int nameLength = 8)
{
    Design d;
    d.AppTitle = QStringLiteral("Small");
    d.MainCap = QStringLiteral("Small");
    d.DataExtension = QStringLiteral("dat");
    d.FlowPageEnabled = flow ? 1 : 0;
    d.Fields.resize(3);
    d.Fields[1] = makeField(0, nameLength);
    d.Fields[1].Tag = QStringLiteral("name");
    d.Fields[2] = makeField(5);
    d.Fields[2].Tag = QStringLiteral("qty");
    d.FieldCount = 2;
    d.Combos.resize(1);
    d.Notes.resize(2);
    d.Notes[1].MaxLength = 20;
    d.Notes[1].Tag = QStringLiteral("note");
    d.NoteCount = 1;
    addLabels(d, 6);
    return d;
}

struct Store {
    Design design;
    Page page;
    RecordingStoreHost host;
    FixedClock clock{QDateTime(QDate(2024, 5, 17), QTime(10, 30))};
    RecordStore store;
    QString data;
    Store(Design d, const QString &file) : design(std::move(d)), page(design), store(design, page, nullptr, &host), data(file)
    {
        store.setClock(clock);
        EXPECT_TRUE(store.openFileSet(data, OpenMode::Create, design.MainCap));
        EXPECT_TRUE(store.showFirstRecord(OpenMode::Create, true));
    }
    void add(const QString &name, int qty, bool intoFirst = false)
    {
        if (!intoFirst) {
            ASSERT_TRUE(store.NewRecord());
        }
        page.FieldText[1] = name;
        page.FieldText[2] = QString::number(qty);
        ASSERT_TRUE(store.LockRecord());
        ASSERT_TRUE(store.PackRecord());
    }
    QString name(int record)
    {
        EXPECT_TRUE(store.JumpToRecord(record));
        return page.FieldText[1];
    }
    ImportSetup setup(bool empty = false)
    {
        ImportSetup s;
        s.store = &store;
        s.messages = &host;
        s.storeWasEmpty = empty;
        return s;
    }
};

QByteArray bytesOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString write(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile f(dir.filePath(name));
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
    return f.fileName();
}

TEST(XmlFileImport, EachFileIsANewRecord)
{
    QTemporaryDir dir;
    Store s(smallTagged(true), dir.filePath(QStringLiteral("Small.dat")));
    const QString one = write(dir, QStringLiteral("one.xml"),
                              "<?xml version=\"1.0\" ?>\r\n<Small_Record_1>\r\n  <name>Ann</name>\r\n  <qty>4</qty>\r\n"
                              "<FLOWPage>\r\n  Label,hello,0,8,0,0,0,10,20,0,0\r\n</FLOWPage>\r\n</Small_Record_1>\r\n");
    // UTF-8 text, and a file cut off in its middle: what it holds is read.
    const QString two = write(dir, QStringLiteral("two.xml"), QStringLiteral("  <name>Bö</name>\r\n  <note>cut").toUtf8());
    const QString none = write(dir, QStringLiteral("none.xml"), "<other>1</other>");
    const QString binary = write(dir, QStringLiteral("bin.xml"), QByteArray("\x00\xff<na\x00me>", 10));
    const Result<ImportReport> report = ImportXmlFiles::run({one, none, two, binary, dir.filePath(QStringLiteral("gone.xml"))},
                                                            s.setup(true));
    ASSERT_TRUE(report) << report.error().text.toStdString();
    EXPECT_EQ(report->added, 2);
    EXPECT_EQ(report->firstRecord, 1);
    EXPECT_EQ(report->warnings.size(), 3); // names nothing, names nothing, cannot be opened
    EXPECT_EQ(s.store.RecordCount(), 2);
    EXPECT_EQ(s.name(1), QStringLiteral("Ann"));
    EXPECT_EQ(s.page.FieldText[2], QStringLiteral("4"));
    ASSERT_EQ(s.page.FlowLabels.size(), 1);
    EXPECT_EQ(s.page.FlowLabels[0].text, QStringLiteral("hello"));
    EXPECT_EQ(s.name(2), QStringLiteral("Bö"));
    EXPECT_EQ(s.page.NoteText[1], QString());
}

TEST(XmlFileImport, ACopiedRecordComesBackWhole)
{
    QTemporaryDir dir;
    Store s(smallTagged(true), dir.filePath(QStringLiteral("Small.dat")));
    s.add(QStringLiteral("Zoë <&>"), 77, true);
    s.page.NoteText[1] = QStringLiteral("a\r\nb");
    FlowImage im;
    im.FlowImageId = 5;
    im.width = 9;
    s.page.FlowImages.push_back(im);
    ASSERT_TRUE(s.store.LockRecord());
    ASSERT_TRUE(s.store.PackRecord());
    const QString file = write(dir, QStringLiteral("copy.xml"), XmlRecord::CopyAll(s.page, 1).toUtf8());
    ASSERT_TRUE(ImportXmlFiles::run({file}, s.setup()));
    EXPECT_EQ(s.store.RecordCount(), 2);
    EXPECT_EQ(s.name(2), QStringLiteral("Zoë <&>"));
    EXPECT_EQ(s.page.FieldText[2], QStringLiteral("77"));
    EXPECT_EQ(s.page.NoteText[1], QStringLiteral("a\r\nb"));
    ASSERT_EQ(s.page.FlowImages.size(), 1);
    EXPECT_EQ(s.page.FlowImages[0].FlowImageId, 5);
    EXPECT_EQ(s.page.FlowImages[0].width, 9);
}

TEST(RecordFileImport, RecordsOfTheSameDesignAreAppendedAsTheyAre)
{
    QTemporaryDir dir;
    RecordFile::SetRecordsPerPartForTesting(3);
    {
        // The source is laid out by hand from the format: record r of part (r - 1) / 3.
        const Design design = smallTagged();
        const RecordLayout layout = ComputeRecordLayout(design);
        FormulaHooks hooks;
        const RecordCodec codec(design, layout, hooks, QLatin1Char('.'));
        Page page(design);
        const QString from = dir.filePath(QStringLiteral("From.dat"));
        for (int k = 1; k <= 8; ++k) {
            page.FieldText[1] = QStringLiteral("s%1").arg(k);
            page.FieldText[2] = QString::number(k);
            const Result<QByteArray> bytes = codec.pack(page);
            ASSERT_TRUE(bytes);
            const RecordPlace place = recordPlace(from, k, layout.RecordLength, 3);
            QFile f(place.file);
            ASSERT_TRUE(f.open(QIODevice::ReadWrite));
            ASSERT_TRUE(f.seek(place.offset));
            f.write(*bytes);
        }
        ASSERT_TRUE(QFile::exists(partFileName(from, 2))); // the source runs over three parts

        Store target(smallTagged(), dir.filePath(QStringLiteral("To.dat")));
        target.add(QStringLiteral("t1"), 1, true);
        const Result<ImportReport> report = RecordImport::run(from, target.setup());
        ASSERT_TRUE(report) << report.error().text.toStdString();
        EXPECT_EQ(report->added, 8);
        EXPECT_EQ(report->firstRecord, 2);
        EXPECT_EQ(target.store.RecordCount(), 9);
        EXPECT_EQ(target.name(1), QStringLiteral("t1"));
        for (int k = 1; k <= 8; ++k) {
            EXPECT_EQ(target.name(k + 1), QStringLiteral("s%1").arg(k));
            EXPECT_EQ(target.page.FieldText[2], QString::number(k));
        }
        // The store's own file set imported into itself doubles it, once.
        ASSERT_TRUE(RecordImport::run(target.data, target.setup()));
        EXPECT_EQ(target.store.RecordCount(), 18);
        EXPECT_EQ(target.name(18), QStringLiteral("s8"));
    }
    RecordFile::SetRecordsPerPartForTesting(0);
}

TEST(RecordFileImport, AnotherRecordLengthIsRefusedAndNothingWritten)
{
    QTemporaryDir dir;
    {
        Store other(smallTagged(false, 9), dir.filePath(QStringLiteral("Other.dat")));
        other.add(QStringLiteral("x"), 1, true);
        other.add(QStringLiteral("y"), 2);
    }
    Store s(smallTagged(), dir.filePath(QStringLiteral("Small.dat")));
    s.add(QStringLiteral("kept"), 1, true);
    const QByteArray before = bytesOf(s.data);
    const Result<ImportReport> report = RecordImport::run(dir.filePath(QStringLiteral("Other.dat")), s.setup());
    ASSERT_FALSE(report);
    EXPECT_TRUE(report.error().text.contains(QLatin1String("nothing was imported")));
    EXPECT_EQ(bytesOf(s.data), before);

    // A file whose header gives the length: the same check by the header.
    QByteArray stated(int(s.store.layout().RecordLength) * 3 - 1, ' ');
    stated[15] = char(s.store.layout().RecordLength + 1);
    stated[16] = stated[17] = stated[18] = 0;
    EXPECT_FALSE(RecordImport::run(write(dir, QStringLiteral("Stated.dat"), stated), s.setup()));
    EXPECT_FALSE(RecordImport::run(dir.filePath(QStringLiteral("Missing.dat")), s.setup()));
    EXPECT_EQ(bytesOf(s.data), before);
    EXPECT_EQ(s.name(1), QStringLiteral("kept"));
}

} // namespace
