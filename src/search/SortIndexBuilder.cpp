#include "search/SortIndexBuilder.h"

#include "search/CaseFold.h"
#include "search/FieldReader.h"
#include "search/RecordScanner.h"
#include "search/StoredBytes.h"
#include "search/SearchNames.h"
#include "store/RecordStore.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ff {

SortIndexBuilder::SortIndexBuilder(const Design &design, const RecordFile &file, int recordCount)
    : design_(design), file_(file), recordCount_(recordCount)
{
}

namespace {

// One entry of the text sort: eight key bytes read big-endian, so that comparing two of them as
// numbers compares the bytes as memcmp does, and the slot the entry stands for.
struct TextEntry {
    uint64_t key;
    uint32_t slot;
};

uint64_t keyChunk(const uint8_t *slot, int width, int depth)
{
    uint8_t bytes[8] = {0, 0, 0, 0, 0, 0, 0, 0}; // a short last chunk: every slot is padded alike
    std::memcpy(bytes, slot + depth, size_t(std::min(8, width - depth)));
    uint64_t v;
    std::memcpy(&v, bytes, 8);
    return __builtin_bswap64(v);
}

// Stable sorts of entries [0, n) by key; `scratch` holds n entries.
void insertionSort(TextEntry *e, size_t n)
{
    for (size_t i = 1; i < n; ++i) {
        const TextEntry x = e[i];
        size_t j = i;
        while (j > 0 && e[j - 1].key > x.key) {
            e[j] = e[j - 1];
            --j;
        }
        e[j] = x;
    }
}

void radixSort(TextEntry *e, size_t n, TextEntry *scratch)
{
    // All eight byte counts in one pass; a byte that is the same in every entry needs no pass.
    std::vector<std::array<uint32_t, 256>> counts(8);
    for (auto &c : counts)
        c.fill(0);
    for (size_t i = 0; i < n; ++i)
        for (int d = 0; d < 8; ++d)
            ++counts[size_t(d)][(e[i].key >> (8 * d)) & 0xFF];
    TextEntry *from = e, *to = scratch;
    for (int d = 0; d < 8; ++d) {
        std::array<uint32_t, 256> &c = counts[size_t(d)];
        if (c[(e[0].key >> (8 * d)) & 0xFF] == n)
            continue;
        uint32_t sum = 0;
        for (uint32_t &v : c) {
            const uint32_t k = v;
            v = sum;
            sum += k;
        }
        for (size_t i = 0; i < n; ++i)
            to[c[(from[i].key >> (8 * d)) & 0xFF]++] = from[i];
        std::swap(from, to);
    }
    if (from != e)
        std::memcpy(e, from, n * sizeof(TextEntry));
}

// Orders entries [0, n) by the slot bytes from `depth` on: the next eight bytes first, then each
// run of equal bytes by the eight after them. Every step is stable, so equal slots keep the order
// they came in.
void sortByBytes(TextEntry *e, size_t n, const uint8_t *keys, int width, int depth, TextEntry *scratch)
{
    for (size_t i = 0; i < n; ++i)
        e[i].key = keyChunk(keys + size_t(e[i].slot) * size_t(width), width, depth);
    if (n <= 32)
        insertionSort(e, n);
    else
        radixSort(e, n, scratch);
    if (depth + 8 >= width)
        return;
    size_t run = 0;
    for (size_t i = 1; i <= n; ++i) {
        if (i < n && e[i].key == e[run].key)
            continue;
        if (i - run > 1)
            sortByBytes(e + run, i - run, keys, width, depth + 8, scratch);
        run = i;
    }
}

} // namespace

void SortIndexBuilder::SortTextIndex(const std::vector<uint8_t> &keys, int width, std::vector<int> &order)
{
    const size_t n = order.size();
    if (n < 2 || width <= 0)
        return;
    std::vector<TextEntry> entries(n), scratch(n);
    for (size_t i = 0; i < n; ++i)
        entries[i].slot = uint32_t(i);
    sortByBytes(entries.data(), n, keys.data(), width, 0, scratch.data());
    std::vector<int> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = order[entries[i].slot];
    order.swap(sorted);
}

