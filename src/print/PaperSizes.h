#pragma once
// The paper sizes of the print options: the names of PaperSize numbers 1 to 41, as the print
// options list them, and the sheet each number stands for. Number 0 is the custom sheet of the
// design page's own size.

#include <QPageSize>
#include <QString>

namespace ff::print {

class PaperSizes {
public:
    static constexpr int Count = 41;
    // The name of PaperSize `number` (1..41); empty for another number.
    static QString name(int number);
    // The sheet of PaperSize `number`; invalid for another number.
    static QPageSize pageSize(int number);
    // The number of a sheet (a standard size or its measures), 0 when none of the 41 is that sheet.
    static int numberOf(const QPageSize &size);
    // The custom entry: the printer's name followed by ", Custom".
    static QString customName(const QString &printerName) { return printerName + QStringLiteral(", Custom"); }
};

} // namespace ff::print
