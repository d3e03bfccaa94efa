#include "formula/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace ff {

namespace {

// A decimal number text made of an optional sign, digits, a point and an "e" exponent, read as
// strtod reads it (correctly rounded; beyond the range of a double, infinite or zero) without
// strtod's cost of locale handling.
double readDecimal(const std::string &number)
{
    const char *first = number.data();
    const char *last = first + number.size();
    const bool negative = first != last && *first == '-';
    if (first != last && (*first == '+' || *first == '-'))
        ++first;
    double value = 0.0;
    const std::from_chars_result read = std::from_chars(first, last, value);
    if (read.ec != std::errc())
        return std::strtod(number.c_str(), nullptr);
    return negative ? -value : value;
}

} // namespace

QString &CleanNumber(QString &text, const QString &decimalSeparator)
{
    const bool otherPoint = decimalSeparator.compare(QLatin1String("."), Qt::CaseInsensitive) != 0 && !decimalSeparator.isEmpty();
    const char16_t sep = decimalSeparator.isEmpty() ? 0 : decimalSeparator.front().unicode();
    if (otherPoint && (decimalSeparator.size() != 1 || QChar(sep).isLetter() || sep >= 128)) {
        // A separator of several characters, or one that matches in another case: step by step.
        text.remove(QLatin1Char('.'));
        text.replace(decimalSeparator, QLatin1String("."), Qt::CaseInsensitive);
        text.remove(QLatin1Char(','));
        text.remove(QLatin1Char('\''));
        text.remove(QChar(0xA0));
        return text;
    }
    // One pass, in the order of the steps: a "." goes (unless it is the separator), the separator
    // becomes ".", then every ",", "'" and character 160 goes. Most texts need none of it and are
    // left as they are, unshared.
    const auto goes = [&](char16_t c) {
        return (otherPoint && c == '.') || c == ',' || c == '\'' || c == 0xA0;
    };
    const QChar *begin = text.constData();
    const qsizetype size = text.size();
    qsizetype first = 0;
    while (first < size && !goes(begin[first].unicode()) && !(otherPoint && begin[first].unicode() == sep))
        ++first;
    if (first == size)
        return text;
    QString out;
    out.reserve(size);
    out.append(begin, first);
    for (qsizetype k = first; k < size; ++k) {
        const char16_t c = begin[k].unicode();
        if (otherPoint && c == sep)
            out.append(QLatin1Char('.'));
        else if (!goes(c))
            out.append(begin[k]);
    }
    text = std::move(out);
    return text;
}

QString CleanNumberCopy(QString text, const QString &decimalSeparator)
{
    CleanNumber(text, decimalSeparator);
    return text;
}

namespace {

// Val on ASCII bytes with the blanks already gone.
double valOfBytes(const char *s, size_t size)
{
    size_t i = 0;
    if (i < size && (s[i] == '+' || s[i] == '-'))
        ++i;
    bool digits = false;
    while (i < size && s[i] >= '0' && s[i] <= '9') {
        ++i;
        digits = true;
    }
    if (i < size && s[i] == '.') {
        ++i;
        while (i < size && s[i] >= '0' && s[i] <= '9') {
            ++i;
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    std::string number(s, i);
    if (i < size && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        size_t j = i + 1;
        std::string exponent = "e";
        if (j < size && (s[j] == '+' || s[j] == '-'))
            exponent.push_back(s[j++]);
        bool expDigits = false;
        while (j < size && s[j] >= '0' && s[j] <= '9') {
            exponent.push_back(s[j++]);
            expDigits = true;
        }
        if (expDigits)
            number += exponent;
    }
    return readDecimal(number);
}

} // namespace

double Val(const QString &text)
{
    // The characters with blanks, tabs and line feeds taken out; anything beyond ASCII stops the
    // number as a "?" would.
    char small[64];
    std::string large;
    char *s = small;
    size_t size = 0;
    if (text.size() >= qsizetype(sizeof small)) {
        large.resize(size_t(text.size()));
        s = large.data();
    }
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u == ' ' || u == '\t' || u == '\n')
            continue;
        s[size++] = u < 128 ? static_cast<char>(u) : '?';
    }
    return valOfBytes(s, size);
}

