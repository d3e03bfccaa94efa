// The delimited text import: the line rules on their own, the number reading against the formula
// library's, and whole imports into a store read back value for value. The files are written by
// the tests' own writer, not by the program's exporter.

#include "core/FixedClock.h"
#include "entry/EngineFormulaHooks.h"
#include "export/ImportLineMachine.h"
#include "export/ImportRecordMaker.h"
#include "export/TextImport.h"
#include "formula/FormulaContext.h"
#include "formula/NumberText.h"
#include "store/RecordStore.h"
#include "support/RecordFileFormat.h"
#include "support/RecordingStoreHost.h"
#include "support/StoreDesigns.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

// ---- the line rules ----

std::vector<std::vector<std::string>> rowsOf(const std::vector<std::string> &lines, const QByteArray &sep = ",",
                                             int charset = 0, bool *pending = nullptr, bool stepByStep = false)
{
    ImportLineMachine machine(sep, charset);
    if (stepByStep)
        machine.useStepByStepOnly();
    ImportRows rows;
    for (const std::string &line : lines)
        machine.feedLine(line.data(), qsizetype(line.size()), rows);
    if (pending)
        *pending = machine.pending();
    std::vector<std::vector<std::string>> out;
    for (int r = 0; r < rows.rowCount(); ++r) {
        out.emplace_back();
        for (int c = 0; c < rows.valueCount(r); ++c)
            out.back().emplace_back(rows.value(r, c));
    }
    return out;
}

struct LineCase {
    const char *what;
    std::vector<std::string> lines;
    std::vector<std::vector<std::string>> rows;
    QByteArray separator = ",";
};

TEST(ImportLines, RulesOfTheLineMachine)
{
    const LineCase cases[] = {
        {"plain values", {"a,b,c"}, {{"a", "b", "c"}}},
        {"a delimiter inside quotes stays in the value", {"\"a,b\",c"}, {{"a,b", "c"}}},
        {"a doubled quote is one quote", {"\"a\"\"b\",c"}, {{"a\"b", "c"}}},
        {"two quotes between delimiters are an empty value", {"a,\"\",b"}, {{"a", "", "b"}}},
        {"... at the start and the end of the row too", {"\"\",x,\"\""}, {{"", "x", ""}}},
        {"a tilde comes in as the delimiter", {"a~b,c"}, {{"a,b", "c"}}},
        {"a value ending in a quote merges with the next", {"\"x\"\"\",y"}, {{"x\"y"}}},
        {"a value starting with a quote merges with the one before", {"y,\"\"\"x\""}, {{"y\"x"}}},
        {"a quoted line break joins two lines into one value",
         {"\"line one", "line two\",z"},
         {{"line one\r\nline two", "z"}}},
        {"an empty line is no row", {"", "a"}, {{"a"}}},
        {"the quote mark of the source is a quote", {"a<}>b"}, {{"a\"b"}}},
        {"fewer and more values than others", {"a", "a,b,c,d"}, {{"a"}, {"a", "b", "c", "d"}}},
        {"another delimiter", {"a;\"b;c\";;\"\";d"}, {{"a", "b;c", "", "", "d"}}, ";"},
        {"a delimiter of two bytes", {"a||\"b||c\"||d~e"}, {{"a", "b||c", "d||e"}}, "||"},
        {"quotes inside a value that is not quoted go", {"ab\"c\"d,e"}, {{"abcd", "e"}}},
    };
    for (const LineCase &c : cases) {
        EXPECT_EQ(rowsOf(c.lines, c.separator), c.rows) << c.what;
        EXPECT_EQ(rowsOf(c.lines, c.separator, 0, nullptr, true), c.rows) << c.what << " (step by step)";
    }
}

TEST(ImportLines, FileEndingInsideQuotesGivesNoRow)
{
    bool pending = false;
    EXPECT_EQ(rowsOf({"a,b", "\"open,c", "still open"}, ",", 0, &pending),
              (std::vector<std::vector<std::string>>{{"a", "b"}}));
    EXPECT_TRUE(pending);
}

