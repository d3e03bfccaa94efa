#pragma once
// Counts of distinct 64-bit values (numbers and dates in the fixed-point form): an open-addressing
// table with linear probing, two flat arrays and no allocation per value, so that a million values
// are counted in a few milliseconds.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace ff::charts {

class FixedCounts {
public:
    FixedCounts() { resize(1024); }

    void add(int64_t value)
    {
        size_t at = slot(value);
        while (counts_[at] != 0 && values_[at] != value)
            at = (at + 1) & mask_;
        if (counts_[at] == 0) {
            values_[at] = value;
            if (++size_ * 2 > counts_.size()) { // keep the table at most half full
                counts_[at] = 1;
                resize(counts_.size() * 2);
                return;
            }
        }
        ++counts_[at];
    }

    size_t size() const { return size_; }
    // The values and their counts, in no particular order.
    std::vector<std::pair<int64_t, int64_t>> entries() const
    {
        std::vector<std::pair<int64_t, int64_t>> out;
        out.reserve(size_);
        for (size_t k = 0; k < counts_.size(); ++k)
            if (counts_[k] != 0)
                out.emplace_back(values_[k], counts_[k]);
        return out;
    }

private:
    size_t slot(int64_t value) const { return size_t((uint64_t(value) * 0x9E3779B97F4A7C15ull) >> 20) & mask_; }
    void resize(size_t capacity)
    {
        std::vector<int64_t> values(capacity), counts(capacity);
        std::swap(values, values_);
        std::swap(counts, counts_);
        mask_ = capacity - 1;
        for (size_t k = 0; k < counts.size(); ++k) {
            if (counts[k] == 0)
                continue;
            size_t at = slot(values[k]);
            while (counts_[at] != 0)
                at = (at + 1) & mask_;
            values_[at] = values[k];
            counts_[at] = counts[k];
        }
    }

    std::vector<int64_t> values_, counts_; // a count of 0: a free slot
    size_t mask_ = 0;
    size_t size_ = 0;
};

} // namespace ff::charts
