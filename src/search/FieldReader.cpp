#include "search/FieldReader.h"

#include "formula/DateNumber.h"
#include "formula/DateReader.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace ff {

FieldReader::FieldReader(QChar decimalSeparator, QLocale locale)
    : separator_(decimalSeparator.unicode() < 128 ? static_cast<char>(decimalSeparator.unicode()) : '.'),
      locale_(std::move(locale))
{
}

int64_t FieldReader::toFixed(double value)
{
    const double scaled = std::nearbyint(value * 10000.0);
    if (!(std::fabs(scaled) < 9.2e18))
        return scaled < 0 ? INT64_MIN : INT64_MAX;
    return static_cast<int64_t>(scaled);
}

double FieldReader::readDouble(const uint8_t *p)
{
    double v;
    std::memcpy(&v, p, 8); // the records are little-endian, as is this machine
    return v;
}

int64_t FieldReader::readInt64(const uint8_t *p)
{
    int64_t v;
    std::memcpy(&v, p, 8);
    return v;
}

int32_t FieldReader::readInt32(const uint8_t *p)
{
    int32_t v;
    std::memcpy(&v, p, 4);
    return v;
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
    case ValueKind::Currency: out = readInt64(p); return true;
    case ValueKind::Whole: out = int64_t(readInt32(p)) * 10000; return true;
    case ValueKind::Float: out = toFixed(readDouble(p)); return true;
    case ValueKind::CheckByte: out = (p[0] >= '0' && p[0] <= '9') ? int64_t(p[0] - '0') * 10000 : 0; return true;
    case ValueKind::Text:
    case ValueKind::NumberText: out = toFixed(valBytes(p, trimmedLength(p, f.length))); return true;
    case ValueKind::TimeText: {
        const int n = trimmedLength(p, f.length);
        double day = 0;
        if (n == 0) {
            out = 0;
            return true;
        }
        if (!timeValue(p, n, day))
            return false;
        out = toFixed(day);
        return true;
    }
    case ValueKind::DateText: {
        const int n = trimmedLength(p, f.length);
        double day = 0;
        if (n == 0) {
            out = 0;
            return true;
        }
        if (!dateValue(p, n, day))
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
    case ValueKind::Currency: return double(readInt64(p)) / 10000.0;
    case ValueKind::Whole: return readInt32(p);
    case ValueKind::Float: return readDouble(p);
    default: {
        int64_t v = 0;
        return fixedValue(f, record, v) ? double(v) / 10000.0 : 0.0;
    }
    }
}

} // namespace ff