TEST(ImportLines, SecondBytesOfDoubleByteCharactersAreNoMarks)
{
    // In Shift-JIS 0x81 0x7E is one character whose second byte is "~", 0x81 0x7C one whose
    // second byte is "|": neither is a tilde nor a delimiter.
    EXPECT_EQ(rowsOf({"\x81\x7E,b"}, ",", 128), (std::vector<std::vector<std::string>>{{"\x81\x7E", "b"}}));
    EXPECT_EQ(rowsOf({"x\x81\x7Cy|z"}, "|", 128), (std::vector<std::vector<std::string>>{{"x\x81\x7Cy", "z"}}));
    // In a single-byte page the same bytes are two characters.
    EXPECT_EQ(rowsOf({"x\x81|z"}, "|", 0), (std::vector<std::vector<std::string>>{{"x\x81", "z"}}));
}

TEST(ImportLines, OnePassReadingAgreesWithTheStepByStepRules)
{
    // Random lines over the bytes that matter, through both readings.
    const std::string alphabet = "ab ,\"\"\"~<}>;";
    QRandomGenerator random(5);
    for (const char *separator : {",", ";"}) {
        ImportLineMachine fast(separator, 0), exact(separator, 0);
        exact.useStepByStepOnly();
        ImportRows fastRows, exactRows;
        for (int k = 0; k < 20000; ++k) {
            std::string line;
            for (int n = random.bounded(14); n > 0; --n)
                line += alphabet[size_t(random.bounded(int(alphabet.size())))];
            const bool a = fast.feedLine(line.data(), qsizetype(line.size()), fastRows);
            const bool b = exact.feedLine(line.data(), qsizetype(line.size()), exactRows);
            ASSERT_EQ(a, b) << line;
            ASSERT_EQ(fast.pending(), exact.pending()) << line;
        }
        ASSERT_EQ(fastRows.rowCount(), exactRows.rowCount());
        for (int r = 0; r < fastRows.rowCount(); ++r) {
            ASSERT_EQ(fastRows.valueCount(r), exactRows.valueCount(r)) << "row " << r;
            for (int c = 0; c < fastRows.valueCount(r); ++c)
                ASSERT_EQ(fastRows.value(r, c), exactRows.value(r, c)) << "row " << r << " value " << c;
        }
    }
}

TEST(ImportLines, HeaderLosesItsQuotes)
{
    ImportLineMachine machine(";", 0);
    const std::string head = "No.;\"Name\";Price";
    const std::vector<QByteArray> names = machine.splitHeader(head.data(), qsizetype(head.size()));
    EXPECT_EQ(names, (std::vector<QByteArray>{"No.", "Name", "Price"}));
}

// ---- numbers read as the number fields read them ----

TEST(ImportNumbers, BytesReadAsCleanNumberAndVal)
{
    const CodePage page(0);
    QStringList texts = {QStringLiteral("12"), QStringLiteral("-3.5"), QStringLiteral("1,234.50"),
                         QStringLiteral(" 7 8 "), QStringLiteral("1.2.3"), QStringLiteral("abc"),
                         QStringLiteral("2E3"), QStringLiteral("2d-2"), QStringLiteral("1'000"),
                         QStringLiteral("12-5"), QStringLiteral("+.5"), QStringLiteral("."),
                         QStringLiteral("1e"), QString(QChar(0xA0)) + QStringLiteral("5"), QStringLiteral("1,5")};
    // And random texts over the characters that matter.
    const QString alphabet = QStringLiteral("0123456789.,-+eEdD '\t\na");
    QRandomGenerator random(11);
    for (int k = 0; k < 3000; ++k) {
        QString t;
        for (int n = random.bounded(12); n > 0; --n)
            t += alphabet.at(random.bounded(int(alphabet.size())));
        texts << t;
    }
    for (const QChar separator : {QChar(u'.'), QChar(u',')}) {
        for (const QString &t : texts) {
            const double expected = Val(CleanNumberCopy(t, QString(separator)));
            const QByteArray bytes = page.encode(t);
            const double got = ImportRecordMaker::NumberFromBytes(std::string_view(bytes.constData(), size_t(bytes.size())),
                                                                  separator, page);
            EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected)))
                << t.toStdString() << " with separator " << QString(separator).toStdString();
        }
    }
}

