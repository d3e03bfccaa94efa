// The delimited text export: the head row and its names, quoting, rows in the order of the range,
// pages the user may not see, the stop, the code page, and the same bytes whether the values come
// from the page or straight from the stored records, on one thread or two.

#include "test_export_fixture.h"

#include "export/DelimitedTextExport.h"
#include "export/ExportKinds.h"

#include <QRandomGenerator>

using namespace ff;
using namespace ff::testsupport;

namespace {

const ExportChoice kText{ExportKind::DelimitedText, -1, true};

QList<QByteArray> rowsOf(const QByteArray &file)
{
    QList<QByteArray> rows = file.split('\n');
    EXPECT_TRUE(rows.last().isEmpty()) << "the last row ends with CR LF";
    rows.removeLast();
    return rows;
}

} // namespace

TEST(ExportText, HeadRowQuotingAndLineEnds)
{
    ShopStore shop(shopDesign());
    shop.write({
        {"Ada", "x", "1234.5", "1200", "2024-05-17", "0.25", "s", 1, "a", "b", "plain", "p1.jpg"},
        {"He said \"hi\"", "a;b", "-0.004", "0", "", "-1E-7", "", 0, "a,b", "", "one\r\ntwo", ""},
        {"cr\ralone", "", "", "", "", "", "", 0, "", "", "", ""},
    });
    const Result<ExportOutcome> done = shop.run(request(kText, ExportRange::Records(1, 3, 3)));
    ASSERT_TRUE(done) << done.error().text.toStdString();
    EXPECT_EQ(done->records, 3);
    const QList<QByteArray> rows = rowsOf(shop.file(QStringLiteral("out.txt")));
    ASSERT_EQ(rows.size(), 5); // head, record 1, record 2 over two lines, record 3
    EXPECT_EQ(rows[0], "No.;Name;2_Name;Price;Qty;Day;Ratio;Secret;Paid;Kind;3_Kind;Remark;Photo\r");
    EXPECT_EQ(rows[1], "1;Ada;x;1,234.50;1,200;5/17/2024;0.25;s;1;a;b;plain;p1.jpg\r");
    // Doubled and enclosed quotes, an enclosed separator, a comma left alone, ShowZeros 0 blanks
    // the rounded zero, and a note's CR LF enclosed.
    EXPECT_EQ(rows[2], "2;\"He said \"\"hi\"\"\";\"a;b\";;;;-1E-07;;0;a,b;;\"one\r");
    EXPECT_EQ(rows[3], "two\";\r");
    EXPECT_EQ(rows[4], "3;cr\ralone;;;;;;;0;;;;\r"); // a lone CR is no line end
}

TEST(ExportText, NamesAreMadeUniquePerFamilyWithOneCounter)
{
    Design d = shopDesign();
    d.Fields[7].Tag = QStringLiteral("Name"); // a third Name among the fields
    d.Notes[1].Tag = QStringLiteral("Name");  // first of its family: stays bare
    ShopStore shop(d);
    shop.write({{}});
    ASSERT_TRUE(shop.run(request(kText, ExportRange::Records(1, 1, 1))));
    EXPECT_EQ(rowsOf(shop.file(QStringLiteral("out.txt")))[0],
              "No.;Name;2_Name;Price;Qty;Day;Ratio;3_Name;Paid;Kind;4_Kind;Name;Photo\r");
}

TEST(ExportText, PagesNotAllowedLoseTheirColumns)
{
    Design d = shopDesign();
    d.Fields[1].FieldPage = -1; // on no page: always exported
    d.Pictures[0].PicturePage = 1;
    ShopStore shop(d);
    shop.write({{"Ada", "x", "", "", "", "", "hidden", 0, "", "", "", "p.jpg"}});
    ExportRequest r = request(kText, ExportRange::Records(1, 1, 1));
    r.pageAllowed = {true, false, true, true, true};
    ASSERT_TRUE(shop.run(r));
    const QList<QByteArray> rows = rowsOf(shop.file(QStringLiteral("out.txt")));
    EXPECT_EQ(rows[0], "No.;Name;2_Name;Price;Qty;Day;Ratio;Paid;Kind;3_Kind;Remark\r");
    EXPECT_EQ(rows[1], "1;Ada;x;;;;;0;;;\r");
}

