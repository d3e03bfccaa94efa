// The spreadsheet export read back by a BIFF 2 reader of the test's own: the record walk from BOF
// to EOF, the sheet settings, the column widths and the cells with their attributes.

#include "test_export_fixture.h"

#include "export/ExcelFile.h"

#include <cstring>

using namespace ff;
using namespace ff::testsupport;

namespace {

struct BiffRecord {
    int opcode = 0;
    QByteArray body;
    int u16(int at) const { return uint8_t(body[at]) | (uint8_t(body[at + 1]) << 8); }
    int u8(int at) const { return uint8_t(body[at]); }
    double f64(int at) const
    {
        double v;
        std::memcpy(&v, body.constData() + at, 8);
        return v;
    }
};

// The flat stream: opcode, length, body, to the end of the file; a length past the end fails.
std::vector<BiffRecord> readBiff(const QByteArray &file)
{
    std::vector<BiffRecord> records;
    qsizetype at = 0;
    while (at + 4 <= file.size()) {
        BiffRecord r;
        r.opcode = uint8_t(file[at]) | (uint8_t(file[at + 1]) << 8);
        const int length = uint8_t(file[at + 2]) | (uint8_t(file[at + 3]) << 8);
        EXPECT_LE(at + 4 + length, file.size()) << "record " << r.opcode << " runs past the end";
        r.body = file.mid(at + 4, length);
        records.push_back(r);
        at += 4 + length;
    }
    EXPECT_EQ(at, file.size());
    return records;
}

struct Cell {
    int opcode, row, column, a1, a2, a3;
    double number;
    QByteArray text;
};

std::vector<Cell> cellsOf(const std::vector<BiffRecord> &records)
{
    std::vector<Cell> cells;
    for (const BiffRecord &r : records) {
        if (r.opcode < 2 || r.opcode > 4)
            continue;
        Cell c{r.opcode, r.u16(0), r.u16(2), r.u8(4), r.u8(5), r.u8(6), 0, {}};
        if (r.opcode == 3)
            c.number = r.f64(7);
        else if (r.opcode == 2)
            c.number = int16_t(r.u16(7));
        else {
            EXPECT_EQ(r.body.size(), 8 + r.u8(7));
            c.text = r.body.mid(8, r.u8(7));
        }
        cells.push_back(c);
    }
    return cells;
}

} // namespace

