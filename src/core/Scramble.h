#pragma once
// The fixed byte substitution that hides formulas, captions, passwords and (when the design asks)
// whole records from casual reading. One table serves every database; it is not encryption.

#include <QByteArray>
#include <array>
#include <cstdint>

namespace ff {

struct ScrambleTables {
    std::array<uint8_t, 256> ScrambleTable{};
    std::array<uint8_t, 256> UnscrambleTable{};
};

// Builds both tables: ScrambleTable(i) = (i * 167 + 13) mod 256 and its inverse. Every tool that
// reads or writes designs and records must use exactly this permutation.
const ScrambleTables &BuildScrambleTables();

// Replace each byte c by ScrambleTable(c) / UnscrambleTable(c), in place; empty stays empty.
void ScrambleBytes(char *data, qsizetype size);
void UnscrambleBytes(char *data, qsizetype size);
QByteArray ScrambleText(QByteArray text);
QByteArray UnscrambleText(QByteArray text);

} // namespace ff
