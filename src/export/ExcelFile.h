#pragma once
// A worksheet in the oldest binary spreadsheet format (BIFF version 2): a flat stream of records,
// each a 16-bit opcode, a 16-bit length of what follows and that many bytes, little-endian, with
// no container around it. Texts are single bytes, one a character, after a one-byte length.
//
// Rows and columns are given from 1 and stored from 0; a number above 32767 has 65536 taken off
// first, so that rows 32768 to 65536 go through as the 16-bit pattern. The BOF record names
// version 2 and file type 10. A text of more than 255 characters gets a length byte that does not
// match it while the record length counts every character: callers cut texts to 255 first.
//
// Each call returns what went wrong; a failed call writes nothing more and the file stays open.

#include "core/Result.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace ff {

class ExcelFile {
public:
    enum Opcode : uint16_t {
        kBof = 9,
        kEof = 10,
        kInteger = 2,
        kNumber = 3,
        kLabel = 4,
        kLeftMargin = 38,
        kRightMargin = 39,
        kTopMargin = 40,
        kBottomMargin = 41,
        kColumnWidth = 36,
        kFont = 49,
        kHeader = 20,
        kFooter = 21,
        kPrintGridLines = 43,
        kProtect = 18,
    };
    enum ValueType { kIntegerValue = 0, kNumberValue = 1, kLabelValue = 2 };

    // Removes a file of that name and starts the new one with BOF.
    Status CreateFile(const QString &name);
    // EOF, then the file is closed.
    Status CloseFile();

    // Value type 0 writes INTEGER (16 bits), 1 NUMBER, 2 LABEL (the value as text); any other type
    // writes nothing. The attributes are each narrowed to one byte.
    Status WriteValue(int valueType, int attribute2, int attribute3, int attribute1, int row, int column, double value);
    Status WriteValue(int valueType, int attribute2, int attribute3, int attribute1, int row, int column,
                      const QByteArray &text);
    // Opcodes 38 to 41; the value in inches.
    Status SetMargin(int opcode, double value);
    // Columns from 1; the width in characters.
    Status SetColumnWidth(int first, int last, int width);
    // The height in points.
    Status SetFont(const QByteArray &name, int height, int attributes);
    Status SetHeader(const QByteArray &text);
    Status SetFooter(const QByteArray &text);
    Status PrintGridLines(bool flag);
    Status ProtectSpreadsheet(bool flag);

    static uint16_t fileRow(int row); // 1-based as given, to the stored 16-bit pattern

private:
    Status put(uint16_t opcode, const QByteArray &body);
    Status putCell(uint16_t opcode, int attribute2, int attribute3, int attribute1, int row, int column,
                   const QByteArray &value);

    QFile file_;
};

} // namespace ff
