#pragma once
// Counts of distinct record slices of one length, case folded: an open-addressing table over one
// pool of keys, so that a million slices cost a fold, a hash and a compare each and no allocation.
// Each entry keeps the least spelling (by byte) that was folded into it.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ff::charts {

class SliceCounts {
public:
    // `length`: the bytes of every slice; `fold`: 256 bytes, the case table.
    SliceCounts(int length, const uint8_t *fold) : length_(size_t(length > 0 ? length : 1)), fold_(fold)
    {
        folded_.resize(length_ + 8, ' '); // room for reading the last eight bytes whole
        resize(256);
    }

    void add(const uint8_t *plain)
    {
        // Only the bytes before the trailing blanks are folded (a blank folds to itself); the key is
        // hashed eight bytes at a time.
        size_t n = length_;
        while (n > 0 && plain[n - 1] == ' ')
            --n;
        for (size_t k = 0; k < n; ++k)
            folded_[k] = fold_[plain[k]];
        std::memset(folded_.data() + n, ' ', length_ - n);
        uint64_t hash = 0x9E3779B97F4A7C15ull ^ n;
        for (size_t k = 0; k < n; k += 8) {
            uint64_t chunk;
            std::memcpy(&chunk, folded_.data() + k, 8);
            hash = (hash ^ chunk) * 0xFF51AFD7ED558CCDull;
            hash ^= hash >> 29;
        }
        size_t at = size_t(hash) & mask_;
        while (counts_[at] != 0 && (hashes_[at] != hash || std::memcmp(key(at), folded_.data(), length_) != 0))
            at = (at + 1) & mask_;
        if (counts_[at] == 0) {
            hashes_[at] = hash;
            std::memcpy(key(at), folded_.data(), length_);
            std::memcpy(name(at), plain, length_);
            counts_[at] = 1;
            if (++size_ * 2 > counts_.size())
                resize(counts_.size() * 2);
            return;
        }
        if (std::memcmp(plain, name(at), length_) < 0)
            std::memcpy(name(at), plain, length_);
        ++counts_[at];
    }

    size_t size() const { return size_; }
    size_t length() const { return length_; }
    // Calls `visit(const uint8_t *name, int64_t count)` for each entry, in no particular order.
    template <class Visit>
    void forEach(Visit &&visit) const
    {
        for (size_t k = 0; k < counts_.size(); ++k)
            if (counts_[k] != 0)
                visit(names_.data() + k * length_, counts_[k]);
    }

private:
    uint8_t *key(size_t at) { return keys_.data() + at * length_; }
    uint8_t *name(size_t at) { return names_.data() + at * length_; }
    void resize(size_t capacity)
    {
        SliceCounts old(*this);
        hashes_.assign(capacity, 0);
        counts_.assign(capacity, 0);
        keys_.assign(capacity * length_, 0);
        names_.assign(capacity * length_, 0);
        mask_ = capacity - 1;
        for (size_t k = 0; k < old.counts_.size(); ++k) {
            if (old.counts_[k] == 0)
                continue;
            size_t at = size_t(old.hashes_[k]) & mask_;
            while (counts_[at] != 0)
                at = (at + 1) & mask_;
            hashes_[at] = old.hashes_[k];
            counts_[at] = old.counts_[k];
            std::memcpy(key(at), old.keys_.data() + k * length_, length_);
            std::memcpy(name(at), old.names_.data() + k * length_, length_);
        }
    }

    size_t length_;
    const uint8_t *fold_;
    std::vector<uint8_t> folded_;
    std::vector<uint64_t> hashes_;
    std::vector<int64_t> counts_; // a count of 0: a free slot
    std::vector<uint8_t> keys_, names_;
    size_t mask_ = 0;
    size_t size_ = 0;
};

} // namespace ff::charts
