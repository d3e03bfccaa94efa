#pragma once
// BuildSortIndex: the record numbers of all records in the ascending order of one element's
// value. Numbers, money and dates are sorted by a Shell sort (gaps 1, 4, 13, 40, ...). Texts are
// compared without case: the keys are folded once into fixed-width slots and sorted by a stable
// radix sort on eight bytes at a time, runs of equal bytes by the next eight; records with equal
// texts stay in record order. The keys are read in one walk in file order.

#include "core/Progress.h"
#include "core/Result.h"
#include "design/Design.h"
#include "search/SearchQuery.h"
#include "store/RecordFile.h"
#include "store/RecordStore.h"

#include <QVector>
#include <cstdint>

namespace ff {


class SortIndexBuilder {
public:
    SortIndexBuilder(const Design &design, const RecordFile &file, int recordCount);

    struct Outcome {
        QVector<int> SortIndex; // entry 0 unused; entries 1..RecordCount
        bool aborted = false;
    };
    // `field`: the focused element (SearchNames::describe). Invalid fields give an error.
    Result<Outcome> build(const SearchField &field, Progress *progress = nullptr, int progressStep = 65536) const;

    // Builds the index of the focused element and puts the store in `order` (SortIndexUp or
    // SortIndexDown). A stop press puts the store back in file order.
    static Status BuildSortIndex(RecordStore &store, const SearchField &field, BrowseOrder order, Progress *progress = nullptr);

    // The sorts themselves, for tests: ascending, moving `order` along with the keys.
    template <typename Key>
    static void ShellSort(std::vector<Key> &keys, std::vector<int> &order);
    // `keys` holds order.size() slots of `width` bytes each, slot i for order[i]. Puts `order`
    // in the ascending byte order of the slots; equal slots keep their order. `keys` is not moved.
    static void SortTextIndex(const std::vector<uint8_t> &keys, int width, std::vector<int> &order);

private:
    const Design &design_;
    const RecordFile &file_;
    int recordCount_;
};

template <typename Key>
void SortIndexBuilder::ShellSort(std::vector<Key> &keys, std::vector<int> &order)
{
    const size_t n = keys.size();
    size_t gap = 1;
    while (gap * 3 + 1 <= n)
        gap = gap * 3 + 1;
    for (;;) {
        for (size_t i = gap; i < n; ++i) {
            const Key k = keys[i];
            const int o = order[i];
            size_t j = i;
            while (j >= gap && keys[j - gap] > k) {
                keys[j] = keys[j - gap];
                order[j] = order[j - gap];
                j -= gap;
            }
            keys[j] = k;
            order[j] = o;
        }
        if (gap == 1)
            break;
        gap /= 3;
    }
}

} // namespace ff