TEST(ExportText, RowsFollowTheOrderOfTheRange)
{
    ShopStore shop(shopDesign());
    std::vector<ShopRecord> records(6);
    for (int k = 0; k < 6; ++k)
        records[size_t(k)].name = QStringLiteral("n%1").arg(k + 1);
    shop.write(records);
    const QVector<int> sortIndex{0, 4, 2, 6, 1, 5, 3}; // entry 0 unused
    struct Case {
        const char *what;
        ExportRange range;
        std::vector<int> records;
    } cases[] = {
        {"file order 2..4", ExportRange::Records(2, 4, 6), {2, 3, 4}},
        {"sort index up 1..3", ExportRange::Records(1, 3, 6, BrowseOrder::SortIndexUp, sortIndex), {4, 2, 6}},
        // Reverse: place i is SortIndex(RecordCount - (i - 1)).
        {"sort index down 1..3", ExportRange::Records(1, 3, 6, BrowseOrder::SortIndexDown, sortIndex), {3, 5, 1}},
        {"sort index down 5..6", ExportRange::Records(5, 6, 6, BrowseOrder::SortIndexDown, sortIndex), {2, 4}},
        {"result list", ExportRange::ResultList({5, 1, 3}, 6), {5, 1, 3}},
    };
    for (const Case &c : cases) {
        ASSERT_TRUE(shop.run(request(kText, c.range))) << c.what;
        const QList<QByteArray> rows = rowsOf(shop.file(QStringLiteral("out.txt")));
        std::vector<int> got;
        for (qsizetype k = 1; k < rows.size(); ++k) {
            const QList<QByteArray> cells = rows[k].split(';');
            got.push_back(cells[0].toInt());
            EXPECT_EQ(cells[1], "n" + cells[0]) << c.what;
        }
        EXPECT_EQ(got, c.records) << c.what;
    }
}

TEST(ExportText, RangesOutsideTheRecordsAreRefused)
{
    ShopStore shop(shopDesign());
    shop.write(std::vector<ShopRecord>(3));
    for (const ExportRange &range : {ExportRange::Records(0, 2, 3), ExportRange::Records(2, 4, 3), ExportRange::Records(3, 2, 3),
                                     ExportRange::ResultList({1, 9}, 3), ExportRange::ResultList({}, 3),
                                     ExportRange::Records(1, 3, 3, BrowseOrder::SortIndexUp, {0, 1, 2})}) {
        const Result<ExportOutcome> done = shop.run(request(kText, range));
        EXPECT_FALSE(done);
        EXPECT_FALSE(QFile::exists(QDir(shop.dir.path()).filePath(QStringLiteral("out.txt"))));
    }
}

TEST(ExportText, StopKeepsExactlyTheRowsBeforeIt)
{
    ShopStore shop(shopDesign());
    std::vector<ShopRecord> records(30000);
    for (size_t k = 0; k < records.size(); ++k)
        records[k].name = QStringLiteral("n%1").arg(k + 1);
    shop.write(records);
    for (const int threads : {1, 2}) {
        StopAt stop(1234); // the 1234th tenth index: index 12340
        ExportRequest r = request(kText, ExportRange::Records(1, 30000, 30000));
        r.threads = threads;
        const Result<ExportOutcome> done = shop.run(r, &stop);
        ASSERT_TRUE(done);
        EXPECT_TRUE(done->stopped);
        EXPECT_EQ(done->records, 12339);
        const QList<QByteArray> rows = rowsOf(shop.file(QStringLiteral("out.txt")));
        ASSERT_EQ(rows.size(), 12340);
        EXPECT_TRUE(rows.last().startsWith("12339;n12339;")) << threads;
        EXPECT_EQ(stop.percents.front(), 0);
        EXPECT_EQ(stop.percents.back(), 100 * 12340 / 30000);
    }
}

TEST(ExportText, RecordTextIsWrittenInTheDesignsCodePage)
{
    ShopStore shop(shopDesign(204)); // Windows-1251
    const QString name = QStringLiteral("Пётр Иванов");
    shop.write({{name, "", "", "", "", "", "", 0, "Ёж", "", "", ""}});
    for (const ExportRecordReader::Mode mode : {ExportRecordReader::Mode::Values, ExportRecordReader::Mode::Page}) {
        const ExportSource source(shop.store, shop.context);
        DelimitedTextExport text(source, AllPagesAllowed());
        const QString path = shop.dir.filePath(QStringLiteral("cyr.txt"));
        ASSERT_TRUE(text.run(ExportRange::Records(1, 1, 1), path, nullptr, 1, mode));
        const QByteArray row = rowsOf(shop.file(QStringLiteral("cyr.txt")))[1];
        EXPECT_TRUE(row.startsWith("1;" + CodePage(204).encode(name) + ";")) << row.toHex().toStdString();
        EXPECT_FALSE(row.contains(name.toUtf8()));
    }
}