// ---- whole imports ----

// name text 12, amount float, price money, qty whole, day short date, total money = price * qty
// (with formulas), country combo, paid check, remark note, photo record picture.
Design importDesign(bool formulas)
{
    Design d;
    d.AppTitle = QStringLiteral("Shop");
    d.MainCap = QStringLiteral("Shop");
    d.DataExtension = QStringLiteral("dat");
    d.TextExtension = QStringLiteral("txt");
    d.FieldSeparator = QStringLiteral(",");
    d.Fields.resize(7);
    d.Fields[1] = makeField(0, 12);
    d.Fields[1].Tag = QStringLiteral("Name");
    d.Fields[2] = makeField(1);
    d.Fields[2].Tag = QStringLiteral("amount");
    d.Fields[3] = makeField(2);
    d.Fields[3].Tag = QStringLiteral("price");
    d.Fields[4] = makeField(5);
    d.Fields[4].Tag = QStringLiteral("qty");
    d.Fields[5] = makeField(7);
    d.Fields[5].Tag = QStringLiteral("day");
    d.Fields[6] = makeField(2);
    d.Fields[6].Tag = QStringLiteral("total");
    if (formulas)
        d.Fields[6].FieldFormula = QStringLiteral("F3*F4");
    d.FieldCount = 6;
    d.Combos.resize(2);
    d.Combos[1].MaxLength = 10;
    d.Combos[1].Tag = QStringLiteral("country");
    d.ComboCount = 1;
    d.Checks.resize(1);
    d.Checks[0].Tag = QStringLiteral("paid");
    d.CheckCount = 0;
    d.Notes.resize(2);
    d.Notes[1].MaxLength = 40;
    d.Notes[1].Tag = QStringLiteral("remark");
    d.NoteCount = 1;
    d.Pictures.resize(1);
    d.Pictures[0].PictureName = QStringLiteral("photo");
    d.Pictures[0].Stretch = true;
    d.Pictures[0].Width = 1440;
    d.Pictures[0].Height = 720;
    d.PictureCount = 0;
    d.HasRecordPictures = true;
    addLabels(d, 6);
    return d;
}

// Fields of a row as the page shows them, plus combo, check, note and picture.
using Shown = std::vector<QString>;

struct ImportStore {
    QTemporaryDir dir;
    Design design;
    Page page;
    RecordingStoreHost host;
    FixedClock clock{QDateTime(QDate(2024, 5, 17), QTime(10, 30))};
    FormulaContext context;
    EngineFormulaHooks hooks{context};
    RecordStore store;
    QString data;