TEST(ExportSpreadsheet, SheetSettingsColumnsAndCells)
{
    Design d = shopDesign();
    d.Fields[1].MaxLength = 400;
    ShopStore shop(d);
    shop.write({{"Ada", "x", "1234.5", "1200", "2024-05-17", "0.25", "s", 1, "a", "b", "one\r\ntwo", "p.jpg"},
                {QString(300, QLatin1Char('L')), "", "", "", "", "", "", 0, "", "", "", ""}});
    const Result<ExportOutcome> done =
        shop.run(request(ExportChoice{ExportKind::Spreadsheet, -1, true}, ExportRange::Records(1, 2, 2), QStringLiteral("sheet.old")));
    ASSERT_TRUE(done) << done.error().text.toStdString();
    EXPECT_EQ(done->records, 2);
    const std::vector<BiffRecord> r = readBiff(shop.file(QStringLiteral("sheet.xls")));
    ASSERT_GE(r.size(), 20u);

    EXPECT_EQ(r[0].opcode, 9);
    EXPECT_EQ(r[0].body, QByteArray::fromHex("02000a00")); // version 2, file type 10
    EXPECT_EQ(r.back().opcode, 10);
    EXPECT_TRUE(r.back().body.isEmpty());
    EXPECT_EQ(r[1].opcode, 43);
    EXPECT_EQ(r[1].u16(0), 0); // no grid lines
    const int margins[] = {40, 38, 39, 41};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(r[size_t(2 + k)].opcode, margins[k]);
        EXPECT_EQ(r[size_t(2 + k)].f64(0), 0.5);
    }
    struct Font {
        int height, attributes;
        const char *name;
    } fonts[] = {{200, 0, "Arial"}, {200, 1, "Arial"}, {200, 5, "Arial"}, {240, 2, "Courier"}};
    for (int k = 0; k < 4; ++k) {
        const BiffRecord &f = r[size_t(6 + k)];
        EXPECT_EQ(f.opcode, 49);
        EXPECT_EQ(f.u16(0), fonts[k].height);
        EXPECT_EQ(f.u8(2), fonts[k].attributes);
        EXPECT_EQ(f.u8(3), 0);
        EXPECT_EQ(f.body.mid(5, f.u8(4)), QByteArray(fonts[k].name));
    }
    // Widths: the number column 29 characters; fields 1500 twips = 100 pixels, / 7 = 14; the check
    // field 29; the combos have no width: 1. Columns Name..Remark are 2..12 (file 1..11).
    const int widths[] = {29, 14, 14, 14, 14, 14, 14, 14, 29, 1, 1, 1};
    for (int k = 0; k < 12; ++k) {
        const BiffRecord &w = r[size_t(10 + k)];
        ASSERT_EQ(w.opcode, 36) << k;
        EXPECT_EQ(w.u8(0), k);
        EXPECT_EQ(w.u8(1), k);
        EXPECT_EQ(w.u16(2), widths[k] * 256) << k;
    }
    EXPECT_EQ(r[22].opcode, 20);
    EXPECT_EQ(r[22].body, QByteArray("\x04Shop"));
    EXPECT_EQ(r[23].opcode, 21);
    EXPECT_EQ(r[23].body, QByteArray("\x04Shop"));

    const std::vector<Cell> cells = cellsOf(r);
    ASSERT_EQ(cells.size(), 24u); // 12 columns, 2 rows
    struct Want {
        int opcode, a2, a3;
        double number;
        QByteArray text;
    } want[] = {{3, 0, 1, 1, {}},          {4, 0, 1, 0, "Ada"},        {4, 0, 1, 0, "x"},   {3, 64, 3, 1234.5, {}},
                {3, 64, 3, 1200, {}},       {4, 0, 1, 0, "5/17/2024"},  {3, 0, 1, 0.25, {}}, {4, 0, 1, 0, "s"},
                {3, 0, 1, 1, {}},           {4, 0, 1, 0, "a"},          {4, 0, 1, 0, "b"},   {4, 0, 1, 0, "one two"}};
    for (int k = 0; k < 12; ++k) {
        const Cell &c = cells[size_t(k)];
        EXPECT_EQ(c.row, 0);
        EXPECT_EQ(c.column, k);
        EXPECT_EQ(c.opcode, want[k].opcode) << k;
        EXPECT_EQ(c.a1, 0);
        EXPECT_EQ(c.a2, want[k].a2) << k;
        EXPECT_EQ(c.a3, want[k].a3) << k;
        EXPECT_EQ(c.number, want[k].number) << k;
        EXPECT_EQ(c.text, want[k].text) << k;
    }
    EXPECT_EQ(cells[12].row, 1);
    EXPECT_EQ(cells[12].number, 2);
    EXPECT_EQ(cells[13].text, QByteArray(255, 'L')); // a cell holds 255 characters
    EXPECT_EQ(cells[15].number, 0);                   // an empty amount is a zero
}

TEST(ExcelFileRecords, RowsValueTypesAndTexts)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("cells.xls"));
    ExcelFile sheet;
    ASSERT_TRUE(sheet.CreateFile(path));
    struct Row {
        int given, stored;
    } rows[] = {{1, 0}, {32767, 32766}, {32768, 32767}, {40000, 39999}, {65535, 65534}, {65536, 65535}};
    for (const Row &row : rows)
        ASSERT_TRUE(sheet.WriteValue(ExcelFile::kNumberValue, 0, 1, 0, row.given, 2, 1.5));
    ASSERT_TRUE(sheet.WriteValue(ExcelFile::kIntegerValue, 7, 3, 9, 2, 3, -12.0));
    ASSERT_TRUE(sheet.WriteValue(ExcelFile::kLabelValue, 0, 2, 0, 3, 1, QByteArray()));
    ASSERT_TRUE(sheet.WriteValue(ExcelFile::kLabelValue, 0, 2, 0, 4, 1, 2.5));
    ASSERT_TRUE(sheet.WriteValue(3, 0, 0, 0, 5, 1, 1.0)); // any other type writes nothing
    ASSERT_TRUE(sheet.CloseFile());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const std::vector<BiffRecord> r = readBiff(f.readAll());
    const std::vector<Cell> cells = cellsOf(r);
    ASSERT_EQ(cells.size(), 9u);
    for (size_t k = 0; k < 6; ++k) {
        EXPECT_EQ(cells[k].row, rows[k].stored) << rows[k].given;
        EXPECT_EQ(cells[k].column, 1);
    }
    EXPECT_EQ(cells[6].opcode, 2);
    EXPECT_EQ(r[7].body.size(), 9);
    EXPECT_EQ(cells[6].number, -12);
    EXPECT_EQ(cells[6].a1, 9);
    EXPECT_EQ(cells[6].a2, 7);
    EXPECT_EQ(cells[6].a3, 3);
    EXPECT_EQ(r[8].body, QByteArray::fromHex("0200000000000200")); // an empty label: length 8 with the zero byte
    EXPECT_EQ(cells[8].text, QByteArray("2.5"));
    EXPECT_EQ(r.back().opcode, 10);
    EXPECT_EQ(r.size(), 11u);
}