// Numbers, money, dates and texts of every size and sign: the values read straight from the
// records must be the page's texts, byte for byte, with one thread or two.
TEST(ExportText, StoredValuesGiveThePagesTexts)
{
    for (const uint8_t showZeros : {0, 1}) {
        Design d = shopDesign();
        d.ShowZeros = showZeros;
        ShopStore shop(d);
        QRandomGenerator random(17);
        std::vector<ShopRecord> records(25000);
        for (size_t k = 0; k < records.size(); ++k) {
            ShopRecord &r = records[k];
            const double scale = std::pow(10.0, random.bounded(14));
            const double sign = random.bounded(2) ? -1 : 1;
            r.name = QStringLiteral("name %1 ").arg(k);
            r.price = QString::number(sign * std::floor(random.generateDouble() * scale) / 100.0, 'f', 2);
            if (k % 7 == 0)
                r.price = QStringLiteral("%1").arg(sign * (random.bounded(100) + 0.005), 0, 'f', 3); // halves
            r.qty = QString::number(int(sign * random.bounded(2147483647.0)));
            r.day = k % 5 ? QDate(1900, 1, 1).addDays(random.bounded(70000)).toString(Qt::ISODate) : QString();
            r.ratio = QString::number(sign * random.generateDouble() * scale, 'g', 17);
            r.paid = int(k % 2);
            r.remark = k % 3 ? QStringLiteral("a \"b\"; c") : QString();
        }
        records[1].price = QStringLiteral("0");
        records[2].price = QStringLiteral("99999999999.99"); // beyond the exact range: the hooks write it
        records[3].ratio = QStringLiteral("0");
        records[4].qty = QStringLiteral("-2147483648");
        shop.write(records);
        const ExportSource source(shop.store, shop.context);
        // The numbers and dates of en_US are written without the hooks (else this test would
        // prove nothing).
        EngineFormulaHooks hooks(shop.context);
        const RecordCodec codec(d, source.layout, hooks, source.decimalSeparator);
        for (const int type : {1, 2, 5, 7})
            EXPECT_TRUE(storedValueText(source, codec)->fast(type)) << type;
        DelimitedTextExport text(source, AllPagesAllowed());
        const ExportRange all = ExportRange::Records(1, int(records.size()), int(records.size()));
        ASSERT_TRUE(text.run(all, shop.dir.filePath(QStringLiteral("page.txt")), nullptr, 1, ExportRecordReader::Mode::Page));
        ASSERT_TRUE(text.run(all, shop.dir.filePath(QStringLiteral("fast.txt")), nullptr, 2, ExportRecordReader::Mode::Values));
        const QList<QByteArray> page = rowsOf(shop.file(QStringLiteral("page.txt")));
        const QList<QByteArray> fast = rowsOf(shop.file(QStringLiteral("fast.txt")));
        ASSERT_EQ(page.size(), fast.size());
        int differences = 0;
        for (qsizetype k = 0; k < page.size() && differences < 5; ++k)
            if (page[k] != fast[k]) {
                ++differences;
                ADD_FAILURE() << "page: " << page[k].toStdString() << "\nfast: " << fast[k].toStdString();
            }
        EXPECT_EQ(page[2].split(';')[3], showZeros ? "0.00" : "");
    }
}

