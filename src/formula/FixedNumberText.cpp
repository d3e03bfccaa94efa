#include "formula/FixedNumberText.h"

#include "formula/NumberText.h"

#include <charconv>
#include <cmath>

namespace ff {

namespace {

constexpr long long kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000,
                                 10000000000, 100000000000, 1000000000000, 10000000000000, 100000000000000,
                                 1000000000000000};

bool isAsciiDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

} // namespace

FixedNumberText::FixedNumberText(const QLocale &locale, bool grouping)
    : of_(locale), options_(locale.numberOptions()), grouping_(grouping), locale_(locale)
{
    locale_.setNumberOptions(grouping ? options_ & ~QLocale::NumberOptions(QLocale::OmitGroupSeparator)
                                      : options_ | QLocale::OmitGroupSeparator);
    fast_ = learn();
}

bool FixedNumberText::isFor(const QLocale &locale, bool grouping) const
{
    return grouping == grouping_ && locale == of_ && locale.numberOptions() == options_;
}

QString FixedNumberText::text(double value, int places) const
{
    QString out;
    if (fast_ && fastText(value, places, out))
        return out;
    return locale_.toString(RoundHalfAway(value, places), 'f', places);
}

bool FixedNumberText::fastText(double value, int places, QString &out) const
{
    if (places < 0 || places > 4)
        return false;
    const std::optional<DecimalDigits> rounded = RoundedDigits(value, places, false);
    if (!rounded)
        return false;
    const long long whole = rounded->digits / kPowers[places];
    const long long fraction = rounded->digits % kPowers[places];
    char digits[24];
    const int count = int(std::to_chars(digits, digits + sizeof digits, whole).ptr - digits);
    if (count > 15)
        return false;
    // The text is put together in one buffer and made a QString once.
    char16_t text[96];
    int n = 0;
    const auto put = [&](const QString &part) {
        for (const QChar c : part)
            text[n++] = c.unicode();
    };
    if (rounded->negative)
        put(minus_);
    const uint32_t marks = marks_[size_t(count)];
    for (int k = 0; k < count; ++k) {
        if (k > 0 && (marks >> (count - k)) & 1u)
            put(group_);
        text[n++] = char16_t(digits[k]);
    }
    if (places > 0) {
        put(point_);
        for (int k = places - 1; k >= 0; --k)
            text[n + k] = char16_t('0' + fraction % kPowers[places - k] / kPowers[places - k - 1]);
        n += places;
    }
    out = QString(reinterpret_cast<const QChar *>(text), n);
    return true;
}

bool FixedNumberText::learn()
{
    const auto localeText = [this](double value, int places) { return locale_.toString(value, 'f', places); };
    const QString minusOne = localeText(-1.0, 0);
    const qsizetype one = minusOne.indexOf(QLatin1Char('1'));
    if (one < 1 || one != minusOne.size() - 1)
        return false;
    minus_ = minusOne.left(one);
    const QString half = localeText(0.5, 1);
    if (half.size() < 3 || half.front() != QLatin1Char('0') || half.back() != QLatin1Char('5'))
        return false;
    point_ = half.mid(1, half.size() - 2);
    if (minus_.size() > 4 || point_.size() > 4)
        return false; // longer marks than the text buffer of fastText allows for
    // Group marks for 1..15 integer digits, read from 1, 12, 123, ... 123456789012345.
    for (int count = 1; count <= 15; ++count) {
        const QString t = localeText(double(123456789012345LL / kPowers[15 - count]), 0);
        uint32_t marks = 0;
        int seen = 0;
        for (qsizetype k = 0; k < t.size();) {
            if (isAsciiDigit(t[k])) {
                ++seen;
                ++k;
                continue;
            }
            const qsizetype from = k;
            while (k < t.size() && !isAsciiDigit(t[k]))
                ++k;
            const QString mark = t.mid(from, k - from);
            if (seen == 0 || (!group_.isEmpty() && mark != group_))
                return false;
            if (mark.size() > 4)
                return false;
            group_ = mark;
            marks |= 1u << (count - seen);
        }
        if (seen != count)
            return false;
        marks_[size_t(count)] = marks;
    }
    // The learned texts must be the locale's for values of every size, sign and number of places,
    // halves and values that round up to one more digit among them.
    static const double samples[] = {0.0, 0.004, 0.005, 0.5, 1.005, 2.675, 9.9995, 99.995, 999.5, 1234.5678,
                                     99999.99999, 123456.785, 9999999.995, 12345678.9, 3.14159e9, 7.5e11,
                                     9.87654321e12, 4.4e13, 99999999999.99995};
    for (const double sample : samples) {
        for (const double value : {sample, -sample}) {
            for (int places = 0; places <= 4; ++places) {
                QString fast;
                if (fastText(value, places, fast) && fast != localeText(RoundHalfAway(value, places), places))
                    return false;
            }
        }
    }
    return true;
}

} // namespace ff
