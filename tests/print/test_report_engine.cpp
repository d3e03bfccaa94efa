// The report engine over records of the test's own: how rows map to records, the paging clamps,
// templates, the sources and the print loop; and every report of design blocks written by other
// code (the independent block writer, a block cut off inside its reports).

#include "design/DesignReader.h"
#include "print/ImageTarget.h"
#include "print/ReportEngine.h"
#include "support/ExampleImage.h"
#include "support/Programs.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace ff;
using namespace ff::print;

namespace {

// Records whose field 1 reads "N<record>" and combo 1 "C<record>".
class NumberedRecords : public ReportRecords {
public:
    NumberedRecords(const Design &design, int count) : page_(design), count_(count) {}
    int RecordCount() const override { return count_; }
    int CurrentRecord() const override { return current_; }
    Status load(int record) override
    {
        ++loads;
        current_ = record;
        if (page_.FieldText.size() > 1)
            page_.FieldText[1] = QStringLiteral("N%1").arg(record);
        if (page_.ComboText.size() > 1)
            page_.ComboText[1] = QStringLiteral("C%1").arg(record);
        return {};
    }
    const Page &page() const override { return page_; }
    int SortMode() const override { return sortMode; }
    QVector<int> SortIndex() const override { return sortIndex; }

    int sortMode = 0;
    QVector<int> sortIndex;
    int loads = 0;

private:
    Page page_;
    int count_;
    int current_ = 1;
};

ReportLabel label(int fixed, const QString &text, int row, double top)
{
    ReportLabel l;
    l.LabelFixed = int16_t(fixed);
    l.Text = text;
    l.LabelRow = int16_t(row);
    l.Top = float(top);
    l.Left = 100;
    l.Width = 4000;
    l.Height = 300;
    return l;
}

// A design with one field and one combo and a report of `rows` rows of field 1, a record number
// label on row 1, a page number and a template of row 2.
Design reportDesign(int rows)
{
    Design d;
    d.Fields.resize(2);
    d.FieldCount = 1;
    d.Combos.resize(2);
    d.ComboCount = 1;
    d.Titles.resize(6);
    ReportDefinition r;
    r.Caption = QStringLiteral("List");
    r.PageWidth = 11906;
    r.PageHeight = 16838;
    r.Labels.push_back(label(-1, QStringLiteral("P$"), 0, 100));
    for (int row = 1; row <= rows; ++row)
        r.Labels.push_back(label(1, QStringLiteral("F"), row, 400 + 300 * row));
    r.Labels.push_back(label(-1, QStringLiteral("No. F1=2$ of C1=2$"), 0, 5000));
    r.Labels.push_back(label(0, QStringLiteral("R"), 1, 5400));
    d.Reports.push_back(r);
    return d;
}

} // namespace

TEST(ReportPaging, OffsetsFollowTheButtonsAndTheClamps)
{
    struct Case {
        int records, rows, start;
        std::vector<std::pair<ReportPaging, int>> presses; // button, page typed for GoTo
        std::vector<int> offsets;                          // FirstOffset after each press
    };
    using P = ReportPaging;
    const std::vector<Case> cases{
        {7, 3, 1, {{P::Next, 0}, {P::Next, 0}, {P::Next, 0}, {P::Previous, 0}, {P::First, 0}, {P::Previous, 0}}, {3, 6, 6, 3, 0, 0}},
        {7, 3, 1, {{P::Last, 0}, {P::GoTo, 2}, {P::GoTo, 9}, {P::GoTo, 0}}, {6, 3, 6, 0}},
        // A total that is a multiple of the rows: "last" lands on the empty page behind the end.
        {6, 3, 1, {{P::Last, 0}, {P::Next, 0}}, {6, 6}},
        // One row a page: the second clamp pulls "last" back onto the last record.
        {5, 1, 1, {{P::Last, 0}, {P::Next, 0}, {P::First, 0}, {P::Next, 0}}, {4, 4, 0, 1}},
        {5, 1, 3, {{P::Previous, 0}, {P::Previous, 0}}, {1, 0}},
        // Fewer records than rows: one page, the buttons do nothing.
        {2, 3, 1, {{P::Next, 0}, {P::Last, 0}}, {0, 0}},
        // Opening on a record shows the page that holds it.
        {10, 3, 5, {{P::Next, 0}}, {6}},
        {10, 3, 4, {{P::Previous, 0}}, {0}},
    };
    for (const Case &c : cases) {
        const Design design = reportDesign(c.rows);
        NumberedRecords records(design, c.records);
        auto report = ReportEngine::ReportLoading(design, 0);
        ASSERT_TRUE(report) << report.error().text.toStdString();
        ASSERT_TRUE(report->ReportStart(records, c.start).ok());
        EXPECT_EQ(report->RowsPerPage(), c.rows);
        EXPECT_EQ(report->NavigationMode(), c.records >= c.rows ? 0 : 4);
        for (size_t i = 0; i < c.presses.size(); ++i) {
            report->page(c.presses[i].first, records, c.presses[i].second);
            EXPECT_EQ(report->FirstOffset(), c.offsets[i]) << c.records << " records, " << c.rows << " rows, press " << i;
        }
    }
}