TEST(ExportText, PicturesAreCopiedBesideTheExportAndNeverOutsideIt)
{
    ShopStore shop(shopDesign());
    for (const char *name : {"p1.jpg", "p2"}) {
        QFile f(shop.dir.filePath(QStringLiteral("ShopPics/") + QLatin1String(name)));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(name);
    }
    QFile outside(shop.dir.filePath(QStringLiteral("evil")));
    ASSERT_TRUE(outside.open(QIODevice::WriteOnly));
    outside.close();
    shop.write({{"a", "", "", "", "", "", "", 0, "", "", "", "p1.jpg"},
                {"b", "", "", "", "", "", "", 0, "", "", "", "p2"},
                {"c", "", "", "", "", "", "", 0, "", "", "", "../evil"},
                {"d", "", "", "", "", "", "", 0, "", "", "", "gone.jpg"}});
    QDir().mkpath(shop.dir.filePath(QStringLiteral("sub")));
    ExportRequest r = request(kText, ExportRange::Records(1, 4, 4));
    r.folder = shop.dir.filePath(QStringLiteral("sub"));
    const Result<ExportOutcome> done = shop.run(r);
    ASSERT_TRUE(done);
    EXPECT_EQ(done->pictures, 2);
    EXPECT_EQ(shop.file(QStringLiteral("sub/Pictures/p1.jpg")), "p1.jpg");
    EXPECT_EQ(shop.file(QStringLiteral("sub/Pictures/p2.jpg")), "p2"); // ".jpg" added to a name without a dot
    EXPECT_EQ(QDir(shop.dir.filePath(QStringLiteral("sub/Pictures"))).entryList(QDir::Files).size(), 2);
}

TEST(ExportKinds, TheChoosersListIsBuiltFromTheDesign)
{
    Design d = shopDesign();
    d.Templates[0].TemplateExtension = QStringLiteral("*.html");
    d.Templates[3].TemplateExtension = QStringLiteral("*.vcf");
    struct Case {
        QString forbidden;
        QStringList patterns;
    } cases[] = {
        {QString(),
         {"*.txt", "*.html", "*.html's", "*.vcf", "*.vcf's", "*.htm", "*.htm's", "*.dat", "*.php", "*.xls", "*.rtf", "*.pdf", "*.pdf's"}},
        {QStringLiteral(".htm,.DAT,.pdf's"), {"*.txt", "*.html", "*.html's", "*.vcf", "*.vcf's", "*.php", "*.xls", "*.rtf"}},
        {QStringLiteral(".txt,.xls,.php,.rtf"), {"*.txt", "*.html", "*.html's", "*.vcf", "*.vcf's", "*.htm", "*.htm's", "*.dat", "*.pdf", "*.pdf's"}},
    };
    for (const Case &c : cases) {
        const std::vector<ExportKindItem> items = BuildExportKindList(d, c.forbidden);
        EXPECT_EQ(ExportKindPatterns(items), c.patterns) << c.forbidden.toStdString();
        EXPECT_EQ(int(items[0].choice.kind), int(ExportKind::DelimitedText));
    }
    const std::vector<ExportKindItem> items = BuildExportKindList(d, QString());
    EXPECT_EQ(items[3].choice.templateIndex, 3);
    EXPECT_TRUE(items[3].choice.ExportPerRecord);
    EXPECT_FALSE(items[4].choice.ExportPerRecord);
    EXPECT_EQ(int(items[4].choice.kind), 13);

    EXPECT_EQ(CutExportExtension(QStringLiteral("list.2024.csv")), QStringLiteral("list.2024"));
    EXPECT_EQ(CutExportExtension(QStringLiteral("plain")), QStringLiteral("plain"));
    EXPECT_EQ(TemplateFileExtension(QStringLiteral("*.html")), QStringLiteral(".html"));
    EXPECT_TRUE(TemplateFileExtension(QStringLiteral("*./../x")).isNull());
}

TEST(ExportText, FormulasRunForEveryRecordOnBothThreads)
{
    Design d = shopDesign();
    d.Fields[2].FieldFormula = QStringLiteral("F1"); // a text formula: the name with blanks made "_"
    ShopStore shop(d);
    std::vector<ShopRecord> records(24000);
    for (size_t k = 0; k < records.size(); ++k)
        records[k].name = QStringLiteral("n %1").arg(k + 1);
    shop.write(records);
    for (const int threads : {1, 2}) {
        ExportRequest r = request(kText, ExportRange::Records(1, 24000, 24000));
        r.threads = threads;
        ASSERT_TRUE(shop.run(r));
        const QList<QByteArray> rows = rowsOf(shop.file(QStringLiteral("out.txt")));
        ASSERT_EQ(rows.size(), 24001);
        int wrong = 0;
        for (qsizetype k = 1; k < rows.size(); ++k)
            wrong += !rows[k].startsWith(QByteArray::number(k) + ";n " + QByteArray::number(k) + ";n_" + QByteArray::number(k) + ";");
        EXPECT_EQ(wrong, 0) << threads << ": " << rows[1].toStdString();
    }
}
