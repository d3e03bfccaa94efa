#include "toolkit/ListSort.h"

#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/NumberText.h"

#include <QLocale>
#include <chrono>
#include <cmath>
#include <limits>

namespace ff::toolkit {

ListSort::ListSort()
    : random_(static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count()))
{
}

// The record number at the head of a row: plain digits are read at once, anything else the way
// Val reads a number.
static int32_t rowNumberOf(QStringView head)
{
    if (!head.isEmpty() && head.size() <= 9) {
        int32_t v = 0;
        bool digits = true;
        for (QChar c : head) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
                digits = false;
                break;
            }
            v = v * 10 + (c.unicode() - '0');
        }
        if (digits)
            return v;
    }
    return int32_t(std::clamp(Val(head.toString()), -2147483648.0, 2147483647.0));
}

void ListSort::AddArray(const QStringList &rows)
{
    listTop_ = int(rows.size()) - 1;
    const size_t n = size_t(rows.size());
    rowNumber_.assign(n, 0);
    for (auto &c : columns_)
        c.assign(n, QString());
    rowOrder_.resize(n);
    rowSelected_.assign(n, 0);
    for (size_t i = 0; i < n; ++i) {
        // The pieces between the "~" marks; a short row leaves its last columns empty. Tens of
        // thousands of rows come at once: the row is cut in place, each cell copied once.
        const QStringView row(rows[qsizetype(i)]);
        qsizetype start = 0;
        for (int piece = 0; piece <= kColumns; ++piece) {
            qsizetype end = row.indexOf(QLatin1Char('~'), start);
            if (end < 0)
                end = row.size();
            const QStringView cell = start <= row.size() ? row.mid(start, end - start) : QStringView();
            if (piece == 0)
                rowNumber_[i] = rowNumberOf(cell);
            else
                columns_[size_t(piece - 1)][i] = cell.toString();
            start = end + 1;
        }
        rowOrder_[i] = int32_t(i);
    }
    sortColumn_ = 0;
}

Status ListSort::ASearchTypes(int column, int kind)
{
    if (column < 0 || column > kColumns)
        return Error{ErrorCode::SubscriptOutOfRange, QStringLiteral("column %1 out of range").arg(column)};
    kinds_[size_t(column)] = static_cast<ColumnKind>(std::clamp(kind, 0, 255));
    return {};
}

ColumnKind ListSort::columnKind(int column) const
{
    return column >= 0 && column <= kColumns ? kinds_[size_t(column)] : ColumnKind::None;
}

bool ListSort::pressColumn(int column)
{
    if (column <= 0 || column > kColumns)
        return false;
    if (column == sortColumn_) {
        reverse();
        return true;
    }
    const ColumnKind kind = kinds_[size_t(column)];
    if (kind != ColumnKind::Text && kind != ColumnKind::Currency && kind != ColumnKind::Date
        && kind != ColumnKind::Whole)
        return false; // any other kind leaves the rows in their order
    sortBy(column);
    return true;
}

void ListSort::sortBy(int column)
{
    for (size_t i = 0; i < rowOrder_.size(); ++i)
        rowOrder_[i] = int32_t(i);
    const std::vector<QString> &texts = columns_[size_t(column - 1)];
    switch (kinds_[size_t(column)]) {
    case ColumnKind::Text: {
        // Texts compare ignoring case: fold each key once rather than at every comparison.
        std::vector<QString> keys(texts.size());
        for (size_t i = 0; i < texts.size(); ++i)
            keys[i] = texts[i].toCaseFolded();
        VeryQuickSort(keys, rowOrder_, [](const QString &a, const QString &b) { return a < b; }, random_);
        break;
    }
    case ColumnKind::Currency:
    case ColumnKind::Date: {
        const bool date = kinds_[size_t(column)] == ColumnKind::Date;
        std::vector<int64_t> keys(texts.size());
        for (size_t i = 0; i < texts.size(); ++i)
            keys[i] = date ? DateKey(texts[i]) : CurrencyKey(texts[i]);
        VeryQuickSort(keys, rowOrder_, std::less<int64_t>(), random_);
        break;
    }
    case ColumnKind::Whole: {
        std::vector<int32_t> keys(texts.size());
        for (size_t i = 0; i < texts.size(); ++i)
            keys[i] = WholeKey(texts[i]);
        VeryQuickSort(keys, rowOrder_, std::less<int32_t>(), random_);
        break;
    }
    case ColumnKind::None:
        return;
    }
    sortColumn_ = column;
}

