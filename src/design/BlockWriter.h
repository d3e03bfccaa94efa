#pragma once
// The writing side of the design block: the IO that DesignLayout::transfer drives to turn a Design
// into block bytes. Texts take their salts from the head of the very image the block is appended
// to, so the head must be long enough to hold a salt for every text (two bytes per text after
// position 100).

#include "core/CodePage.h"
#include "core/Result.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <cstdint>

namespace ff {

class BlockWriter {
public:
    static constexpr bool reading = false;

    // Slot type tags as the block stores them.
    enum Tag : uint16_t { Int16 = 2, Int32 = 3, Single = 4, Double = 5, Currency = 6, Date = 7, Boolean = 11, Byte = 17 };

    BlockWriter(const QByteArray &head, int fontCharset, const QMap<QString, QByteArray> &files);

    bool ok() const { return error_.code == ErrorCode::None; }
    const Error &error() const { return error_; }
    const QByteArray &block() const { return block_; }
    void step(int n) { step_ = n; }
    void fail(ErrorCode code, const QString &text);

    // Primitives.
    void writeSlot(uint16_t tag, const void *value, int size);
    void writeTextBytes(const QByteArray &bytes);      // salted
    void writePlainTextBytes(const QByteArray &bytes); // 16-bit length, no salt

    // The IO of DesignLayout.
    void item(bool value);
    void item(uint8_t value) { writeSlot(Byte, &value, 1); }
    void item(int16_t value) { writeSlot(Int16, &value, 2); }
    void item(int32_t value) { writeSlot(Int32, &value, 4); }
    void item(float value) { writeSlot(Single, &value, 4); }
    void item(double value) { writeSlot(Double, &value, 8); }
    void skipItem() { item(int16_t(0)); }
    void skipText() { writeTextBytes(QByteArray()); }
    void text(const QString &value) { writeTextBytes(encode(value)); }
    void scrambled(const QString &value);
    void plain(const QString &value) { writePlainTextBytes(encode(value)); }
    void embedded(const QString &name, bool last);
    void charsetKnown(int) {}

private:
    QByteArray encode(const QString &value);

    const QByteArray &head_;
    CodePage codePage_;
    const QMap<QString, QByteArray> &files_;
    QByteArray block_;
    qint64 saltPos_ = 100;
    int step_ = 0;
    Error error_;
};

} // namespace ff