TEST(ReportFill, RowsTakeTheirRecordsAndTemplatesTheirValues)
{
    const Design design = reportDesign(3);
    NumberedRecords records(design, 7);
    auto report = ReportEngine::ReportLoading(design, 0);
    ASSERT_TRUE(report);
    ASSERT_TRUE(report->ReportStart(records, 1).ok());
    const int templ = 4, number = 5;
    EXPECT_EQ(report->labelCaption(0), QStringLiteral("1"));
    EXPECT_EQ(report->labelCaption(1), QStringLiteral("N1"));
    EXPECT_EQ(report->labelCaption(3), QStringLiteral("N3"));
    EXPECT_EQ(report->labelCaption(templ), QStringLiteral("No. N2 of C2"));
    EXPECT_EQ(report->labelCaption(number), QStringLiteral("1"));
    EXPECT_EQ(records.CurrentRecord(), 1); // the record shown before comes back

    // The last page: one row filled, two empty; the template's row is past the end and keeps its
    // tokens.
    report->page(ReportPaging::Last, records);
    EXPECT_EQ(report->labelCaption(0), QStringLiteral("3"));
    EXPECT_EQ(report->labelCaption(1), QStringLiteral("N7"));
    EXPECT_EQ(report->labelCaption(2), QString());
    EXPECT_EQ(report->labelCaption(3), QString());
    EXPECT_EQ(report->labelCaption(templ), QStringLiteral("No. F1=2$ of C1=2$"));
    EXPECT_EQ(report->recordsShown(records), (QVector<int>{7, 0, 0}));
}

TEST(ReportFill, SourcesAndSortOrdersMapRowsToRecords)
{
    const Design design = reportDesign(3);
    struct Case {
        ReportSource source;
        QVector<int> list;
        int sortMode;
        QVector<int> index; // entry 0 unused
        QVector<int> shown;
    };
    const std::vector<Case> cases{
        {ReportSource::AllRecords, {}, 0, {}, {1, 2, 3}},
        {ReportSource::AllRecords, {}, 1, {0, 5, 3, 1, 2, 4}, {5, 3, 1}},
        {ReportSource::AllRecords, {}, 2, {0, 5, 3, 1, 2, 4}, {4, 2, 1}},
        {ReportSource::SearchList, {4, 2}, 0, {}, {4, 2, 0}},
        {ReportSource::HitList, {5, 9, 1}, 0, {}, {5, 0, 1}}, // 9 is past the records: an empty row
    };
    for (const Case &c : cases) {
        NumberedRecords records(design, 5);
        records.sortMode = c.sortMode;
        records.sortIndex = c.index;
        auto report = ReportEngine::ReportLoading(design, 0);
        ASSERT_TRUE(report);
        report->setSource(c.source, c.list);
        ASSERT_TRUE(report->ReportStart(records, 5).ok());
        EXPECT_EQ(report->FirstOffset(), c.source == ReportSource::AllRecords ? 3 : 0);
        report->page(ReportPaging::First, records);
        EXPECT_EQ(report->recordsShown(records), c.shown) << int(c.source) << " sort " << c.sortMode;
    }
}