Result<SortIndexBuilder::Outcome> SortIndexBuilder::build(const SearchField &field, Progress *progress, int progressStep) const
{
    if (!field.valid())
        return makeError(ErrorCode::Invalid, QStringLiteral("the element has no value in the record"));
    Outcome out;
    const int64_t n = recordCount_;
    RecordScanner scanner(file_, n, design_.ScrambleRecords == 1);
    std::vector<int> order(static_cast<size_t>(n));
    const bool numeric = field.kind == SearchKind::Field
                         && (field.value == ValueKind::Float || field.value == ValueKind::Whole || field.value == ValueKind::Currency);
    std::vector<double> floats;
    std::vector<int32_t> wholes;
    std::vector<int64_t> currencies;
    std::vector<uint8_t> texts;
    const CaseFold fold{CodePage(design_.FontCharset)};
    // Keys are read from the stored bytes where they lie, folded through the byte substitution.
    const StoredBytes stored(design_.ScrambleRecords == 1);
    const std::array<uint8_t, 256> composed = stored.composed(fold.table());
    if (!numeric)
        texts.resize(size_t(n) * size_t(field.length));
    else if (field.value == ValueKind::Float)
        floats.resize(size_t(n));
    else if (field.value == ValueKind::Whole)
        wholes.resize(size_t(n));
    else
        currencies.resize(size_t(n));

    const int step = std::max(1, progressStep);
    const int width = field.length;
    const uint8_t *table = composed.data();
    for (int64_t r = 1; r <= n; ++r) {
        if (progress && (r - 1) % step == 0) {
            progress->setPercent(int((r - 1) * 100 / n));
            if (progress->cancelled()) {
                out.aborted = true;
                return out;
            }
        }
        order[size_t(r - 1)] = int(r);
        scanner.prefetch(r + 8, field.offset, numeric ? 1 : width);
        const uint8_t *rec = scanner.stored(r, RecordScanner::Access::Forward);
        const uint8_t *p = rec ? rec + field.offset : nullptr;
        if (!numeric) {
            uint8_t *slot = texts.data() + size_t(r - 1) * size_t(width);
            if (!p) {
                std::memset(slot, ' ', size_t(width));
                continue;
            }
            for (int k = 0; k < width; ++k)
                slot[k] = table[p[k]];
        } else if (field.value == ValueKind::Float) {
            floats[size_t(r - 1)] = p ? stored.readDouble(p) : 0.0;
        } else if (field.value == ValueKind::Whole) {
            wholes[size_t(r - 1)] = p ? stored.readInt32(p) : 0;
        } else {
            currencies[size_t(r - 1)] = p ? stored.readInt64(p) : 0;
        }
    }
    if (!numeric) {
        SortTextIndex(texts, field.length, order);
    } else if (field.value == ValueKind::Float) {
        ShellSort(floats, order);
    } else if (field.value == ValueKind::Whole) {
        ShellSort(wholes, order);
    } else {
        ShellSort(currencies, order);
    }
    out.SortIndex.reserve(qsizetype(n) + 1);
    out.SortIndex.append(0);
    for (int r : order)
        out.SortIndex.append(r);
    if (progress)
        progress->setPercent(100);
    return out;
}

Status SortIndexBuilder::BuildSortIndex(RecordStore &store, const SearchField &field, BrowseOrder order, Progress *progress)
{
    SortIndexBuilder builder(store.design(), store.file(), store.RecordCount());
    Result<Outcome> r = builder.build(field, progress);
    if (!r)
        return r.error();
    if (r->aborted) {
        store.setBrowseOrder(BrowseOrder::FileOrder);
        return {};
    }
    store.setBrowseOrder(order, r->SortIndex);
    return {};
}

} // namespace ff