    explicit ImportStore(Design d) : design(std::move(d)), page(design), store(design, page, &hooks, &host)
    {
        context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
        QLocale::setDefault(context.locale);
        context.clock = &clock;
        store.setClock(clock);
        store.setDecimalSeparator(QLatin1Char('.'));
        data = dir.filePath(QStringLiteral("Shop.dat"));
        store.setRecordPictureFolder(dir.filePath(QStringLiteral("ShopPics/")));
        QDir().mkdir(dir.filePath(QStringLiteral("ShopPics")));
        EXPECT_TRUE(store.openFileSet(data, OpenMode::Create, design.MainCap));
        EXPECT_TRUE(store.showFirstRecord(OpenMode::Create, true));
    }
    ImportSetup setup(bool empty, bool threads = true)
    {
        ImportSetup s;
        s.store = &store;
        s.messages = &host;
        s.formulaContext = threads ? &context : nullptr;
        s.storeWasEmpty = empty;
        return s;
    }
    QString file(const QString &name, const QByteArray &bytes)
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return path;
    }
    Shown shown(int record)
    {
        EXPECT_TRUE(store.JumpToRecord(record));
        Shown s(page.FieldText.begin() + 1, page.FieldText.end());
        s.push_back(page.ComboText[1]);
        s.push_back(QString::number(page.CheckValue[0]));
        s.push_back(page.NoteText[1]);
        s.push_back(page.PictureRecordName[0]);
        return s;
    }
    QByteArray fileBytes() const
    {
        QFile f(data);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

// The test's own writer: values quoted when they hold the delimiter, a quote or a line break,
// quotes doubled, rows ended by CR LF.
QByteArray writeCsv(const QList<QStringList> &rows, QChar separator = QLatin1Char(','))
{
    QByteArray out;
    for (const QStringList &row : rows) {
        QStringList cells;
        for (QString v : row) {
            if (v.contains(separator) || v.contains(QLatin1Char('"')) || v.contains(QLatin1Char('\n'))) {
                v.replace(QLatin1String("\""), QLatin1String("\"\""));
                v = QLatin1Char('"') + v + QLatin1Char('"');
            }
            cells << v;
        }
        out += CodePage(0).encode(cells.join(separator)) + "\r\n";
    }
    return out;
}

const QStringList kHead = {QStringLiteral("No."), QStringLiteral("NAME"), QStringLiteral("amount"),
                           QStringLiteral("Price"), QStringLiteral("qty"), QStringLiteral("day"),
                           QStringLiteral("country"), QStringLiteral("paid"), QStringLiteral("remark"),
                           QStringLiteral("unknown")};

TEST(TextImport, ValuesComeBackAsWritten)
{
    ImportStore s(importDesign(false));
    // Values that end or start in a quote merge with their neighbour by the program's rule, and
    // a tilde is a delimiter: those are left to the line tests.
    const QList<QStringList> rows = {
        kHead,
        {QStringLiteral("1"), QStringLiteral("Ann, \"Jr\" K"), QStringLiteral("2.5"), QStringLiteral("1,234.50"),
         QStringLiteral("3"), QStringLiteral("2024-01-31"), QStringLiteral("France"), QStringLiteral("1"),
         QStringLiteral("first line\r\nsecond, line"), QStringLiteral("x")},
        {QStringLiteral("2"), QString(), QStringLiteral("-0.125"), QStringLiteral("0"), QStringLiteral("-7"),
         QStringLiteral("3/4/2023"), QString(), QStringLiteral("0"), QString(), QString()},
        {QStringLiteral("3"), QStringLiteral("  padded  "), QStringLiteral("1e3"), QStringLiteral("19.999"),
         QStringLiteral("12.5"), QStringLiteral("no date"), QStringLiteral("Italy"), QStringLiteral("-1"),
         QStringLiteral("say \"quoted\" inside"), QString()},
    };
    const Result<ImportReport> report = TextImport::run(s.file(QStringLiteral("in.csv"), writeCsv(rows)), s.setup(true));
    ASSERT_TRUE(report) << report.error().text.toStdString();
    EXPECT_EQ(report->added, 3);
    EXPECT_EQ(report->firstRecord, 1); // the empty store's blank record took the first row
    EXPECT_EQ(s.store.RecordCount(), 3);
    EXPECT_EQ(s.shown(1), (Shown{QStringLiteral("Ann, \"Jr\" K"), QStringLiteral("2.5"), QStringLiteral("1,234.50"),
                                 QStringLiteral("3"), QStringLiteral("1/31/2024"), QString(), QStringLiteral("France"),
                                 QStringLiteral("1"), QStringLiteral("first line\r\nsecond, line"), QString()}));
    EXPECT_EQ(s.shown(2), (Shown{QString(), QStringLiteral("-0.125"), QString(), QStringLiteral("-7"),
                                 QStringLiteral("3/4/2023"), QString(), QString(), QStringLiteral("0"), QString(),
                                 QString()}));
    // Whole numbers round, amounts keep four decimals and show two, an unreadable date is none,
    // a name is cut to its field.
    EXPECT_EQ(s.shown(3), (Shown{QStringLiteral("  padded"), QStringLiteral("1000"), QStringLiteral("20.00"),
                                 QStringLiteral("12"), QString(), QString(), QStringLiteral("Italy"),
                                 QStringLiteral("1"), QStringLiteral("say \"quoted\" inside"), QString()}));
    // The text field's bytes as stored: the value cut to 12 bytes and padded with blanks.
    const QByteArray bytes = s.fileBytes();
    const RecordPlace third = recordPlace(s.data, 3, s.store.layout().RecordLength, s.store.file().RecordsPerPart());
    EXPECT_EQ(bytes.mid(third.offset, 12), QByteArray("  padded    "));
}

TEST(TextImport, RowsGoAfterTheRecordsAlreadyStored)
{
    ImportStore s(importDesign(false));
    s.page.FieldText[1] = QStringLiteral("kept");
    ASSERT_TRUE(s.store.LockRecord());
    ASSERT_TRUE(s.store.PackRecord());
    const QString file = s.file(QStringLiteral("in.txt"), writeCsv({{QStringLiteral("name")}, {QStringLiteral("new")}}));
    const Result<ImportReport> report = TextImport::run(file, s.setup(false));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->firstRecord, 2);
    EXPECT_EQ(s.shown(1)[0], QStringLiteral("kept"));
    EXPECT_EQ(s.shown(2)[0], QStringLiteral("new"));
    // A store that was called empty but holds more than one record is appended to all the same.
    const Result<ImportReport> again = TextImport::run(file, s.setup(true));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->firstRecord, 3);
    EXPECT_EQ(s.shown(2)[0], QStringLiteral("new"));
}