TEST(ReportPrint, PagesFromToMakeOneSheetEachAndACancelThrowsTheJobAway)
{
    const Design design = reportDesign(3);
    NumberedRecords records(design, 7);
    auto report = ReportEngine::ReportLoading(design, 0);
    ASSERT_TRUE(report);
    ASSERT_TRUE(report->ReportStart(records, 1).ok());
    EXPECT_EQ(report->pageCount(), 3);
    RecordPrinter drawing(design, QString());
    for (const auto &[from, to, sheets] : std::vector<std::tuple<int, int, int>>{{1, 3, 3}, {2, 3, 2}, {3, 3, 1}, {1, 1, 1}}) {
        ImageTarget target(QSizeF(report->pageWidth(), report->pageHeight()), 24);
        Printer printer(target);
        const Result<int> done = report->printPages(printer, drawing, records, from, to);
        ASSERT_TRUE(done) << done.error().text.toStdString();
        EXPECT_EQ(*done, sheets);
        EXPECT_EQ(int(target.pages().size()), sheets) << from << "-" << to;
    }
    bool cancel = true;
    report->setCancelFlag(&cancel);
    ImageTarget target(QSizeF(report->pageWidth(), report->pageHeight()), 24);
    Printer printer(target);
    printer.Print(QStringLiteral("started"));
    EXPECT_FALSE(report->printPages(printer, drawing, records, 1, 3));
    EXPECT_TRUE(target.pages().empty());
}

TEST(ReportLoading, EveryReportOfAnIndependentlyWrittenBlock)
{
    QTemporaryDir dir;
    const QString image = dir.filePath(QStringLiteral("app.exe"));
    const auto python = testsupport::runSupportScript(QStringLiteral("independent_design_writer.py"),
                                                      {image, dir.filePath(QStringLiteral("expected.json"))});
    ASSERT_EQ(python.exitCode, 0) << python.err.toStdString();
    const DesignLoad load = ReadDesign(image);
    ASSERT_TRUE(load.complete()) << load.error.text.toStdString();
    ASSERT_EQ(load.design.Reports.size(), 2u);

    // Report 1: shape and line counts 0 are the highest index (one each), a picture count of -1
    // is none, the label count 2 counts from 1; rows 1 and 2 make two records a page.
    auto first = ReportEngine::ReportLoading(load.design, 0);
    ASSERT_TRUE(first) << first.error().text.toStdString();
    EXPECT_EQ(first->definition().Shapes.size(), 1u);
    EXPECT_EQ(first->definition().Lines.size(), 1u);
    EXPECT_TRUE(first->definition().Pictures.empty());
    EXPECT_EQ(first->definition().Labels.size(), 2u);
    EXPECT_EQ(first->definition().Labels[0].Text, QStringLiteral("Итого"));
    NumberedRecords records(load.design, 5);
    ASSERT_TRUE(first->ReportStart(records, 1).ok());
    EXPECT_EQ(first->RowsPerPage(), 2);

    // Report 2 has no caption and so no definition; there is no report 3.
    for (int k : {1, 2}) {
        auto missing = ReportEngine::ReportLoading(load.design, k);
        ASSERT_FALSE(missing);
        EXPECT_FALSE(missing.error().text.isEmpty());
    }
}

TEST(ReportLoading, ABlockCutInsideItsReportsRefusesThatReportAndKeepsTheRest)
{
    const auto built = testsupport::buildExample(QStringLiteral("invoice"), QString(), [](Design &d) {
        ReportDefinition second = d.Reports.at(0);
        second.Caption = QStringLiteral("Second");
        d.Reports.push_back(second);
    });
    const DesignLoad whole = ReadDesignFromBytes(built.bytes);
    ASSERT_TRUE(whole.complete());
    ASSERT_EQ(whole.design.Reports.size(), 2u);

    // Cut the block 200 bytes before its end: inside the second report's labels.
    const qsizetype block = built.bytes.size() - built.headSize - 4;
    QByteArray cut = built.bytes.left(built.bytes.size() - 4 - 200);
    const qint32 distance = qint32(block - 200);
    cut.append(reinterpret_cast<const char *>(&distance), 4);
    const DesignLoad load = ReadDesignFromBytes(cut);
    ASSERT_FALSE(load.complete());
    EXPECT_GT(load.design.FieldCount, 20); // the page is there
    ASSERT_EQ(load.design.Reports.size(), 2u);

    auto damaged = ReportEngine::ReportLoading(load.design, 1);
    ASSERT_FALSE(damaged);
    EXPECT_TRUE(damaged.error().text.contains(QStringLiteral("damaged"))) << damaged.error().text.toStdString();
    auto intact = ReportEngine::ReportLoading(load.design, 0);
    ASSERT_TRUE(intact) << intact.error().text.toStdString();
    NumberedRecords records(load.design, 7);
    ASSERT_TRUE(intact->ReportStart(records, 1).ok());
    EXPECT_EQ(intact->RowsPerPage(), 10);
    EXPECT_EQ(intact->labelCaption(6), QStringLiteral("N1"));
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv); // fonts for measuring
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