namespace {

bool digits15(double x, long long &digits, int &exponent);

// What printf's "%.15G" writes, from the value's fifteen digits; -1 where those are left to the
// text conversion.
int general15(double value, char *out)
{
    long long digits = 0;
    int e = 0;
    if (!std::isfinite(value) || !digits15(std::fabs(value), digits, e))
        return -1;
    char d[15];
    for (int k = 14; k >= 0; --k) {
        d[k] = char('0' + digits % 10);
        digits /= 10;
    }
    int used = 15; // significant digits without the trailing zeros
    while (used > 1 && d[used - 1] == '0')
        --used;
    char *p = out;
    if (value < 0)
        *p++ = '-';
    if (e < -4 || e >= 15) {
        *p++ = d[0];
        if (used > 1) {
            *p++ = '.';
            for (int k = 1; k < used; ++k)
                *p++ = d[k];
        }
        *p++ = 'E';
        *p++ = e < 0 ? '-' : '+';
        const int size = std::abs(e);
        if (size < 10)
            *p++ = '0';
        p = std::to_chars(p, p + 4, size).ptr;
    } else if (e >= 0) {
        for (int k = 0; k <= e; ++k)
            *p++ = k < used ? d[k] : '0';
        if (used > e + 1) {
            *p++ = '.';
            for (int k = e + 1; k < used; ++k)
                *p++ = d[k];
        }
    } else {
        *p++ = '0';
        *p++ = '.';
        for (int k = 0; k < -e - 1; ++k)
            *p++ = '0';
        for (int k = 0; k < used; ++k)
            *p++ = d[k];
    }
    return int(p - out);
}

} // namespace

QString NumberToText(double value, const QString &decimalSeparator)
{
    if (value == 0.0)
        return QStringLiteral("0");
    char buffer[64];
    int size = general15(value, buffer);
    if (size < 0) {
        // to_chars writes what printf's "%.15g" writes, in lower case.
        const char *end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15).ptr;
        size = int(end - buffer);
        for (int k = 0; k < size; ++k) {
            if (buffer[k] == 'e')
                buffer[k] = 'E';
        }
    }
    QString text = QString::fromLatin1(buffer, size);
    if (decimalSeparator != QLatin1String("."))
        text.replace(QLatin1Char('.'), decimalSeparator);
    return text;
}

namespace {

// The value's 15 significant digits as d.dddddddddddddde+XX, as printf's "%.14e" writes them.
char *scientific15(double value, char (&buffer)[64])
{
    char *end = std::to_chars(buffer, buffer + sizeof buffer - 1, std::fabs(value), std::chars_format::scientific, 14).ptr;
    *end = '\0';
    return end;
}

// Rounds the 15 significant digits of `value` at `decimals` places; `halfEven` picks the tie rule.
double roundDecimal(double value, int decimals, bool halfEven)
{
    if (!std::isfinite(value) || value == 0.0)
        return value == 0.0 ? 0.0 : value;
    if (const std::optional<DecimalDigits> d = RoundedDigits(value, decimals, halfEven)) {
        if (d->digits == 0)
            return 0.0;
        std::string out = d->negative ? "-" : "";
        out += std::to_string(d->digits);
        out += 'e';
        out += std::to_string(-decimals);
        return readDecimal(out);
    }
    char buffer[64];
    scientific15(value, buffer);
    return readDecimal(buffer) * (value < 0 ? -1 : 1);
}

// The 15 significant digits of `x` (> 0) and its decimal exponent, as "%.14e" writes them
// (digits x 10^(exponent - 14) is x rounded to 15 digits), worked out in 64-bit-mantissa
// arithmetic: x times an exact power of ten is off by less than 10^-4 of a unit of the last digit,
// so only values within that of a tie between two roundings (and those beyond the exact powers)
// are left to the text conversion. False for those.
bool digits15(double x, long long &digits, int &exponent)
{
    static const long double powers[] = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,  1e9L,
                                         1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L, 1e18L, 1e19L,
                                         1e20L, 1e21L, 1e22L, 1e23L, 1e24L, 1e25L, 1e26L, 1e27L};
    int binary = 0;
    std::frexp(x, &binary);
    int e = int(std::floor((binary - 1) * 0.30102999566398120)); // log10 of x, or one below
    for (int tries = 0; tries < 2; ++tries) {
        const int k = 14 - e;
        if (k < 0 || k > 27)
            return false;
        const long double scaled = static_cast<long double>(x) * powers[k];
        if (scaled >= 1e15L) {
            ++e;
            continue;
        }
        if (scaled < 1e14L)
            return false;
        const long double whole = std::floor(scaled);
        const long double fraction = scaled - whole;
        if (std::fabs(fraction - 0.5L) < 1e-3L)
            return false;
        digits = static_cast<long long>(whole) + (fraction > 0.5L ? 1 : 0);
        if (digits == 1000000000000000LL) {
            digits = 100000000000000LL;
            ++e;
        }
        exponent = e;
        return true;
    }
    return false;
}

} // namespace