TEST(TextImport, NewRecordsTakeTheDefaultsOfColumnsNotGiven)
{
    Design d = importDesign(false);
    d.Checks[0].CheckDefault = 1;
    ImportStore s(std::move(d));
    const Result<ImportReport> report =
        TextImport::run(s.file(QStringLiteral("in.csv"), writeCsv({{QStringLiteral("name")}, {QStringLiteral("a")}})),
                        s.setup(true));
    ASSERT_TRUE(report);
    const Shown row = s.shown(1);
    EXPECT_EQ(row[4], QStringLiteral("5/17/2024")); // a date field starts at today
    EXPECT_EQ(row[7], QStringLiteral("1"));         // the check box at its default
}

TEST(TextImport, AFileNamingNoFieldAddsNothing)
{
    ImportStore s(importDesign(false));
    const QByteArray before = s.fileBytes();
    const Result<ImportReport> report =
        TextImport::run(s.file(QStringLiteral("in.csv"), "No.,other\r\n1,2\r\n"), s.setup(false));
    ASSERT_FALSE(report);
    EXPECT_TRUE(report.error().text.contains(QLatin1String("names a field")));
    EXPECT_EQ(s.fileBytes(), before);
    EXPECT_FALSE(TextImport::run(s.dir.filePath(QStringLiteral("missing.csv")), s.setup(false)));
}

TEST(TextImport, BrokenQuotingKeepsEveryEarlierRecord)
{
    ImportStore s(importDesign(false));
    ASSERT_TRUE(TextImport::run(s.file(QStringLiteral("a.csv"), "name\r\none\r\ntwo\r\n"), s.setup(true)));
    const QByteArray before = s.fileBytes();
    const Result<ImportReport> report =
        TextImport::run(s.file(QStringLiteral("b.csv"), "name,remark\r\nthree,ok\r\nfour,\"never closed\r\nfive\r\n"),
                        s.setup(false));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->added, 1);
    EXPECT_FALSE(report->warnings.isEmpty());
    EXPECT_EQ(s.fileBytes().left(before.size()), before);
    EXPECT_EQ(s.store.RecordCount(), 3);
    EXPECT_EQ(s.shown(3)[0], QStringLiteral("three"));
}