void ListSort::reverse()
{
    // Entry k changes places with entry ListTop - k; stopping at the middle keeps the middle pair
    // of an even count from being exchanged twice.
    for (int k = 0; k < listTop_ - k; ++k)
        std::swap(rowOrder_[size_t(k)], rowOrder_[size_t(listTop_ - k)]);
}

QString ListSort::GetText(int row) const
{
    QStringList parts;
    for (int c = 0; c < kColumns; ++c)
        parts << columns_[size_t(c)][size_t(row)];
    return parts.join(QLatin1Char(','));
}

void ListSort::clearMarks() { std::fill(rowSelected_.begin(), rowSelected_.end(), uint8_t(0)); }

int ListSort::markedCount() const { return int(std::count(rowSelected_.begin(), rowSelected_.end(), uint8_t(1))); }

int ListSort::RemoveText(const QString &name)
{
    const size_t n = rowNumber_.size();
    std::vector<int32_t> newIndex(n, -1);
    size_t kept = 0;
    for (size_t i = 0; i < n; ++i) {
        const bool goes = rowSelected_[i] != 0
            || (!name.isEmpty() && columns_[0][i].compare(name, Qt::CaseInsensitive) == 0);
        if (goes)
            continue;
        newIndex[i] = int32_t(kept);
        if (kept != i) {
            rowNumber_[kept] = rowNumber_[i];
            for (auto &c : columns_)
                c[kept] = std::move(c[i]);
            rowSelected_[kept] = rowSelected_[i];
        }
        ++kept;
    }
    const int removed = int(n - kept);
    if (removed == 0)
        return 0;
    std::vector<int32_t> order;
    order.reserve(kept);
    for (int32_t row : rowOrder_)
        if (newIndex[size_t(row)] >= 0)
            order.push_back(newIndex[size_t(row)]);
    rowOrder_ = std::move(order);
    rowNumber_.resize(kept);
    for (auto &c : columns_)
        c.resize(kept);
    rowSelected_.resize(kept);
    listTop_ -= removed;
    return removed;
}

std::vector<int32_t> ListSort::ImportReport() const
{
    std::vector<int32_t> out;
    out.reserve(rowOrder_.size());
    for (int32_t row : rowOrder_)
        out.push_back(rowNumber_[size_t(row)]);
    return out;
}

int64_t ListSort::CurrencyKey(const QString &text)
{
    // The list shows amounts as the locale formats them: drop its currency symbol and group
    // separators before reading the number.
    const QLocale locale;
    QString t = text;
    t.remove(locale.currencySymbol(QLocale::CurrencySymbol));
    const bool negative = t.contains(QLatin1Char('(')) && t.contains(QLatin1Char(')'));
    t.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
    CleanNumber(t, QString(locale.decimalPoint()));
    double v = Val(t) * 10000.0;
    if (negative)
        v = -std::abs(v);
    if (!std::isfinite(v))
        return 0;
    return int64_t(std::clamp(std::round(v), -9.2e18, 9.2e18));
}

int64_t ListSort::DateKey(const QString &text)
{
    const std::optional<double> day = ReadDate(text, QLocale());
    return day ? int64_t(std::llround(*day * 10000.0)) : 0;
}

int32_t ListSort::WholeKey(const QString &text)
{
    QString t = text;
    CleanNumber(t, QString(QLocale().decimalPoint()));
    const double v = Val(t);
    if (!std::isfinite(v))
        return 0;
    return int32_t(std::clamp(std::nearbyint(v), double(std::numeric_limits<int32_t>::min()),
                              double(std::numeric_limits<int32_t>::max())));
}

} // namespace ff::toolkit
