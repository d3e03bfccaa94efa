#pragma once
// The spreadsheet export: one BIFF 2 worksheet (ExcelFile), a row a record, the record number in
// the first column and then the columns of the tab walk. Before the rows: no grid lines, margins
// of half an inch, four fonts (Arial 10 plain, bold and bold underlined; Courier 12 italic), the
// column widths from the elements' widths and the design's main caption as header and footer.
//
// Numbers (text fields of types 1 to 5, check fields) go in as NUMBER cells, everything else as
// LABEL cells; a note's CR LF becomes one blank, and texts are cut to the 255 characters a cell
// holds. Rows count from 1 in the order of the range.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportColumns.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "export/ExportRecordReader.h"

namespace ff {

class SpreadsheetExport {
public:
    SpreadsheetExport(const ExportSource &source, const PageAllowed &allowed);

    static QString fileName(const QString &base) { return base + QStringLiteral(".xls"); }
    Result<ExportOutcome> run(const ExportRange &range, const QString &path, Progress *progress);

    // Column widths in characters: twips as pixels (15 a pixel), divided by 7, rounded, at least 1.
    static int widthInCharacters(double twips);

private:
    const ExportSource &source_;
    std::vector<ExportColumn> columns_;
};

} // namespace ff