TEST(TextImport, TheRecordLimitKeepsWhatWasAdded)
{
    // With 1,070,000,001 records per part the limit is 1,070,000,001 records. A sparse first part
    // holds 1,069,999,998 of them; of five rows three fit.
    const int64_t perPart = 1070000001;
    RecordFile::SetRecordsPerPartForTesting(perPart);
    {
        ImportStore s(importDesign(false));
        const int length = s.store.layout().RecordLength;
        s.store.close();
        {
            QFile f(s.data);
            ASSERT_TRUE(f.open(QIODevice::ReadWrite));
            ASSERT_TRUE(f.resize(qint64(1069999998 + 1) * length - 1));
        }
        ASSERT_TRUE(s.store.openFileSet(s.data, OpenMode::Open, QString()));
        const QString file = s.file(QStringLiteral("in.csv"), "name\r\na\r\nb\r\nc\r\nd\r\ne\r\n");
        const Result<ImportReport> report = TextImport::run(file, s.setup(false));
        ASSERT_TRUE(report);
        EXPECT_TRUE(report->limitReached);
        EXPECT_EQ(report->added, 3);
        EXPECT_EQ(s.host.texts(), QStringList{QStringLiteral("Maximum Record Limited Reached")});
        EXPECT_EQ(s.store.RecordCount(), 1070000001);
        // The last one is the exact multiple of the part size: it is read from the end of the
        // first part, and that is where it was written.
        EXPECT_EQ(s.shown(1070000001)[0], QStringLiteral("c"));
        EXPECT_EQ(s.shown(1069999999)[0], QStringLiteral("a"));
    }
    RecordFile::SetRecordsPerPartForTesting(0);
}

TEST(TextImport, RecordsFollowThePartsOfTheFileSet)
{
    RecordFile::SetRecordsPerPartForTesting(7);
    {
        ImportStore s(importDesign(false));
        QList<QStringList> rows = {{QStringLiteral("name"), QStringLiteral("qty")}};
        for (int k = 1; k <= 30; ++k)
            rows.append({QStringLiteral("n%1").arg(k), QString::number(k)});
        const Result<ImportReport> report = TextImport::run(s.file(QStringLiteral("in.csv"), writeCsv(rows)), s.setup(true));
        ASSERT_TRUE(report);
        EXPECT_EQ(s.store.RecordCount(), 30);
        EXPECT_TRUE(QFile::exists(partFileName(s.data, 4)));
        for (int k = 1; k <= 30; ++k) {
            const Shown row = s.shown(k);
            EXPECT_EQ(row[0], QStringLiteral("n%1").arg(k));
            EXPECT_EQ(row[3], QString::number(k));
        }
    }
    RecordFile::SetRecordsPerPartForTesting(0);
}

TEST(TextImport, FormulasRunForEveryRecordOnOneThreadOrTwo)
{
    QList<QStringList> rows = {{QStringLiteral("name"), QStringLiteral("price"), QStringLiteral("qty"),
                                QStringLiteral("day"), QStringLiteral("paid")}};
    for (int k = 1; k <= 20000; ++k)
        rows.append({QStringLiteral("row %1").arg(k), QStringLiteral("%1.25").arg(k % 100), QString::number(k % 7),
                     QStringLiteral("2020-01-%1").arg(1 + k % 28), QString::number(k % 2)});
    const QByteArray csv = writeCsv(rows);
    QByteArray stored[2];
    for (int threads = 0; threads < 2; ++threads) {
        ImportStore s(importDesign(true));
        const Result<ImportReport> report = TextImport::run(s.file(QStringLiteral("in.csv"), csv), s.setup(true, threads == 1));
        ASSERT_TRUE(report);
        EXPECT_EQ(report->added, 20000);
        EXPECT_EQ(s.shown(1)[5], QStringLiteral("1.25"));       // 1.25 * 1
        EXPECT_EQ(s.shown(12345)[5], QStringLiteral("181.00")); // 45.25 * 4
        EXPECT_EQ(s.shown(20000)[4], QStringLiteral("1/9/2020"));
        stored[threads] = s.fileBytes().mid(s.store.layout().RecordLength);
    }
    EXPECT_EQ(stored[0], stored[1]);
}

