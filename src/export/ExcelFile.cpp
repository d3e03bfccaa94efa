#include "export/ExcelFile.h"

#include <cstring>

namespace ff {

namespace {

void add16(QByteArray &b, uint16_t v)
{
    b.append(char(v & 0xFF));
    b.append(char(v >> 8));
}

void addDouble(QByteArray &b, double v)
{
    uint64_t bits;
    std::memcpy(&bits, &v, 8);
    for (int k = 0; k < 8; ++k, bits >>= 8)
        b.append(char(bits & 0xFF));
}

QByteArray lengthAndText(const QByteArray &text)
{
    QByteArray b;
    b.append(char(uint8_t(text.size())));
    b.append(text);
    return b;
}

} // namespace

uint16_t ExcelFile::fileRow(int row)
{
    if (row > 32767)
        row -= 65536;
    return uint16_t(row - 1);
}

Status ExcelFile::put(uint16_t opcode, const QByteArray &body)
{
    if (!file_.isOpen())
        return makeError(ErrorCode::PathError, QStringLiteral("the spreadsheet is not open"));
    QByteArray record;
    add16(record, opcode);
    add16(record, uint16_t(body.size()));
    record.append(body);
    if (file_.write(record) != record.size())
        return makeError(ErrorCode::PathError, file_.errorString());
    return {};
}

Status ExcelFile::CreateFile(const QString &name)
{
    if (file_.isOpen())
        file_.close();
    QFile::remove(name);
    file_.setFileName(name);
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(name, file_.errorString()));
    QByteArray bof;
    add16(bof, 2);  // version
    add16(bof, 10); // file type
    return put(kBof, bof);
}

Status ExcelFile::CloseFile()
{
    Status s = put(kEof, QByteArray());
    if (file_.isOpen()) {
        if (!file_.flush() && s)
            s = makeError(ErrorCode::PathError, file_.errorString());
        file_.close();
    }
    return s;
}

Status ExcelFile::putCell(uint16_t opcode, int attribute2, int attribute3, int attribute1, int row, int column,
                          const QByteArray &value)
{
    QByteArray body;
    add16(body, fileRow(row));
    add16(body, fileRow(column));
    body.append(char(uint8_t(attribute1)));
    body.append(char(uint8_t(attribute2)));
    body.append(char(uint8_t(attribute3)));
    body.append(value);
    return put(opcode, body);
}

Status ExcelFile::WriteValue(int valueType, int attribute2, int attribute3, int attribute1, int row, int column,
                             double value)
{
    switch (valueType) {
    case kIntegerValue: {
        if (!(value >= -32768.5 && value < 32767.5))
            return makeError(ErrorCode::Overflow, QStringLiteral("%1 does not fit a 16-bit cell").arg(value));
        QByteArray b;
        add16(b, uint16_t(int16_t(qRound(value))));
        return putCell(kInteger, attribute2, attribute3, attribute1, row, column, b);
    }
    case kNumberValue: {
        QByteArray b;
        addDouble(b, value);
        return putCell(kNumber, attribute2, attribute3, attribute1, row, column, b);
    }
    case kLabelValue: return WriteValue(valueType, attribute2, attribute3, attribute1, row, column, QByteArray::number(value, 'g', 15));
    default: return {};
    }
}

Status ExcelFile::WriteValue(int valueType, int attribute2, int attribute3, int attribute1, int row, int column,
                             const QByteArray &text)
{
    if (valueType == kLabelValue)
        return putCell(kLabel, attribute2, attribute3, attribute1, row, column, lengthAndText(text));
    if (valueType == kIntegerValue || valueType == kNumberValue)
        return WriteValue(valueType, attribute2, attribute3, attribute1, row, column, text.trimmed().toDouble());
    return {};
}

Status ExcelFile::SetMargin(int opcode, double value)
{
    if (opcode < kLeftMargin || opcode > kBottomMargin)
        return {};
    QByteArray b;
    addDouble(b, value);
    return put(uint16_t(opcode), b);
}

Status ExcelFile::SetColumnWidth(int first, int last, int width)
{
    const int units = width * 256;
    if (units < 0 || units > 0xFFFF)
        return makeError(ErrorCode::Overflow, QStringLiteral("column width %1 out of range").arg(width));
    QByteArray b;
    b.append(char(uint8_t(first - 1)));
    b.append(char(uint8_t(last - 1)));
    add16(b, uint16_t(units));
    return put(kColumnWidth, b);
}

Status ExcelFile::SetFont(const QByteArray &name, int height, int attributes)
{
    QByteArray b;
    add16(b, uint16_t(height * 20));
    b.append(char(uint8_t(attributes)));
    b.append(char(0));
    b.append(lengthAndText(name));
    return put(kFont, b);
}

Status ExcelFile::SetHeader(const QByteArray &text) { return put(kHeader, lengthAndText(text)); }
Status ExcelFile::SetFooter(const QByteArray &text) { return put(kFooter, lengthAndText(text)); }

Status ExcelFile::PrintGridLines(bool flag)
{
    QByteArray b;
    add16(b, flag ? 1 : 0);
    return put(kPrintGridLines, b);
}

Status ExcelFile::ProtectSpreadsheet(bool flag)
{
    QByteArray b;
    add16(b, flag ? 1 : 0);
    return put(kProtect, b);
}

} // namespace ff
