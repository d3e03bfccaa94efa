// Record file sets that are damaged: cut short, with a part missing, with a garbage or foreign
// header, written for another version of the design, a folder in the data file's place, a file the
// user may not read or may not write. Each opens without a crash, says what is wrong where the user
// cannot see it from the records, and writes nothing the user did not ask for: the files' bytes are
// compared before and after.

#include "entry/EngineFormulaHooks.h"
#include "store/Database.h"
#include "store/RecordCodec.h"
#include "store/RecordLayout.h"
#include "support/AsNobody.h"
#include "support/StoreFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <limits>

#include <unistd.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr int kLength = 17; // the small design's record length

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// Record r of the small design as another copy of the program writes it: "r<r>" in field 1,
// "p<part>" in field 2, r as a whole number in field 3.
QByteArray smallRecord(int r, int part = 0, int length = kLength)
{
    QByteArray rec(length, ' ');
    const QByteArray a = "r" + QByteArray::number(r), b = "p" + QByteArray::number(part);
    rec.replace(0, a.size(), a);
    rec.replace(6, b.size(), b);
    for (int k = 0; k < 4; ++k)
        rec[12 + k] = char((r >> (8 * k)) & 0xFF);
    return rec;
}

// A first file of `count` records with a header of `length` - 1 bytes: date, title, NextPictureNumber.
QByteArray smallFile(int count, int length = kLength)
{
    QByteArray file(length - 1, ' ');
    file.replace(0, 8, QByteArray(8, '\0'));
    file.replace(9, 4, QByteArray(4, '\0'));
    for (int r = 1; r <= count; ++r)
        file += smallRecord(r, 0, length);
    return file;
}

// What field 1 of record r shows by the format alone: the six bytes of its slot (the blank record
// past the end of the file), trailing spaces removed.
QString fieldOne(const QByteArray &file, int r)
{
    QByteArray slice = file.mid(qsizetype(r) * kLength - 1, 6);
    slice.resize(6, ' ');
    while (slice.endsWith(' '))
        slice.chop(1);
    return QString::fromLatin1(slice);
}

struct Session {
    RecordingStoreHost host;
    Database db;
    Session(const QString &folder, const QString &data, Design design = smallDesign())
        : db(std::move(design), ParseCommandLine(QDir(folder).filePath(QStringLiteral("small")), {}), &host)
    {
        db.start();
        db.DataFileName = data;
    }
    RecordStore &store() { return db.store(); }
    // Field 1 of every record, reached as the user reaches them: last, first, then one on at a time.
    QStringList browse()
    {
        QStringList shown;
        std::ignore = store().NavigateRecord(NavigationButton::Last);
        std::ignore = store().NavigateRecord(NavigationButton::First);
        for (int r = 1; r <= store().RecordCount(); ++r) {
            shown << db.page().FieldText[1];
            std::ignore = store().NavigateRecord(NavigationButton::OneOn);
        }
        return shown;
    }
};

// Runs `check` as the user nobody, so that file modes hold. The child's complaints come back as
// text; empty when all held.
QString asNobody(const std::function<QString()> &check)
{
    const std::optional<QByteArray> said = testsupport::runAsNobody([&] { return check().toUtf8(); });
    return said ? QString::fromUtf8(*said) : QStringLiteral("the child could not become nobody or ended badly");
}

class DamagedStore : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        data = dir.filePath(QStringLiteral("small.dat"));
    }
    QString path(const char *name) const { return dir.filePath(QLatin1String(name)); }
    QTemporaryDir dir;
    QString data;
};

} // namespace

