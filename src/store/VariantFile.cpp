#include "store/VariantFile.h"

namespace ff {

static Error damaged(const char *what) { return makeError(ErrorCode::Truncated, QString::fromLatin1(what)); }

void VariantFile::put16(uint16_t v)
{
    data_.append(static_cast<char>(v & 0xFF));
    data_.append(static_cast<char>(v >> 8));
}

void VariantFile::put32(uint32_t v)
{
    put16(static_cast<uint16_t>(v & 0xFFFF));
    put16(static_cast<uint16_t>(v >> 16));
}

bool VariantFile::get16(qsizetype &at, uint16_t &v) const
{
    if (at + 2 > data_.size())
        return false;
    v = static_cast<uint16_t>(static_cast<uint8_t>(data_[at]) | (static_cast<uint8_t>(data_[at + 1]) << 8));
    at += 2;
    return true;
}

bool VariantFile::get32(qsizetype &at, uint32_t &v) const
{
    uint16_t lo = 0, hi = 0;
    if (at + 4 > data_.size() || !get16(at, lo) || !get16(at, hi))
        return false;
    v = lo | (uint32_t(hi) << 16);
    return true;
}

void VariantFile::writeText(const QByteArray &text)
{
    put16(Text);
    const QByteArray t = text.left(0xFFFF);
    put16(static_cast<uint16_t>(t.size()));
    data_.append(t);
}

void VariantFile::writeInt32(int32_t value)
{
    put16(Int32);
    put32(static_cast<uint32_t>(value));
}

void VariantFile::writeTextArray(const QVector<QByteArray> &items, int32_t lowerBound)
{
    put16(ArrayFlag | Text);
    put16(1);
    put32(static_cast<uint32_t>(items.size()));
    put32(static_cast<uint32_t>(lowerBound));
    for (const QByteArray &item : items) {
        const QByteArray t = item.left(0xFFFF);
        put16(static_cast<uint16_t>(t.size()));
        data_.append(t);
    }
}

void VariantFile::writeByteArray(const QByteArray &items, int32_t lowerBound)
{
    put16(ArrayFlag | Byte);
    put16(1);
    put32(static_cast<uint32_t>(items.size()));
    put32(static_cast<uint32_t>(lowerBound));
    data_.append(items);
}

Result<QByteArray> VariantFile::readText()
{
    qsizetype at = pos_;
    uint16_t tag = 0, length = 0;
    if (!get16(at, tag) || tag != Text || !get16(at, length) || at + length > data_.size())
        return damaged("per-user file: text expected");
    pos_ = at + length;
    return data_.mid(at, length);
}

Result<int32_t> VariantFile::readInt32()
{
    qsizetype at = pos_;
    uint16_t tag = 0;
    uint32_t v = 0;
    if (!get16(at, tag) || tag != Int32 || !get32(at, v))
        return damaged("per-user file: number expected");
    pos_ = at;
    return static_cast<int32_t>(v);
}

Result<int32_t> VariantFile::readArrayHead(qsizetype &at, uint16_t tag) const
{
    uint16_t t = 0, dims = 0;
    uint32_t count = 0, lower = 0;
    if (!get16(at, t) || t != tag || !get16(at, dims) || dims != 1 || !get32(at, count) || !get32(at, lower))
        return damaged("per-user file: array expected");
    if (count > uint32_t(data_.size()))
        return damaged("per-user file: array too long");
    return static_cast<int32_t>(count);
}

Result<QVector<QByteArray>> VariantFile::readTextArray()
{
    qsizetype at = pos_;
    Result<int32_t> count = readArrayHead(at, ArrayFlag | Text);
    if (!count)
        return count.error();
    QVector<QByteArray> items;
    for (int32_t k = 0; k < *count; ++k) {
        uint16_t length = 0;
        if (!get16(at, length) || at + length > data_.size())
            return damaged("per-user file: array cut short");
        items.push_back(data_.mid(at, length));
        at += length;
    }
    pos_ = at;
    return items;
}

Result<QByteArray> VariantFile::readByteArray()
{
    qsizetype at = pos_;
    Result<int32_t> count = readArrayHead(at, ArrayFlag | Byte);
    if (!count)
        return count.error();
    if (at + *count > data_.size())
        return damaged("per-user file: array cut short");
    pos_ = at + *count;
    return data_.mid(at, *count);
}

} // namespace ff
