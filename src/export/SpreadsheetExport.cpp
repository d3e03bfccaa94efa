#include "export/SpreadsheetExport.h"

#include "export/ExcelFile.h"
#include "export/ExportWalk.h"

#include <algorithm>
#include <cmath>

namespace ff {

namespace {

constexpr int kCellText = 255;
constexpr double kTwipsPerPixel = 15;
constexpr int kRecordNumberPixels = 200;
constexpr int kCheckPixels = 200;

// Horizontal alignment of a cell from an element's Alignment (0 left, 1 right, 2 centred).
int cellAlignment(int alignment)
{
    switch (alignment) {
    case 1: return 3;
    case 2: return 2;
    default: return 1;
    }
}

} // namespace

SpreadsheetExport::SpreadsheetExport(const ExportSource &source, const PageAllowed &allowed)
    : source_(source), columns_(TabWalkColumns(source.design, allowed))
{
}

int SpreadsheetExport::widthInCharacters(double twips)
{
    return std::clamp(int(std::lround(twips / kTwipsPerPixel / 7.0)), 1, 255);
}

Result<ExportOutcome> SpreadsheetExport::run(const ExportRange &range, const QString &path, Progress *progress)
{
    const Design &d = source_.design;
    ExcelFile sheet;
    if (Status s = sheet.CreateFile(path); !s)
        return s.error();
    // A record the file refuses ends the export; what was written is closed with its EOF.
    Status failed;
    const auto keep = [&failed](Status s) {
        if (failed && !s)
            failed = s;
    };
    keep(sheet.PrintGridLines(false));
    for (const int margin : {ExcelFile::kTopMargin, ExcelFile::kLeftMargin, ExcelFile::kRightMargin, ExcelFile::kBottomMargin})
        keep(sheet.SetMargin(margin, 0.5));
    keep(sheet.SetFont("Arial", 10, 0));
    keep(sheet.SetFont("Arial", 10, 1));
    keep(sheet.SetFont("Arial", 10, 5));
    keep(sheet.SetFont("Courier", 12, 2));
    keep(sheet.SetColumnWidth(1, 1, int(std::lround(kRecordNumberPixels / 7.0))));
    int column = 1;
    for (const ExportColumn &c : columns_) {
        ++column;
        const double twips = c.kind == ElementKind::Check ? kCheckPixels * kTwipsPerPixel : c.width;
        keep(sheet.SetColumnWidth(column, column, widthInCharacters(twips)));
    }
    const QByteArray caption = source_.codePage.encode(d.MainCap).left(kCellText);
    keep(sheet.SetHeader(caption));
    keep(sheet.SetFooter(caption));

    ExportRecordReader reader(source_, ExportRecordReader::Mode::Values,
                              range.order() == BrowseOrder::FileOrder ? ExportRecordReader::Access::InOrder
                                                                      : ExportRecordReader::Access::Jumping);
    std::string value;
    const int first = range.ExportFirst();
    Result<WalkEnd> walked = WalkExportRange(range, progress, 100, [&](int index, int record) -> Status {
        if (Status s = reader.load(record); !s)
            return s;
        const int row = index - first + 1;
        keep(sheet.WriteValue(ExcelFile::kNumberValue, 0, 1, 0, row, 1, double(record)));
        int col = 1;
        for (const ExportColumn &c : columns_) {
            ++col;
            if (c.kind == ElementKind::Check) {
                keep(sheet.WriteValue(ExcelFile::kNumberValue, 0, 1, 0, row, col, reader.text(c).toDouble()));
                continue;
            }
            if (c.kind == ElementKind::Field) {
                const FieldElement &f = d.Fields[size_t(c.index)];
                if (f.FieldType >= 1 && f.FieldType <= 5) {
                    const double number = reader.hooks().NumberValue(reader.text(c), source_.decimalSeparator);
                    if (f.FieldType == 1)
                        keep(sheet.WriteValue(ExcelFile::kNumberValue, 0, 1, 0, row, col, number));
                    else
                        keep(sheet.WriteValue(ExcelFile::kNumberValue, 64, f.Alignment == 2 ? 2 : 3, 0, row, col, number));
                    continue;
                }
            }
            value.clear();
            reader.appendValue(c, value);
            QByteArray text = QByteArray::fromStdString(value);
            int alignment = 0;
            if (c.kind == ElementKind::Note) {
                text.replace("\r\n", " ");
                alignment = d.Notes[size_t(c.index)].Alignment;
            } else if (c.kind == ElementKind::Field) {
                alignment = d.Fields[size_t(c.index)].Alignment;
            }
            keep(sheet.WriteValue(ExcelFile::kLabelValue, 0, cellAlignment(alignment), 0, row, col, text.left(kCellText)));
        }
        return failed;
    });
    const Status closed = sheet.CloseFile();
    if (!walked)
        return walked.error();
    if (!closed)
        return closed.error();
    ExportOutcome outcome;
    outcome.path = path;
    outcome.records = walked->done;
    outcome.stopped = walked->stopped;
    return outcome;
}

} // namespace ff
