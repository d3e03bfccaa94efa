#include "toolkit/DecimalNumber.h"

#include <algorithm>

namespace ff::toolkit {

namespace {

// Magnitudes are decimal digit strings, most significant first, without leading zeros.

std::string stripped(std::string s)
{
    const size_t first = s.find_first_not_of('0');
    return first == std::string::npos ? std::string("0") : s.substr(first);
}

int compare(const std::string &a, const std::string &b)
{
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b) < 0 ? -1 : (a == b ? 0 : 1);
}

std::string add(const std::string &a, const std::string &b)
{
    std::string out;
    int carry = 0;
    for (size_t i = 0; i < std::max(a.size(), b.size()) || carry; ++i) {
        int d = carry;
        if (i < a.size())
            d += a[a.size() - 1 - i] - '0';
        if (i < b.size())
            d += b[b.size() - 1 - i] - '0';
        out.push_back(char('0' + d % 10));
        carry = d / 10;
    }
    std::reverse(out.begin(), out.end());
    return stripped(out);
}

// a - b for a >= b.
std::string subtract(const std::string &a, const std::string &b)
{
    std::string out;
    int borrow = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int d = a[a.size() - 1 - i] - '0' - borrow;
        if (i < b.size())
            d -= b[b.size() - 1 - i] - '0';
        borrow = d < 0;
        out.push_back(char('0' + (d + 10) % 10));
    }
    std::reverse(out.begin(), out.end());
    return stripped(out);
}

std::string multiply(const std::string &a, const std::string &b)
{
    std::string out(a.size() + b.size(), 0);
    for (size_t i = a.size(); i-- > 0;) {
        for (size_t j = b.size(); j-- > 0;) {
            int d = out[i + j + 1] + (a[i] - '0') * (b[j] - '0');
            out[i + j + 1] = char(d % 10);
            out[i + j] = char(out[i + j] + d / 10);
        }
    }
    for (char &c : out)
        c = char(c + '0');
    return stripped(out);
}

// Long division: the quotient, and whether a remainder was left.
std::string divide(const std::string &a, const std::string &b, bool &remainder)
{
    std::string q, r = "0";
    for (char c : a) {
        r = stripped(r + c);
        int d = 0;
        while (compare(r, b) >= 0) {
            r = subtract(r, b);
            ++d;
        }
        q.push_back(char('0' + d));
    }
    remainder = r != "0";
    return stripped(q);
}

} // namespace

std::optional<DecimalNumber> DecimalNumber::rounded(bool negative, std::string digits, int scale, bool sticky)
{
    digits = stripped(digits);
    // Drop what lies beyond 28 significant digits or 28 decimals; the whole part must stay.
    const int drop = std::max({0, scale - kDigits, int(digits.size()) - kDigits});
    if (drop > scale)
        return std::nullopt;
    if (drop >= int(digits.size())) // nothing but dropped digits: keep a zero ahead of them
        digits = std::string(size_t(drop + 1 - int(digits.size())), '0') + digits;
    const int length = int(digits.size());
    if (drop > 0) {
        const std::string dropped = digits.substr(size_t(length - drop));
        digits = length > drop ? digits.substr(0, size_t(length - drop)) : std::string("0");
        scale -= drop;
        const bool restNonZero = sticky || dropped.find_first_not_of('0', 1) != std::string::npos;
        const int first = dropped[0] - '0';
        const bool odd = (digits.back() - '0') % 2 == 1;
        if (first > 5 || (first == 5 && (restNonZero || odd)))
            digits = add(digits, "1");
        digits = stripped(digits);
        if (int(digits.size()) > kDigits) // 999...9 rounded up: one more digit, one decimal less
            return rounded(negative, digits, scale, false);
    }
    while (scale > 0 && digits.size() > 1 && digits.back() == '0') {
        digits.pop_back();
        --scale;
    }
    if (digits == "0")
        scale = 0;
    if (int(digits.size()) - scale > kDigits)
        return std::nullopt;
    DecimalNumber out;
    out.negative_ = negative && digits != "0";
    out.digits_ = digits;
    out.scale_ = scale;
    return out;
}

std::optional<DecimalNumber> DecimalNumber::fromText(const QString &text)
{
    QString t = text.trimmed();
    const bool negative = t.startsWith(QLatin1Char('-'));
    if (negative)
        t.remove(0, 1);
    const qsizetype point = t.indexOf(QLatin1Char('.'));
    const QString whole = point < 0 ? t : t.left(point);
    const QString decimals = point < 0 ? QString() : t.mid(point + 1);
    std::string digits;
    for (QChar c : whole + decimals) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return std::nullopt;
        digits.push_back(char(c.unicode()));
    }
    if (digits.empty())
        digits = "0";
    return rounded(negative, digits, int(decimals.size()), false);
}

std::optional<DecimalNumber> DecimalNumber::plus(const DecimalNumber &other) const
{
    const int scale = std::max(scale_, other.scale_);
    const std::string a = digits_ + std::string(size_t(scale - scale_), '0');
    const std::string b = other.digits_ + std::string(size_t(scale - other.scale_), '0');
    if (negative_ == other.negative_)
        return rounded(negative_, add(a, b), scale, false);
    if (compare(a, b) >= 0)
        return rounded(negative_, subtract(a, b), scale, false);
    return rounded(other.negative_, subtract(b, a), scale, false);
}

std::optional<DecimalNumber> DecimalNumber::minus(const DecimalNumber &other) const
{
    DecimalNumber negated = other;
    negated.negative_ = !other.negative_ && !other.isZero();
    return plus(negated);
}

std::optional<DecimalNumber> DecimalNumber::times(const DecimalNumber &other) const
{
    return rounded(negative_ != other.negative_, multiply(digits_, other.digits_), scale_ + other.scale_, false);
}

std::optional<DecimalNumber> DecimalNumber::dividedBy(const DecimalNumber &other) const
{
    if (other.isZero())
        return std::nullopt;
    // Enough extra places for 28 significant digits and the rounding digit after them.
    const int extra = 2 * kDigits + 4 + other.scale_;
    bool remainder = false;
    const std::string q = divide(digits_ + std::string(size_t(extra), '0'), other.digits_, remainder);
    const int scale = scale_ - other.scale_ + extra;
    if (scale < 0)
        return rounded(negative_ != other.negative_, q + std::string(size_t(-scale), '0'), 0, remainder);
    return rounded(negative_ != other.negative_, q, scale, remainder);
}

QString DecimalNumber::wholeDigits() const
{
    const int length = int(digits_.size());
    if (length <= scale_)
        return QStringLiteral("0");
    return QString::fromLatin1(digits_.substr(0, size_t(length - scale_)).c_str());
}

QString DecimalNumber::decimalDigits() const
{
    if (scale_ == 0)
        return QString();
    const int length = int(digits_.size());
    const std::string padded = length < scale_ ? std::string(size_t(scale_ - length), '0') + digits_ : digits_;
    return QString::fromLatin1(padded.substr(padded.size() - size_t(scale_)).c_str());
}

} // namespace ff::toolkit
