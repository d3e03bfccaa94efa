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
    if (decimalSeparator.compare(QLatin1String("."), Qt::CaseInsensitive) != 0 && !decimalSeparator.isEmpty()) {
        text.remove(QLatin1Char('.'));
        text.replace(decimalSeparator, QLatin1String("."), Qt::CaseInsensitive);
    }
    text.remove(QLatin1Char(','));
    text.remove(QLatin1Char('\''));
    text.remove(QChar(0xA0));
    return text;
}

QString CleanNumberCopy(QString text, const QString &decimalSeparator)
{
    CleanNumber(text, decimalSeparator);
    return text;
}

double Val(const QString &text)
{
    std::string s;
    s.reserve(static_cast<size_t>(text.size()));
    for (QChar c : text) {
        const char16_t u = c.unicode();
        if (u == ' ' || u == '\t' || u == '\n')
            continue;
        s.push_back(u < 128 ? static_cast<char>(u) : '?');
    }
    std::string number;
    size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        number.push_back(s[i++]);
    bool digits = false;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
        number.push_back(s[i++]);
        digits = true;
    }
    if (i < s.size() && s[i] == '.') {
        number.push_back(s[i++]);
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
            number.push_back(s[i++]);
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        size_t j = i + 1;
        std::string exponent = "e";
        if (j < s.size() && (s[j] == '+' || s[j] == '-'))
            exponent.push_back(s[j++]);
        bool expDigits = false;
        while (j < s.size() && s[j] >= '0' && s[j] <= '9') {
            exponent.push_back(s[j++]);
            expDigits = true;
        }
        if (expDigits)
            number += exponent;
    }
    return readDecimal(number);
}

QString NumberToText(double value, const QString &decimalSeparator)
{
    if (value == 0.0)
        return QStringLiteral("0");
    char buffer[64];
    // to_chars writes what printf's "%.15g" writes, in lower case.
    char *end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15).ptr;
    for (char *p = buffer; p != end; ++p) {
        if (*p == 'e')
            *p = 'E';
    }
    QString text = QString::fromLatin1(buffer, end - buffer);
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

} // namespace

std::optional<DecimalDigits> RoundedDigits(double value, int decimals, bool halfEven)
{
    if (!std::isfinite(value))
        return std::nullopt;
    if (value == 0.0)
        return DecimalDigits{};
    char buffer[64];
    scientific15(value, buffer);
    long long digits = 0;
    const char *p = buffer;
    for (; *p && *p != 'e'; ++p) {
        if (*p >= '0' && *p <= '9')
            digits = digits * 10 + (*p - '0');
    }
    const int exponent = *p == 'e' ? std::atoi(p + 1) : 0;
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