std::optional<DecimalDigits> RoundedDigits(double value, int decimals, bool halfEven)
{
    if (!std::isfinite(value))
        return std::nullopt;
    if (value == 0.0)
        return DecimalDigits{};
    long long digits = 0;
    int exponent = 0;
    if (!digits15(std::fabs(value), digits, exponent)) {
        char buffer[64];
        scientific15(value, buffer);
        const char *p = buffer;
        for (; *p && *p != 'e'; ++p) {
            if (*p >= '0' && *p <= '9')
                digits = digits * 10 + (*p - '0');
        }
        exponent = *p == 'e' ? std::atoi(p + 1) : 0;
    }
    // digits x 10^(exponent - 14) is the value; keep the digits down to 10^-decimals.
    const int keep = exponent + 1 + decimals;
    if (keep >= 15)
        return std::nullopt; // nothing to round: the 15 digits reach below 10^-decimals
    if (keep < 0)
        return DecimalDigits{};
    const int drop = 15 - keep;
    long long scale = 1;
    for (int k = 0; k < drop; ++k)
        scale *= 10;
    long long kept = digits / scale;
    const long long rest = digits % scale;
    const long long half = scale / 2;
    if (rest > half || (rest == half && (!halfEven || (kept % 2) != 0)))
        ++kept;
    return DecimalDigits{value < 0 && kept != 0, kept};
}

double RoundHalfEven(double value, int decimals) { return roundDecimal(value, decimals, true); }
double RoundHalfAway(double value, int decimals) { return roundDecimal(value, decimals, false); }

std::optional<double> ParseNumericText(const QString &text)
{
    const QString t = text.trimmed();
    if (t.isEmpty())
        return std::nullopt;
    bool ok = false;
    const QByteArray bytes = t.toLatin1();
    // Only plain decimal notation, an optional sign, point and exponent.
    int i = 0;
    const int n = bytes.size();
    if (i < n && (bytes[i] == '+' || bytes[i] == '-'))
        ++i;
    bool digits = false;
    while (i < n && bytes[i] >= '0' && bytes[i] <= '9') {
        ++i;
        digits = true;
    }
    if (i < n && bytes[i] == '.') {
        ++i;
        while (i < n && bytes[i] >= '0' && bytes[i] <= '9') {
            ++i;
            digits = true;
        }
    }
    if (!digits)
        return std::nullopt;
    if (i < n && (bytes[i] == 'E' || bytes[i] == 'e' || bytes[i] == 'D' || bytes[i] == 'd')) {
        ++i;
        if (i < n && (bytes[i] == '+' || bytes[i] == '-'))
            ++i;
        bool expDigits = false;
        while (i < n && bytes[i] >= '0' && bytes[i] <= '9') {
            ++i;
            expDigits = true;
        }
        if (!expDigits)
            return std::nullopt;
    }
    if (i != n)
        return std::nullopt;
    QByteArray normal = bytes;
    normal.replace('D', 'E').replace('d', 'e');
    const double value = normal.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace ff
