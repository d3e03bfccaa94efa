#include "design/BlockWriter.h"

#include "core/Scramble.h"

#include <QtEndian>

namespace ff {

BlockWriter::BlockWriter(const QByteArray &head, int fontCharset, const QMap<QString, QByteArray> &files)
    : head_(head), codePage_(fontCharset), files_(files)
{
    block_.reserve(64 * 1024);
}

void BlockWriter::fail(ErrorCode code, const QString &text)
{
    if (ok())
        error_ = makeError(code, QStringLiteral("step %1: %2").arg(step_).arg(text));
}

void BlockWriter::writeSlot(uint16_t tag, const void *value, int size)
{
    if (!ok())
        return;
    char slot[16] = {};
    qToLittleEndian(tag, slot);
    std::memcpy(slot + 2, value, size_t(size)); // little-endian platform, little-endian block
    block_.append(slot, 16);
}

void BlockWriter::item(bool value)
{
    const int16_t v = value ? -1 : 0;
    writeSlot(Boolean, &v, 2);
}

QByteArray BlockWriter::encode(const QString &value)
{
    QByteArray bytes = codePage_.encode(value);
    if (bytes.size() > 32767)
        fail(ErrorCode::Overflow, QStringLiteral("a text of %1 bytes, at most 32767 fit").arg(bytes.size()));
    return bytes;
}

void BlockWriter::writeTextBytes(const QByteArray &bytes)
{
    if (!ok())
        return;
    saltPos_ += 2;
    if (saltPos_ > head_.size()) {
        fail(ErrorCode::Invalid, QStringLiteral("the image head of %1 bytes is too short to salt this many texts").arg(head_.size()));
        return;
    }
    const uint8_t salt = static_cast<uint8_t>(head_[saltPos_ - 1]);
    const uint16_t field = static_cast<uint16_t>(bytes.size() + salt);
    char raw[2];
    qToLittleEndian(field, raw);
    block_.append(raw, 2);
    block_.append(bytes);
}

void BlockWriter::writePlainTextBytes(const QByteArray &bytes)
{
    if (!ok())
        return;
    char raw[2];
    qToLittleEndian(static_cast<uint16_t>(bytes.size()), raw);
    block_.append(raw, 2);
    block_.append(bytes);
}

void BlockWriter::scrambled(const QString &value)
{
    QByteArray bytes = encode(value);
    ScrambleBytes(bytes.data(), bytes.size());
    writeTextBytes(bytes);
}

void BlockWriter::embedded(const QString &name, bool)
{
    text(name);
    if (!ok() || name.isEmpty())
        return;
    const auto it = files_.constFind(name);
    if (it == files_.constEnd()) {
        fail(ErrorCode::FileNotFound, QStringLiteral("no data for the embedded file \"%1\"").arg(name));
        return;
    }
    char raw[4];
    qToLittleEndian(static_cast<int32_t>(it->size()), raw);
    block_.append(raw, 4);
    block_.append(*it);
    block_.append('\0'); // the spare byte after each file's data
}

} // namespace ff
