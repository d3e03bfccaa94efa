#pragma once
// The content and order of the sortable list, without the widget: one row per hit with a record
// number and eleven text columns. The rows never move; sorting and reversing only change RowOrder,
// the row index shown at each place.
//
// A press on column i (1 to 11) sorts by that column's kind with a random-pivot quick sort over
// the column's keys; a second press on the same column reverses the order without sorting. The
// sort is not stable: equal keys may land in any order.

#include "core/Result.h"

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

namespace ff::toolkit {

enum class ColumnKind : uint8_t { None = 0, Text = 1, Currency = 2, Date = 3, Whole = 4 };

class ListSort {
public:
    static constexpr int kColumns = 11;        // text columns 1..11
    static constexpr int kSelectionSize = 10;  // ranges up to this size go to the selection step

    ListSort();

    // Replaces the content: one "~"-separated text per row, the record number first, then the
    // columns. ListTop becomes the upper bound of `rows` (-1 for none); SortColumn goes back to 0.
    void AddArray(const QStringList &rows);
    // Kinds 1 text, 2 currency, 3 date, 4 whole number; a column outside 0..11 is a failure.
    Status ASearchTypes(int column, int kind);
    ColumnKind columnKind(int column) const;

    // The press on the button of column i: 0 does nothing, a new column sorts, the same column
    // reverses. Returns true when the order changed.
    bool pressColumn(int column);
    int SortColumn() const { return sortColumn_; }

    int ListTop() const { return listTop_; }
    int rowCount() const { return listTop_ + 1; }
    QString ListCount() const { return QString::number(listTop_); }

    // Row i is the row's index in its arrays; place p is where it is shown.
    int rowAt(int place) const { return rowOrder_[size_t(place)]; }
    const std::vector<int32_t> &RowOrder() const { return rowOrder_; }
    int32_t GetContentNo(int row) const { return rowNumber_[size_t(row)]; }
    const QString &column(int row, int column) const { return columns_[size_t(column - 1)][size_t(row)]; }
    // All columns of row i joined with ",".
    QString GetText(int row) const;

    bool isMarked(int row) const { return rowSelected_[size_t(row)] != 0; }
    void setMarked(int row, bool marked) { rowSelected_[size_t(row)] = marked ? 1 : 0; }
    void clearMarks();
    int markedCount() const;
    // The record number of row i when it is marked, else -1.
    int32_t PrintSelection(int row) const { return isMarked(row) ? rowNumber_[size_t(row)] : -1; }

    // Removes the marked rows and, when `name` is not empty, the rows whose first column equals it
    // (ignoring case). The arrays close up, the remaining rows keep their relative order on screen.
    // Returns the number removed.
    int RemoveText(const QString &name = QString());

    // The record numbers in the order shown: what the export and report code take as ResultSet.
    std::vector<int32_t> ImportReport() const;

    // The random pivots come from a generator seeded from the clock; tests may fix the seed.
    void setSeed(uint32_t seed) { random_.seed(seed); }

    // Key conversions per kind. A text that is no number or date gives 0.
    static int64_t CurrencyKey(const QString &text);
    static int64_t DateKey(const QString &text);
    static int32_t WholeKey(const QString &text);

    // The quick sort shared by the three kinds: sorts keys[0..n) and moves `order` along with them.
    // `less` is the strict order of the keys.
    template <typename Key, typename Less>
    static void VeryQuickSort(std::vector<Key> &keys, std::vector<int32_t> &order, Less less, std::mt19937 &random);

private:
    int listTop_ = -1;
    std::vector<int32_t> rowNumber_;
    std::array<std::vector<QString>, kColumns> columns_;
    std::vector<int32_t> rowOrder_;
    std::vector<uint8_t> rowSelected_;
    std::array<ColumnKind, kColumns + 1> kinds_{};
    int sortColumn_ = 0;
    std::mt19937 random_;

    void sortBy(int column);
    void reverse();
};

template <typename Key, typename Less>
void ListSort::VeryQuickSort(std::vector<Key> &keys, std::vector<int32_t> &order, Less less, std::mt19937 &random)
{
    const int n = int(keys.size());
    if (n < 2)
        return;
    const auto exchange = [&](int a, int b) {
        std::swap(keys[size_t(a)], keys[size_t(b)]);
        std::swap(order[size_t(a)], order[size_t(b)]);
    };
    // An explicit stack of (low, high) ranges replaces recursion; each partition pushes at most
    // two ranges and pops one, so n pairs always suffice.
    std::vector<std::pair<int, int>> stack;
    stack.reserve(size_t(n));
    stack.emplace_back(0, n - 1);
    std::uniform_real_distribution<double> rnd(0.0, 1.0);
    while (!stack.empty()) {
        const auto [low, high] = stack.back();
        stack.pop_back();
        if (high - low + 1 <= kSelectionSize) {
            // Selection step: put the smallest of the rest at each position.
            for (int pos = low; pos < high; ++pos) {
                int smallest = pos + 1;
                for (int k = pos + 2; k <= high; ++k)
                    if (less(keys[size_t(k)], keys[size_t(smallest)]))
                        smallest = k;
                if (less(keys[size_t(smallest)], keys[size_t(pos)]))
                    exchange(smallest, pos);
            }
            continue;
        }
        // A random pivot keeps lists that arrive in order from degrading the sort.
        const int at = int(rnd(random) * (high - low) + 0.5 + low);
        const Key pivot = keys[size_t(std::min(at, high))];
        int left = low, right = high;
        while (left <= right) {
            while (less(keys[size_t(left)], pivot))
                ++left;
            while (less(pivot, keys[size_t(right)]))
                --right;
            if (left <= right) {
                exchange(left, right);
                ++left;
                --right;
            }
        }
        if (low < right)
            stack.emplace_back(low, right);
        if (left < high)
            stack.emplace_back(left, high);
    }
}

} // namespace ff::toolkit
