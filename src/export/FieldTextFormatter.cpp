#include "export/FieldTextFormatter.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace ff {

namespace {

constexpr int64_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000,
                               10000000000LL};

// Money slots beyond this are rounded by the hooks on their 15 significant digits in a way the
// integer rounding below does not follow; they go to the hooks.
constexpr uint64_t kExactMoneyLimit = 100000000000000ULL; // 10^14 ten-thousandths

int64_t readInt64(const uint8_t *p)
{
    int64_t v;
    std::memcpy(&v, p, 8);
    return v;
}

int32_t readInt32(const uint8_t *p)
{
    int32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

double readDouble(const uint8_t *p)
{
    double v;
    std::memcpy(&v, p, 8);
    return v;
}

int decimalsOf(int type) { return type >= 2 && type <= 4 ? type : 0; }

int64_t powerOfTen(int exponent)
{
    int64_t p = 1;
    for (int k = 0; k < exponent; ++k)
        p *= 10;
    return p;
}

} // namespace

FieldTextFormatter::FieldTextFormatter(const Design &design, const FormulaHooks &hooks, const CodePage &codePage,
                                       QChar codecDecimalSeparator)
    : design_(design), codePage_(codePage), codecDecimalSeparator_(codecDecimalSeparator)
{
    const QString zero = QStringLiteral("0");
    zeros_.push_back(codePage_.encode(zero));
    for (int decimals = 2; decimals <= 4; ++decimals)
        zeros_.push_back(codePage_.encode(zero + codecDecimalSeparator + QString(decimals, QLatin1Char('0'))));
    std::array<int, 6> representative{};
    for (size_t i = 1; i < design.Fields.size(); ++i) {
        const int type = design.Fields[i].FieldType;
        if (type >= 1 && type <= 5 && representative[size_t(type)] == 0)
            representative[size_t(type)] = int(i);
    }
    for (int type = 1; type <= 5; ++type)
        if (representative[size_t(type)])
            learn(type, representative[size_t(type)], hooks);
}

double FieldTextFormatter::slotValue(int type, const uint8_t *slot)
{
    switch (type) {
    case 1: return readDouble(slot);
    case 5: return readInt32(slot);
    default: return double(readInt64(slot)) / 10000.0;
    }
}

bool FieldTextFormatter::zeroText(const char *text, size_t size) const
{
    if (design_.ShowZeros != 0)
        return false;
    for (const QByteArray &z : zeros_)
        if (size_t(z.size()) == size && std::memcmp(z.constData(), text, size) == 0)
            return true;
    return false;
}

QByteArray FieldTextFormatter::hookText(const FormulaHooks &hooks, int index, double value) const
{
    const QByteArray text = codePage_.encode(hooks.FormatFieldValue(design_, index, value));
    return zeroText(text.constData(), size_t(text.size())) ? QByteArray() : text;
}

bool FieldTextFormatter::appendFast(int type, const uint8_t *slot, std::string &out) const
{
    const Notation &n = notation_[size_t(type)];
    const size_t start = out.size();
    if (type == 1) {
        const double v = readDouble(slot);
        if (v == 0.0) {
            out += '0';
        } else {
            char buffer[64];
            const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::general, 15);
            if (r.ec != std::errc())
                return false;
            for (const char *p = buffer; p < r.ptr; ++p) {
                if (*p == '.')
                    out += n.point;
                else
                    out += (*p >= 'a' && *p <= 'z') ? char(*p - 'a' + 'A') : *p;
            }
        }
    } else {
        const int decimals = decimalsOf(type);
        bool negative;
        uint64_t units; // the value rounded to `decimals` places, in units of the last place
        if (type == 5) {
            const int32_t v = readInt32(slot);
            negative = v < 0;
            units = negative ? uint64_t(-int64_t(v)) : uint64_t(v);
        } else {
            const int64_t v = readInt64(slot);
            negative = v < 0;
            const uint64_t magnitude = negative ? uint64_t(0) - uint64_t(v) : uint64_t(v);
            if (magnitude >= kExactMoneyLimit)
                return false;
            const uint64_t step = uint64_t(kPowers[4 - decimals]);
            units = magnitude / step;
            if ((magnitude % step) * 2 >= step && step > 1)
                ++units; // halves away from zero
        }
        if (units == 0)
            negative = false;
        const uint64_t whole = units / uint64_t(kPowers[decimals]);
        const uint64_t fraction = units % uint64_t(kPowers[decimals]);
        char digits[24];
        const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, whole);
        const int count = int(r.ptr - digits);
        if (count > 10)
            return false;
        if (negative)
            out += n.minus;
        const uint32_t marks = n.marks[size_t(count)];
        for (int k = 0; k < count; ++k) {
            out += digits[k];
            const int fromRight = count - 1 - k;
            if (fromRight > 0 && (marks >> fromRight) & 1u)
                out += n.group;
        }
        if (decimals > 0) {
            out += n.point;
            char frac[8];
            for (int k = decimals - 1; k >= 0; --k) {
                frac[k] = char('0' + fraction / uint64_t(kPowers[decimals - 1 - k]) % 10);
            }
            out.append(frac, size_t(decimals));
        }
    }
    if (zeroText(out.data() + start, out.size() - start))
        out.resize(start);
    return true;
}

void FieldTextFormatter::appendNumber(int index, const uint8_t *slot, std::string &out, const FormulaHooks &hooks) const
{
    const int type = design_.Fields[size_t(index)].FieldType;
    if (fast(type) && appendFast(type, slot, out))
        return;
    const QByteArray text = hookText(hooks, index, slotValue(type, slot));
    out.append(text.constData(), size_t(text.size()));
}

