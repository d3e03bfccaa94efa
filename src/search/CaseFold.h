#pragma once
// Lower-casing of raw record bytes in the design's code page: a 256-byte table, built once per
// code page, so that the search folds case without turning bytes into text. Multi-byte pages fold
// ASCII letters only, so that lead and trail bytes are never changed.

#include "core/CodePage.h"

#include <QByteArray>
#include <array>
#include <cstdint>

namespace ff {

class CaseFold {
public:
    explicit CaseFold(const CodePage &codePage);
    // A table that changes nothing: what match-case uses.
    static CaseFold identity();

    const uint8_t *table() const { return table_.data(); }
    uint8_t operator()(uint8_t c) const { return table_[c]; }
    QByteArray fold(QByteArray bytes) const;
    bool isIdentity() const { return identity_; }

private:
    CaseFold() = default;
    std::array<uint8_t, 256> table_{};
    bool identity_ = false;
};

} // namespace ff