// Damage that leaves the records readable. Opening, browsing every record and closing write
// nothing; the count and what each record shows follow from the format; a message says what is
// wrong where the records cannot show it.
TEST_F(DamagedStore, ReadingADamagedFileWritesNothing)
{
    struct Case {
        const char *name;
        QByteArray file;
        int count;
        const char *message; // a part of the one message shown, or null for none
    };
    QByteArray garbage = smallFile(2);
    for (int k = 0; k < kLength - 1; ++k)
        garbage[k] = char(0xF7 - 13 * k);
    QByteArray foreignLength = smallFile(2);
    foreignLength[15] = char(kLength + 5); // the stored record length is not read
    const Case cases[] = {
        {"cut inside record 4", smallFile(4).left(4 * kLength - 1 + 8), 4, "ends inside a record"},
        {"cut inside field 1 of record 2", smallFile(2).left(2 * kLength - 1 + 1), 2, "ends inside a record"},
        {"garbage header", garbage, 2, nullptr},
        {"header with another record length", foreignLength, 2, nullptr},
        // Three records of 20 bytes: 79 bytes read as 4 records of 17, each shifted 3 bytes more.
        {"records of an older design", smallFile(3, 20), 4, "ends inside a record"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        writeAll(data, c.file);
        Session s(dir.path(), data);
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
        EXPECT_FALSE(s.store().ReadOnlyMode());
        EXPECT_EQ(s.store().RecordCount(), c.count);
        QStringList shown;
        for (int r = 1; r <= c.count; ++r)
            shown << fieldOne(c.file, r);
        EXPECT_EQ(s.browse(), shown);
        ASSERT_TRUE(s.db.shutdown());
        EXPECT_EQ(readAll(data), c.file) << "nothing is written when nothing is changed";
        if (c.message) {
            ASSERT_EQ(s.host.texts().size(), 1) << s.host.texts().join(QLatin1Char('\n')).toStdString();
            EXPECT_TRUE(s.host.texts()[0].contains(QLatin1String(c.message))) << s.host.texts()[0].toStdString();
            EXPECT_TRUE(s.host.texts()[0].contains(data));
        } else {
            EXPECT_TRUE(s.host.texts().isEmpty()) << s.host.texts().join(QLatin1Char('\n')).toStdString();
        }
    }
}

// A record cut short keeps what it shows when the user adds a record after it or saves it: the
// bytes that are there stay, and the rest is the blank record, never a gap of zero bytes.
TEST_F(DamagedStore, ACutRecordKeepsWhatItShowsWhenRecordsAreWritten)
{
    for (const bool scramble : {false, true}) {
        SCOPED_TRACE(scramble ? "scrambled" : "plain");
        QByteArray whole = smallFile(3);
        if (scramble) // the store's byte substitution, records only: the header is never scrambled
            for (qsizetype k = kLength - 1; k < whole.size(); ++k)
                whole[k] = char((uint8_t(whole[k]) * 167 + 13) & 0xFF);
        const QByteArray cut = whole.left(3 * kLength - 1 + 5); // record 3: five bytes of field 1
        writeAll(data, cut);
        Session s(dir.path(), data, smallDesign(scramble));
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
        ASSERT_TRUE(s.store().JumpToRecord(3));
        const QStringList before = {s.db.page().FieldText[1], s.db.page().FieldText[2], s.db.page().FieldText[3]};
        EXPECT_EQ(before[0], QStringLiteral("r3"));
        ASSERT_TRUE(s.store().NewRecord());
        EXPECT_EQ(s.store().CurrentRecord(), 4);
        ASSERT_TRUE(s.store().SaveIfDirty());
        const QByteArray after = readAll(data);
        EXPECT_EQ(after.size(), 5 * kLength - 1);
        EXPECT_EQ(after.left(cut.size()), cut) << "the bytes that were there stay";
        EXPECT_EQ(after.mid(cut.size(), 4 * kLength - 1 - cut.size()),
                  s.store().codec().blankRecord().mid(5)) << "the cut record is completed with the blank record";
        ASSERT_TRUE(s.store().JumpToRecord(3));
        EXPECT_EQ((QStringList{s.db.page().FieldText[1], s.db.page().FieldText[2], s.db.page().FieldText[3]}), before);
        ASSERT_TRUE(s.db.shutdown());
        QFile::remove(data);
    }
}

// A first file that ends before its header does holds no record. The opening adds record 1 as it
// does for an empty file; the bytes that were there stay, except that a file under 9 bytes counts
// as new and gets the date and the record length. Opened to read only, nothing is written at all.
TEST_F(DamagedStore, AFileCutInsideItsHeaderGetsItsFirstRecord)
{
    struct Case {
        const char *name;
        QByteArray file;
        bool kept; // the bytes that were there are still there after opening for writing
        bool told; // a message says the file ends inside its header
    };
    const Case cases[] = {
        {"empty", QByteArray(), true, false},
        {"five garbage bytes", QByteArray("\xff\x01\x02\x03\x04", 5), false, false},
        {"cut after NextPictureNumber", smallFile(0).left(13), true, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        writeAll(data, c.file);
        {
            Session reader(dir.path(), data);
            reader.store().setViewOnly(true);
            EXPECT_TRUE(reader.db.OpenDatabase(OpenMode::Open));
            EXPECT_EQ(reader.db.page().FieldText[1], QString());
            EXPECT_TRUE(reader.db.shutdown());
            EXPECT_EQ(readAll(data), c.file) << "a reader writes nothing";
        }
        Session s(dir.path(), data);
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
        EXPECT_EQ(s.store().RecordCount(), 1);
        EXPECT_EQ(s.host.texts().size(), c.told ? 1 : 0) << s.host.texts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(s.host.texts().value(0).contains(QLatin1String("ends inside its header")), c.told);
        s.db.page().FieldText[1] = QStringLiteral("typed");
        ASSERT_TRUE(s.store().LockRecord());
        ASSERT_TRUE(s.db.shutdown());
        const QByteArray after = readAll(data);
        ASSERT_EQ(after.size(), 2 * kLength - 1);
        EXPECT_EQ(after.mid(kLength - 1, 6), QByteArray("typed "));
        if (c.kept) {
            EXPECT_EQ(after.left(c.file.size()), c.file);
        }
        if (c.file.size() < 9) { // a new file: the record length at position 16, cut at record 1
            EXPECT_EQ(uint8_t(after[15]), kLength);
        }
    }
}

// A part missing in the middle: the set is counted up to the gap, as the parts are probed, and the
// user is told. The parts after the gap are never touched, and new records go before it.
TEST_F(DamagedStore, AMissingPartIsToldAndThePartsAfterItAreLeftAlone)
{
    SmallParts parts(4);
    writeAll(data, smallFile(2));
    QByteArray second(kLength - 1, ' ');
    second += smallRecord(9, 2) + smallRecord(10, 2);
    writeAll(path("small0002"), second);

    Session s(dir.path(), data);
    ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
    EXPECT_EQ(s.store().RecordCount(), 2);
    ASSERT_EQ(s.host.texts().size(), 1);
    EXPECT_EQ(s.host.texts()[0], QStringLiteral("The record file %1 is missing: the records of small0002 and the parts "
                                                "after it are not shown.")
                                     .arg(path("small0001")));
    EXPECT_EQ(s.browse(), (QStringList{QStringLiteral("r1"), QStringLiteral("r2")}));
    ASSERT_TRUE(s.store().NewRecord());
    EXPECT_EQ(s.store().CurrentRecord(), 3);
    ASSERT_TRUE(s.db.shutdown());
    EXPECT_EQ(readAll(data).size(), 4 * kLength - 1);
    EXPECT_EQ(readAll(path("small0002")), second);
    EXPECT_FALSE(QFile::exists(path("small0001")));
}

// A folder where the data file should be, opened to write or to read only: the opening shows the
// file message of the design and goes on with nothing; every later step fails in the open, and the
// folder stays empty.
TEST_F(DamagedStore, AFolderInPlaceOfTheDataFile)
{
    ASSERT_TRUE(QDir().mkdir(data));
    for (const bool viewOnly : {false, true}) {
        SCOPED_TRACE(viewOnly ? "read only" : "read and write");
        Session s(dir.path(), data, fullDesign());
        s.store().setViewOnly(viewOnly);
        EXPECT_FALSE(s.db.OpenDatabase(OpenMode::Open));
        EXPECT_EQ(s.host.texts(), QStringList{QStringLiteral("File %1 not found").arg(data)});
        EXPECT_FALSE(s.store().NewRecord());
        std::ignore = s.store().NavigateRecord(NavigationButton::Last);
        s.db.page().FieldText[1] = QStringLiteral("typed");
        std::ignore = s.store().LockRecord();
        EXPECT_EQ(s.store().PackRecord().ok(), viewOnly) << "a reader writes nothing, and so fails in nothing";
        EXPECT_EQ(s.db.shutdown().ok(), viewOnly) << "the typed record cannot be saved, so it stays on the page";
        EXPECT_TRUE(QFileInfo(data).isDir());
        EXPECT_TRUE(QDir(data).isEmpty());
    }
}

// The user may not read the data file, or may read but not write it. Root reads any file, so these
// run as the user nobody in a child process.
TEST_F(DamagedStore, AFileTheUserMayNotReadOrNotWrite)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to act as another user; as an ordinary user, run it as root";
    ASSERT_TRUE(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                      QFile::ReadOther | QFile::ExeOther));
    const QByteArray file = smallFile(3);
    struct Case {
        const char *name;
        QFile::Permissions mode;
        bool readable;
    };
    const Case cases[] = {
        {"no read right", QFile::WriteOwner, false},
        {"read right only", QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        writeAll(data, file);
        ASSERT_TRUE(QFile::setPermissions(data, c.mode));
        const QString complaint = asNobody([&]() -> QString {
            Design design = smallDesign();
            design.MessageText[1] = QStringLiteral("File * not found");
            Session s(dir.path(), data, design);
            const Status opened = s.db.OpenDatabase(OpenMode::Open);
            if (c.readable) {
                if (!opened || !s.store().ReadOnlyMode() || !s.db.page().FieldLocked[1])
                    return QStringLiteral("a readable file opens read-only, its elements locked");
                if (s.browse() != QStringList{QStringLiteral("r1"), QStringLiteral("r2"), QStringLiteral("r3")})
                    return QStringLiteral("the records read as stored");
                if (!s.host.texts().isEmpty())
                    return QStringLiteral("no message: ") + s.host.texts().join(QLatin1Char('|'));
            } else {
                if (opened || s.host.texts() != QStringList{QStringLiteral("File %1 not found").arg(data)})
                    return QStringLiteral("the file message: ") + s.host.texts().join(QLatin1Char('|'));
            }
            s.db.page().FieldText[1] = QStringLiteral("typed");
            std::ignore = s.store().LockRecord();
            std::ignore = s.store().NewRecord();
            std::ignore = s.db.shutdown();
            return QString();
        });
        EXPECT_TRUE(complaint.isEmpty()) << complaint.toStdString();
        ASSERT_TRUE(QFile::setPermissions(data, QFile::ReadOwner | QFile::WriteOwner));
        EXPECT_EQ(readAll(data), file);
    }
}

// Bytes in a float slot that are no number (NaN, the infinities) come only from damage: the field
// shows as 0 would, and saving the record writes 0. Showing and saving again changes nothing more.
TEST(DamagedRecord, NoNumberInAFloatSlotShowsAsZero)
{
    const Design design = fullDesign(); // field 2 is a float at position 11; zeros show empty
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaHooks hooks;
    const RecordCodec codec(design, layout, hooks, QLatin1Char('.'));
    const uint64_t patterns[] = {0x7FF8000000000000u, 0xFFF8000000000001u, 0x7FF0000000000000u, 0xFFF0000000000000u};
    for (const uint64_t bits : patterns) {
        SCOPED_TRACE(bits);
        Page written(design);
        written.FieldText[1] = QStringLiteral("kept");
        written.FieldText[3] = QStringLiteral("12.5");
        const Result<QByteArray> base = codec.pack(written);
        ASSERT_TRUE(base);
        QByteArray stored = *base;
        for (int k = 0; k < 8; ++k)
            stored[10 + k] = char((bits >> (8 * k)) & 0xFF);
        Page page(design);
        codec.unpack(stored, page, 2, false);
        EXPECT_EQ(page.FieldText[2], QString());
        const Result<QByteArray> packed = codec.pack(page);
        ASSERT_TRUE(packed);
        EXPECT_EQ(packed->mid(10, 8), QByteArray(8, '\0'));
        EXPECT_EQ(packed->left(10), stored.left(10)) << "the rest of the record is kept";
        EXPECT_EQ(packed->mid(18), stored.mid(18));
    }
}

// A flow label of blanks never comes from a save, which drops it: read from another writer's or a
// damaged record it is passed over, and the labels and images after it are read as stored.
TEST(DamagedRecord, AFlowLabelOfBlanksIsPassedOver)
{
    const Design design = fullDesign(true); // the flow area at position 155
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaHooks hooks;
    const RecordCodec codec(design, layout, hooks, QLatin1Char('.'));
    // The area as the format lays it out: count, then page, style, size, alignment, length, text,
    // colour, left, top; then the image count and one image of page, box, number and link.
    const auto int32 = [](int32_t v) {
        QByteArray b(4, '\0');
        for (int k = 0; k < 4; ++k)
            b[k] = char((uint32_t(v) >> (8 * k)) & 0xFF);
        return b;
    };
    const auto label = [&](const QByteArray &text) {
        return QByteArray("\x01\x0b\x0c\x00", 4) + int32(int32_t(text.size())) + text + int32(255) + int32(10) + int32(20);
    };
    const QByteArray area = int32(3) + label(" \t ") + label("kept") + label("") + int32(1) + QByteArray(1, '\x02') +
                            int32(1) + int32(2) + int32(3) + int32(4) + int32(7) + int32(9);
    QByteArray stored = codec.blankRecord();
    stored.replace(154, area.size(), area);
    Page page(design);
    codec.unpack(stored, page, 2, false);
    ASSERT_EQ(page.FlowLabels.size(), 1);
    EXPECT_EQ(page.FlowLabels[0].text, QStringLiteral("kept"));
    EXPECT_EQ(page.FlowLabels[0].style, 11);
    ASSERT_EQ(page.FlowImages.size(), 1);
    EXPECT_EQ(page.FlowImages[0].FlowImageId, 7);
    EXPECT_EQ(page.FlowImages[0].FlowImageLink, 9);
}

// The largest floats show with 15 digits, rounded past the range of a double. Saving such a record
// keeps the largest double of its sign, so that it shows as before, never an infinity.
TEST(DamagedRecord, TheLargestFloatsSaveAsTheyShow)
{
    const Design design = fullDesign();
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaContext context;
    context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
    EngineFormulaHooks hooks(context);
    const RecordCodec codec(design, layout, hooks, QLatin1Char('.'));
    const double max = std::numeric_limits<double>::max();
    for (const double value : {max, -max, 1.7976931348623e308}) {
        SCOPED_TRACE(value);
        Page page(design);
        page.FieldText[2] = hooks.FormatFieldValue(design, 2, value);
        const Result<QByteArray> packed = codec.pack(page);
        ASSERT_TRUE(packed);
        const double stored = RecordCodec::readDouble(*packed, 11);
        EXPECT_TRUE(std::isfinite(stored));
        Page shown(design);
        codec.unpack(*packed, shown, 2, false);
        EXPECT_EQ(shown.FieldText[2], page.FieldText[2]);
    }
}

// A label that fills the flow area to its very end, with no room for an image count after it, is
// read (with no images) and saved again as it was read.
TEST(DamagedRecord, ALabelThatFillsTheFlowAreaIsKept)
{
    const Design design = fullDesign(true); // the flow area from position 155 to the slot's end, 10155
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaHooks hooks;
    const RecordCodec codec(design, layout, hooks, QLatin1Char('.'));
    const int textLength = 10155 - (154 + 4) - 20;
    QByteArray stored = codec.blankRecord();
    RecordCodec::writeInt32(stored, 155, 1);
    stored.replace(158, 4, QByteArray("\x00\x01\x08\x00", 4));
    RecordCodec::writeInt32(stored, 163, textLength);
    stored.replace(166, textLength, QByteArray(textLength, 'w'));
    Page page(design);
    codec.unpack(stored, page, 2, false);
    ASSERT_EQ(page.FlowLabels.size(), 1);
    EXPECT_TRUE(page.FlowImages.isEmpty());
    const Result<QByteArray> packed = codec.pack(page);
    ASSERT_TRUE(packed);
    EXPECT_EQ(packed->mid(154), stored.mid(154));
    Page again(design);
    codec.unpack(*packed, again, 2, false);
    ASSERT_EQ(again.FlowLabels.size(), 1);
    EXPECT_EQ(again.FlowLabels[0].text.size(), textLength);
}