void FieldTextFormatter::learn(int type, int index, const FormulaHooks &hooks)
{
    Notation &n = notation_[size_t(type)];
    n.fast = false;
    const int decimals = decimalsOf(type);
    const auto text = [&](double value) { return codePage_.encode(hooks.FormatFieldValue(design_, index, value)); };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };

    // The sign before 1, and the point between 0 and 5 (type 1 shows 0.5 as "0<point>5").
    const QByteArray minusOne = text(-1.0);
    const qsizetype one = minusOne.indexOf('1');
    if (one < 1)
        return;
    n.minus = minusOne.left(one).toStdString();
    if (type == 1 || decimals > 0) {
        const QByteArray half = text(0.5);
        if (half.size() < 3 || half.front() != '0' || half.at(half.size() - (type == 1 ? 1 : decimals)) != '5')
            return;
        n.point = half.mid(1, half.size() - 1 - (type == 1 ? 1 : decimals)).toStdString();
    }
    // Group marks for 1..10 integer digits, read from 1, 12, 123, ... 1234567890.
    if (type != 1) {
        for (int count = 1; count <= 10; ++count) {
            const int64_t value = int64_t(1234567890) / kPowers[10 - count];
            QByteArray t = text(double(value));
            if (decimals > 0)
                t.chop(qsizetype(n.point.size()) + decimals);
            uint32_t marks = 0;
            int seen = 0;
            qsizetype k = 0;
            while (k < t.size()) {
                if (isDigit(t[k])) {
                    ++seen;
                    ++k;
                    continue;
                }
                const qsizetype from = k;
                while (k < t.size() && !isDigit(t[k]))
                    ++k;
                const std::string mark = t.mid(from, k - from).toStdString();
                if (seen == 0 || (!n.group.empty() && mark != n.group))
                    return;
                n.group = mark;
                marks |= 1u << (count - seen);
            }
            if (seen != count)
                return;
            n.marks[size_t(count)] = marks;
        }
    }

    // The proof: the hooks' own texts over values of every size, both signs and the halves.
    std::vector<uint8_t> slot(8);
    auto agrees = [&](double value, int64_t stored) {
        if (type == 1)
            std::memcpy(slot.data(), &value, 8);
        else if (type == 5) {
            const int32_t v = int32_t(stored);
            std::memcpy(slot.data(), &v, 4);
        } else
            std::memcpy(slot.data(), &stored, 8);
        std::string mine;
        n.fast = true;
        const bool taken = appendFast(type, slot.data(), mine);
        n.fast = false;
        if (!taken)
            return true; // left to the hooks anyway
        const QByteArray theirs = hookText(hooks, index, slotValue(type, slot.data()));
        return mine == theirs.toStdString();
    };
    uint64_t seed = 0x9E3779B97F4A7C15ULL;
    const auto next = [&seed]() {
        seed ^= seed << 13;
        seed ^= seed >> 7;
        seed ^= seed << 17;
        return seed;
    };
    std::vector<int64_t> samples = {0, 1, -1, 5, -5, 49, 50, 51, -50, 99, 100, 150, 9999, 10000, 10001, 12345,
                                    -12345, 99995, 99994, 999999, 1000000, 1234567, 125000, 1250000, 2147483647,
                                    -2147483647 - 1, 99999999999999, -99999999999999, 10000000000000};
    for (int digits = 1; digits <= 14; ++digits)
        for (int k = 0; k < 24; ++k) {
            const int64_t v = int64_t(next() % uint64_t(powerOfTen(digits)));
            samples.push_back((k & 1) ? -v : v);
        }
    for (const int64_t s : samples) {
        if (type == 5 && (s > INT32_MAX || s < INT32_MIN))
            continue;
        const double value = type == 1 ? double(s) / 997.0 : (type == 5 ? double(s) : double(s) / 10000.0);
        if (!agrees(value, s))
            return;
    }
    if (type == 1) {
        for (const double v : {1e-5, 1.5e-300, 1e15, 1e16, 123456789012345678.0, 0.1, 2.675, -3.25e-7, 1e300})
            if (!agrees(v, 0))
                return;
    }
    n.fast = true;
}

void DateTextCache::append(const Design &design, const FormulaHooks &hooks, const CodePage &codePage, int index,
                           int64_t stored, std::string &out)
{
    if (stored == 0)
        return; // a zero date shows empty
    if (size_t(index) >= fields_.size())
        fields_.resize(size_t(index) + 1);
    FieldDates &f = fields_[size_t(index)];
    const auto make = [&] { return codePage.encode(hooks.FormatFieldValue(design, index, double(stored) / 10000.0)); };
    constexpr int64_t kDays = 1 << 18; // about 700 years around the first date seen
    if (stored % 10000 == 0) {
        const int64_t day = stored / 10000;
        if (f.days.empty())
            f.firstDay = day - kDays / 2;
        const int64_t at = day - f.firstDay;
        if (at >= 0 && at < kDays) {
            if (size_t(at) >= f.days.size())
                f.days.resize(std::min<size_t>(size_t(kDays), (size_t(at) / 4096 + 1) * 4096));
            DayText &d = f.days[size_t(at)];
            if (d.size == 0xFF) {
                const QByteArray text = make();
                if (text.size() <= qsizetype(sizeof d.text)) {
                    d.size = uint8_t(text.size());
                    std::memcpy(d.text, text.constData(), size_t(text.size()));
                } else {
                    out.append(text.constData(), size_t(text.size()));
                    return;
                }
            }
            out.append(d.text, d.size);
            return;
        }
    }
    auto it = f.others.find(stored);
    if (it == f.others.end()) {
        if (f.others.size() >= 65536)
            f.others.clear(); // dates with times of day seldom repeat: keep the memory bounded
        it = f.others.emplace(stored, make()).first;
    }
    out.append(it->second.constData(), size_t(it->second.size()));
}

} // namespace ff
