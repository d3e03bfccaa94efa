#pragma once
// Values in variant file form, as the per-user file holds them: a 2-byte type tag, then the value.
// A text (tag 8) has a 2-byte length first. An array has the tag of its elements plus 0x2000, a
// 2-byte count of dimensions (always 1 here), the element count and lower bound as 4-byte integers,
// then the elements without tags (texts each with their 2-byte length). Little-endian throughout.

#include "core/Result.h"

#include <QByteArray>
#include <QVector>
#include <cstdint>

namespace ff {

class VariantFile {
public:
    enum Tag : uint16_t { Int16 = 2, Int32 = 3, Text = 8, Bool = 11, Byte = 17, ArrayFlag = 0x2000 };

    // Writing appends to the buffer.
    void writeText(const QByteArray &text);
    void writeInt32(int32_t value);
    void writeTextArray(const QVector<QByteArray> &items, int32_t lowerBound = 0);
    void writeByteArray(const QByteArray &items, int32_t lowerBound = 0);
    const QByteArray &bytes() const { return data_; }

    // Reading takes values in order from the start; a value that is not there or has another tag
    // is an error and leaves the position where it was.
    explicit VariantFile(QByteArray data = {}) : data_(std::move(data)) {}
    Result<QByteArray> readText();
    Result<int32_t> readInt32();
    Result<QVector<QByteArray>> readTextArray();
    Result<QByteArray> readByteArray();
    bool atEnd() const { return pos_ >= data_.size(); }

private:
    void put16(uint16_t v);
    void put32(uint32_t v);
    bool get16(qsizetype &at, uint16_t &v) const;
    bool get32(qsizetype &at, uint32_t &v) const;
    Result<int32_t> readArrayHead(qsizetype &at, uint16_t tag) const;

    QByteArray data_;
    qsizetype pos_ = 0;
};

} // namespace ff
