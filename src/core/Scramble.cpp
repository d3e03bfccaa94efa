#include "core/Scramble.h"

namespace ff {

const ScrambleTables &BuildScrambleTables()
{
    static const ScrambleTables tables = [] {
        ScrambleTables t;
        for (int i = 0; i < 256; ++i)
            t.ScrambleTable[i] = static_cast<uint8_t>((i * 167 + 13) % 256);
        for (int i = 0; i < 256; ++i)
            t.UnscrambleTable[t.ScrambleTable[i]] = static_cast<uint8_t>(i);
        return t;
    }();
    return tables;
}

static void mapBytes(char *data, qsizetype size, const std::array<uint8_t, 256> &table)
{
    auto *p = reinterpret_cast<uint8_t *>(data);
    for (qsizetype i = 0; i < size; ++i)
        p[i] = table[p[i]];
}

void ScrambleBytes(char *data, qsizetype size) { mapBytes(data, size, BuildScrambleTables().ScrambleTable); }
void UnscrambleBytes(char *data, qsizetype size) { mapBytes(data, size, BuildScrambleTables().UnscrambleTable); }

QByteArray ScrambleText(QByteArray text)
{
    ScrambleBytes(text.data(), text.size());
    return text;
}

QByteArray UnscrambleText(QByteArray text)
{
    UnscrambleBytes(text.data(), text.size());
    return text;
}

} // namespace ff
