#include "search/SortIndexBuilder.h"

#include "search/CaseFold.h"
#include "search/FieldReader.h"
#include "search/RecordScanner.h"
#include "search/SearchNames.h"
#include "store/RecordStore.h"

#include <chrono>
#include <cstring>
#include <random>

namespace ff {

SortIndexBuilder::SortIndexBuilder(const Design &design, const RecordFile &file, int recordCount)
    : design_(design), file_(file), recordCount_(recordCount)
{
}

namespace {

// Fixed-width text slots compared as bytes: the texts are folded and blank padded.
struct TextSlots {
    uint8_t *base;
    int width;
    uint8_t *at(int64_t i) const { return base + i * width; }
    int compare(const uint8_t *a, const uint8_t *b) const { return std::memcmp(a, b, size_t(width)); }
    void swap(int64_t i, int64_t j, uint8_t *scratch) const
    {
        std::memcpy(scratch, at(i), size_t(width));
        std::memcpy(at(i), at(j), size_t(width));
        std::memcpy(at(j), scratch, size_t(width));
    }
};

} // namespace

void SortIndexBuilder::SortTextIndex(std::vector<uint8_t> &keys, int width, std::vector<int> &order, uint32_t seed)
{
    const int64_t n = int64_t(order.size());
    if (n < 2 || width <= 0)
        return;
    TextSlots s{keys.data(), width};
    std::vector<uint8_t> scratch(static_cast<size_t>(width)), pivot(static_cast<size_t>(width));
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> rnd(0.0, 1.0);
    auto exchange = [&](int64_t i, int64_t j) {
        s.swap(i, j, scratch.data());
        std::swap(order[size_t(i)], order[size_t(j)]);
    };
    // An explicit stack of ranges instead of recursion; the smaller part is taken first so the
    // stack stays short.
    std::vector<std::pair<int64_t, int64_t>> stack;
    stack.reserve(64);
    stack.push_back({0, n - 1});
    while (!stack.empty()) {
        auto [low, high] = stack.back();
        stack.pop_back();
        if (high - low < 10) {
            // Selection step.
            for (int64_t i = low; i < high; ++i) {
                int64_t smallest = i;
                for (int64_t j = i + 1; j <= high; ++j)
                    if (s.compare(s.at(j), s.at(smallest)) < 0)
                        smallest = j;
                if (smallest != i)
                    exchange(i, smallest);
            }
            continue;
        }
        const int64_t p = std::min(high, int64_t(rnd(random) * double(high - low) + 0.5 + double(low)));
        std::memcpy(pivot.data(), s.at(p), size_t(width));
        int64_t i = low, j = high;
        while (i <= j) {
            while (s.compare(s.at(i), pivot.data()) < 0)
                ++i;
            while (s.compare(s.at(j), pivot.data()) > 0)
                --j;
            if (i <= j) {
                if (i != j)
                    exchange(i, j);
                ++i;
                --j;
            }
        }
        const bool leftSmaller = (j - low) < (high - i);
        if (leftSmaller) {
            if (i < high) stack.push_back({i, high});
            if (low < j) stack.push_back({low, j});
        } else {
            if (low < j) stack.push_back({low, j});
            if (i < high) stack.push_back({i, high});
        }
    }
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
    if (!numeric)
        texts.resize(size_t(n) * size_t(field.length));
    else if (field.value == ValueKind::Float)
        floats.resize(size_t(n));
    else if (field.value == ValueKind::Whole)
        wholes.resize(size_t(n));
    else
        currencies.resize(size_t(n));

    const int step = std::max(1, progressStep);
    for (int64_t r = 1; r <= n; ++r) {
        if (progress && (r - 1) % step == 0) {
            progress->setPercent(int((r - 1) * 100 / n));
            if (progress->cancelled()) {
                out.aborted = true;
                return out;
            }
        }
        order[size_t(r - 1)] = int(r);
        const uint8_t *rec = scanner.record(r, RecordScanner::Access::Forward);
        const uint8_t *p = rec ? rec + field.offset : nullptr;
        if (!numeric) {
            uint8_t *slot = texts.data() + size_t(r - 1) * size_t(field.length);
            if (!p) {
                std::memset(slot, ' ', size_t(field.length));
                continue;
            }
            const uint8_t *t = fold.table();
            for (int k = 0; k < field.length; ++k)
                slot[k] = t[p[k]];
        } else if (field.value == ValueKind::Float) {
            floats[size_t(r - 1)] = p ? FieldReader::readDouble(p) : 0.0;
        } else if (field.value == ValueKind::Whole) {
            wholes[size_t(r - 1)] = p ? FieldReader::readInt32(p) : 0;
        } else {
            currencies[size_t(r - 1)] = p ? FieldReader::readInt64(p) : 0;
        }
    }
    if (!numeric) {
        const auto seed = uint32_t(std::chrono::steady_clock::now().time_since_epoch().count());
        SortTextIndex(texts, field.length, order, seed);
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

Status SortIndexBuilder::BuildSortIndex(RecordStore &store, const SearchField &field, int mode, Progress *progress)
{
    SortIndexBuilder builder(store.design(), store.file(), store.RecordCount);
    Result<Outcome> r = builder.build(field, progress);
    if (!r)
        return r.error();
    if (r->aborted) {
        store.SortMode = 0;
        return {};
    }
    store.SortIndex = r->SortIndex;
    store.SortMode = mode;
    return {};
}

} // namespace ff
