#pragma once
// How the bytes of a record file stand for the plain record: as they are, or through the byte
// substitution when the design scrambles its records. The walks read records in place as they
// are stored and turn into plain bytes only what a test or a column needs: a number's eight
// bytes, a slice copied for a date reader. Text tests need no copy at all: the case-fold table
// is composed with the substitution once, and the matcher folds stored bytes straight to plain
// folded ones. The substitution works byte by byte, so a field's slice sits at the same place in
// both forms.

#include <array>
#include <cstdint>
#include <cstring>

namespace ff {

class StoredBytes {
public:
    explicit StoredBytes(bool scrambled);

    bool scrambled() const { return scrambled_; }
    // The stored form of a blank: trailing blanks are trimmed on this byte.
    uint8_t blank() const { return blank_; }
    // The plain byte of a stored one.
    uint8_t plain(uint8_t stored) const { return toPlain_[stored]; }
    // A table that maps a stored byte through the substitution and then through `fold`.
    std::array<uint8_t, 256> composed(const uint8_t *fold) const;

    // The plain bytes of `length` stored ones, written to `into`.
    void copyPlain(const uint8_t *stored, int length, uint8_t *into) const
    {
        if (!scrambled_) {
            std::memcpy(into, stored, size_t(length));
            return;
        }
        for (int k = 0; k < length; ++k)
            into[k] = toPlain_[stored[k]];
    }

    // Little-endian numbers of the record, as the plain record holds them.
    template <typename Number>
    Number readNumber(const uint8_t *p) const
    {
        uint8_t b[sizeof(Number)];
        copyPlain(p, int(sizeof(Number)), b);
        Number v;
        std::memcpy(&v, b, sizeof v);
        return v;
    }
    int64_t readInt64(const uint8_t *p) const { return readNumber<int64_t>(p); }
    int32_t readInt32(const uint8_t *p) const { return readNumber<int32_t>(p); }
    double readDouble(const uint8_t *p) const { return readNumber<double>(p); }

    // The length of a stored slice without its trailing blanks.
    int trimmedLength(const uint8_t *p, int length) const
    {
        while (length > 0 && p[length - 1] == blank_)
            --length;
        return length;
    }

private:
    bool scrambled_;
    uint8_t blank_;
    std::array<uint8_t, 256> toPlain_{};
};

} // namespace ff
