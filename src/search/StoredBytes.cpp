#include "search/StoredBytes.h"

#include "core/Scramble.h"

namespace ff {

StoredBytes::StoredBytes(bool scrambled) : scrambled_(scrambled)
{
    const ScrambleTables &tables = BuildScrambleTables();
    for (int c = 0; c < 256; ++c)
        toPlain_[size_t(c)] = scrambled ? tables.UnscrambleTable[size_t(c)] : uint8_t(c);
    blank_ = scrambled ? tables.ScrambleTable[' '] : uint8_t(' ');
}

std::array<uint8_t, 256> StoredBytes::composed(const uint8_t *fold) const
{
    std::array<uint8_t, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[size_t(c)] = fold[toPlain_[size_t(c)]];
    return table;
}

} // namespace ff