// What the formulas write goes into the record beside the row's own values: a text field through
// the text mode, a combo, a check box, a date; a result that overflows its field leaves the
// new record's defaults and a warning, and the records around it are whole.
TEST(TextImport, FormulaResultsGoInBesideTheRowsValues)
{
    Design d = importDesign(true);
    d.Fields[1].FieldFormula = QStringLiteral("Item F4");
    d.Fields[2].FieldFormula = QStringLiteral("IF F4>2 THEN c1=Bulk k0=1");
    d.Fields[5].FieldFormula = QStringLiteral("IF F4=0 THEN f5=1/2/2003");
    for (const bool scrambled : {false, true}) {
        d.ScrambleRecords = scrambled ? 1 : 0;
        ImportStore s(d);
        const QList<QStringList> rows = {
            {QStringLiteral("name"), QStringLiteral("amount"), QStringLiteral("price"), QStringLiteral("qty"),
             QStringLiteral("day"), QStringLiteral("country"), QStringLiteral("paid"), QStringLiteral("remark")},
            {QStringLiteral("pen"), QStringLiteral("1.5"), QStringLiteral("2.50"), QStringLiteral("2"),
             QStringLiteral("2024-03-01"), QStringLiteral("Peru"), QStringLiteral("0"), QStringLiteral("a")},
            {QStringLiteral("ink"), QStringLiteral("-2"), QStringLiteral("1.25"), QStringLiteral("3"),
             QStringLiteral("2024-03-02"), QStringLiteral("Chile"), QStringLiteral("0"), QStringLiteral("b")},
            {QStringLiteral("gift"), QString(), QStringLiteral("9"), QStringLiteral("0"), QString(), QString(),
             QStringLiteral("1"), QString()},
            {QStringLiteral("huge"), QStringLiteral("7"), QStringLiteral("900000000000"), QStringLiteral("2000"),
             QStringLiteral("2024-03-04"), QStringLiteral("Cuba"), QStringLiteral("1"), QStringLiteral("d")},
        };
        const Result<ImportReport> report = TextImport::run(s.file(QStringLiteral("in.csv"), writeCsv(rows)), s.setup(true));
        ASSERT_TRUE(report);
        EXPECT_EQ(report->added, 4);
        // The records as stored: showing one runs no formula now.
        for (FieldElement &field : s.design.Fields)
            field.FieldFormula.clear();
        EXPECT_EQ(s.shown(1), (Shown{QStringLiteral("Item 2"), QStringLiteral("1.5"), QStringLiteral("2.50"),
                                     QStringLiteral("2"), QStringLiteral("3/1/2024"), QStringLiteral("5.00"),
                                     QStringLiteral("Peru"), QStringLiteral("0"), QStringLiteral("a"), QString()}));
        EXPECT_EQ(s.shown(2), (Shown{QStringLiteral("Item 3"), QStringLiteral("-2"), QStringLiteral("1.25"),
                                     QStringLiteral("3"), QStringLiteral("3/2/2024"), QStringLiteral("3.75"),
                                     QStringLiteral("Bulk"), QStringLiteral("1"), QStringLiteral("b"), QString()}));
        EXPECT_EQ(s.shown(3)[0], QStringLiteral("Item 0"));
        EXPECT_EQ(s.shown(3)[4], QStringLiteral("1/2/2003"));
        EXPECT_EQ(s.shown(3)[7], QStringLiteral("1"));
        // 900,000,000,000 x 2,000 is beyond any amount: the record is a new record's.
        EXPECT_EQ(s.shown(4), (Shown{QString(), QString(), QString(), QString(), QStringLiteral("5/17/2024"), QString(),
                                     QString(), QStringLiteral("0"), QString(), QString()})); // the day is today's
        EXPECT_EQ(report->warnings.size(), 1);
        EXPECT_TRUE(report->warnings.value(0).startsWith(QStringLiteral("record 4"))) << report->warnings.value(0).toStdString();
    }
}

