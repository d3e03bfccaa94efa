#include "search/FieldReader.h"

#include "formula/DateNumber.h"
#include "formula/DateReader.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace ff {

FieldReader::FieldReader(QChar decimalSeparator, QLocale locale, StoredBytes stored)
    : separator_(decimalSeparator.unicode() < 128 ? static_cast<char>(decimalSeparator.unicode()) : '.'),
      locale_(std::move(locale)), stored_(stored)
{
}

namespace {

// The plain bytes of a stored slice: the slice itself in a plain file, else a copy on the stack
// (or the heap for a long note).
class PlainSlice {
public:
    PlainSlice(const StoredBytes &stored, const uint8_t *p, int length)
    {
        if (!stored.scrambled()) {
            data_ = p;
            return;
        }
        uint8_t *into = buffer_;
        if (length > int(sizeof buffer_)) {
            heap_.resize(size_t(length));
            into = heap_.data();
        }
        stored.copyPlain(p, length, into);
        data_ = into;
    }
    const uint8_t *data() const { return data_; }

private:
    const uint8_t *data_ = nullptr;
    uint8_t buffer_[256];
    std::vector<uint8_t> heap_;
};

} // namespace

double FieldReader::storedVal(const uint8_t *p, int length) const
{
    const int n = stored_.trimmedLength(p, length);
    const PlainSlice plain(stored_, p, n);
    return valBytes(plain.data(), n);
}

int64_t FieldReader::toFixed(double value)
{
    const double scaled = std::nearbyint(value * 10000.0);
    if (!(std::fabs(scaled) < 9.2e18))
        return scaled < 0 ? INT64_MIN : INT64_MAX;
    return static_cast<int64_t>(scaled);
}

double FieldReader::valBytes(const uint8_t *p, int length) const
{
    char buf[80];
    int n = 0;
    for (int i = 0; i < length && n < 79; ++i) {
        char c = static_cast<char>(p[i]);
        if (c == ' ' || c == '\t' || c == '\n' || c == ',' || c == '\'' || p[i] == 0xA0)
            continue;
        if (separator_ != '.') {
            if (c == '.')
                continue;
            if (c == separator_)
                c = '.';
        }
        buf[n++] = c;
    }
    // The leading number: sign, digits, one point, an exponent in E or D.
    int i = 0;
    if (i < n && (buf[i] == '+' || buf[i] == '-'))
        ++i;
    bool digits = false;
    while (i < n && buf[i] >= '0' && buf[i] <= '9') {
        ++i;
        digits = true;
    }
    if (i < n && buf[i] == '.') {
        ++i;
        while (i < n && buf[i] >= '0' && buf[i] <= '9') {
            ++i;
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    if (i < n && (buf[i] == 'E' || buf[i] == 'e' || buf[i] == 'D' || buf[i] == 'd')) {
        int j = i + 1;
        if (j < n && (buf[j] == '+' || buf[j] == '-'))
            ++j;
        if (j < n && buf[j] >= '0' && buf[j] <= '9') {
            buf[i] = 'e';
            while (j < n && buf[j] >= '0' && buf[j] <= '9')
                ++j;
            i = j;
        }
    }
    buf[i] = '\0';
    return std::strtod(buf, nullptr);
}

bool FieldReader::timeValue(const uint8_t *p, int length, double &day) const
{
    int i = 0;
    while (i < length && p[i] == ' ')
        ++i;
    int parts[3] = {0, 0, 0};
    int count = 0;
    bool ok = true;
    while (count < 3) {
        int digits = 0, v = 0;
        while (i < length && p[i] >= '0' && p[i] <= '9' && digits < 3) {
            v = v * 10 + (p[i++] - '0');
            ++digits;
        }
        if (digits == 0) {
            ok = false;
            break;
        }
        parts[count++] = v;
        if (i < length && p[i] == ':')
            ++i;
        else
            break;
    }
    if (ok && count >= 2) {
        while (i < length && p[i] == ' ')
            ++i;
        int hours = parts[0];
        if (i + 1 < length && (p[i + 1] == 'm' || p[i + 1] == 'M')) {
            const uint8_t ap = p[i] | 0x20;
            if (ap == 'p' && hours < 12)
                hours += 12;
            else if (ap == 'a' && hours == 12)
                hours = 0;
            i += 2;
        }
        while (i < length && p[i] == ' ')
            ++i;
        if (i == length && hours < 24 && parts[1] < 60 && parts[2] < 60) {
            day = (hours * 3600 + parts[1] * 60 + parts[2]) / 86400.0;
            return true;
        }
    }
    return dateValue(p, length, day);
}

bool FieldReader::dateValue(const uint8_t *p, int length, double &day) const
{
    const std::optional<double> d = ReadDate(QString::fromLatin1(reinterpret_cast<const char *>(p), length).trimmed(), locale_);
    if (!d)
        return false;
    day = *d;
    return true;
}

bool FieldReader::fixedValue(const SearchField &f, const uint8_t *record, int64_t &out) const
{
    const uint8_t *p = record + f.offset;
    switch (f.value) {
    case ValueKind::Currency: out = stored_.readInt64(p); return true;
    case ValueKind::Whole: out = int64_t(stored_.readInt32(p)) * 10000; return true;
    case ValueKind::Float: out = toFixed(stored_.readDouble(p)); return true;
    case ValueKind::CheckByte: {
        const uint8_t c = stored_.plain(p[0]);
        out = (c >= '0' && c <= '9') ? int64_t(c - '0') * 10000 : 0;
        return true;
    }
    case ValueKind::Text:
    case ValueKind::NumberText: out = toFixed(storedVal(p, f.length)); return true;
    case ValueKind::TimeText:
    case ValueKind::DateText: {
        const int n = stored_.trimmedLength(p, f.length);
        double day = 0;
        if (n == 0) {
            out = 0;
            return true;
        }
        const PlainSlice plain(stored_, p, n);
        const bool read = f.value == ValueKind::TimeText ? timeValue(plain.data(), n, day) : dateValue(plain.data(), n, day);
        if (!read)
            return false;
        out = toFixed(day);
        return true;
    }
    }
    return false;
}

double FieldReader::numberValue(const SearchField &f, const uint8_t *record) const
{
    const uint8_t *p = record + f.offset;
    switch (f.value) {
    case ValueKind::Currency: return double(stored_.readInt64(p)) / 10000.0;
    case ValueKind::Whole: return stored_.readInt32(p);
    case ValueKind::Float: return stored_.readDouble(p);
    default: {
        int64_t v = 0;
        return fixedValue(f, record, v) ? double(v) / 10000.0 : 0.0;
    }
    }
}

} // namespace ff