TEST(TextImport, ScrambledRecordsAndAnotherSeparator)
{
    Design d = importDesign(false);
    d.ScrambleRecords = 1;
    d.FieldSeparator = QStringLiteral(";");
    ImportStore s(std::move(d));
    const QByteArray csv = writeCsv({{QStringLiteral("name"), QStringLiteral("remark")},
                                     {QStringLiteral("a;b"), QStringLiteral("x, y")}},
                                    QLatin1Char(';'));
    ASSERT_TRUE(TextImport::run(s.file(QStringLiteral("in.txt"), csv), s.setup(true)));
    EXPECT_EQ(s.shown(1)[0], QStringLiteral("a;b"));
    EXPECT_EQ(s.shown(1)[8], QStringLiteral("x, y"));
    EXPECT_FALSE(s.fileBytes().contains("x, y")); // stored scrambled
}

// Stores a "picture" when the file starts with PIC, as the JPEG store reads only pictures.
class TestPictures : public ImportPictureSink {
public:
    QList<ImportedPicture> stored;
    Result<QString> storePicture(const ImportedPicture &p) override
    {
        QFile f(p.source);
        if (!f.open(QIODevice::ReadOnly) || !f.read(3).startsWith("PIC"))
            return makeError(ErrorCode::Invalid, QStringLiteral("not a picture"));
        stored << p;
        return QStringLiteral("%1.jpg").arg(p.number, 7, 10, QLatin1Char('0'));
    }
};

TEST(TextImport, PicturesTakeTheNextNumbersOneByOne)
{
    ImportStore s(importDesign(false));
    QDir(s.dir.path()).mkdir(QStringLiteral("Pictures"));
    s.file(QStringLiteral("a.gif"), "PIC a");
    s.file(QStringLiteral("Pictures/b.gif"), "PIC b");
    s.file(QStringLiteral("bad.gif"), "not one");
    TestPictures pictures;
    ImportSetup setup = s.setup(true);
    setup.pictures = &pictures;
    const QString csv = s.file(QStringLiteral("in.csv"),
                               "name,photo\r\none,a.gif\r\ntwo,missing.gif\r\nthree,bad.gif\r\nfour,b.gif\r\n");
    const Result<ImportReport> report = TextImport::run(csv, setup);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->added, 4);
    ASSERT_EQ(pictures.stored.size(), 2);
    EXPECT_EQ(pictures.stored[0].number, 1);
    EXPECT_EQ(pictures.stored[1].number, 2);
    EXPECT_EQ(pictures.stored[0].folder, s.store.RecordPictureFolder());
    EXPECT_EQ(pictures.stored[0].widthTwips, 1440);
    EXPECT_EQ(s.store.NextPictureNumber(), 2);
    EXPECT_EQ(s.shown(1)[9], QStringLiteral("0000001"));
    EXPECT_EQ(s.shown(2)[9], QString()); // no such file
    EXPECT_EQ(s.shown(3)[9], QString()); // not a picture: reported, nothing stored
    EXPECT_EQ(s.shown(4)[9], QStringLiteral("0000002"));
    EXPECT_FALSE(report->warnings.isEmpty());
    // Without a picture store the column is passed over.
    const Result<ImportReport> without = TextImport::run(csv, s.setup(false));
    ASSERT_TRUE(without);
    EXPECT_EQ(s.shown(5)[9], QString());
    EXPECT_EQ(s.store.NextPictureNumber(), 2);
}

class StopAfter : public Progress {
public:
    explicit StopAfter(int lines) : left_(lines) {}
    int lastPercent = -1;
    void setPercent(int percent) override { lastPercent = percent; }
    bool cancelled() override { return --left_ <= 0; }

private:
    int left_;
};

TEST(TextImport, StopKeepsTheRowsReadBeforeIt)
{
    ImportStore s(importDesign(false));
    StopAfter stop(3);
    ImportSetup setup = s.setup(true);
    setup.progress = &stop;
    const Result<ImportReport> report =
        TextImport::run(s.file(QStringLiteral("in.csv"), "name\r\na\r\nb\r\nc\r\nd\r\ne\r\n"), setup);
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->stopped);
    EXPECT_EQ(report->added, 3);
    EXPECT_EQ(s.store.RecordCount(), 3);
    EXPECT_GT(stop.lastPercent, 0);
}

} // namespace
