#include "search/SearchPattern.h"

#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ff {

SearchPattern::SearchPattern(const QByteArray &pattern)
{
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const auto c = static_cast<uint8_t>(pattern[i]);
        Token t;
        if (c == '*') {
            if (!tokens_.empty() && tokens_.back().kind == Token::Star)
                continue; // "**" is one star
            t.kind = Token::Star;
        } else if (c == '?') {
            t.kind = Token::One;
        } else if (c == '#') {
            t.kind = Token::Digit;
        } else if (c == '[' && pattern.indexOf(']', i + 1) > i) {
            const qsizetype close = pattern.indexOf(']', i + 1);
            std::bitset<256> set;
            qsizetype k = i + 1;
            bool negate = false;
            if (k < close && pattern[k] == '!') {
                negate = true;
                ++k;
            }
            for (; k < close; ++k) {
                const auto a = static_cast<uint8_t>(pattern[k]);
                if (k + 2 < close && pattern[k + 1] == '-') {
                    const auto b = static_cast<uint8_t>(pattern[k + 2]);
                    for (int x = a; x <= b; ++x)
                        set.set(static_cast<size_t>(x));
                    k += 2;
                } else {
                    set.set(a);
                }
            }
            if (negate)
                set.flip();
            t.kind = Token::Set;
            t.set = static_cast<int>(sets_.size());
            sets_.push_back(set);
            i = close;
        } else {
            t.byte = c;
        }
        tokens_.push_back(t);
    }

    // Recognise the shapes that need no general matcher.
    const size_t n = tokens_.size();
    auto literalRun = [&](size_t from, size_t to, QByteArray &out) {
        for (size_t k = from; k < to; ++k) {
            if (tokens_[k].kind != Token::Literal)
                return false;
            out.append(static_cast<char>(tokens_[k].byte));
        }
        return true;
    };
    const bool starFirst = n > 0 && tokens_.front().kind == Token::Star;
    const bool starLast = n > 0 && tokens_.back().kind == Token::Star;
    QByteArray run;
    if (n == 1 && starFirst)
        shape_ = Shape::Everything;
    else if (!starFirst && !starLast && literalRun(0, n, run))
        shape_ = Shape::Exact;
    else if (!starFirst && starLast && literalRun(0, n - 1, run))
        shape_ = Shape::Prefix;
    else if (starFirst && !starLast && literalRun(1, n, run))
        shape_ = Shape::Suffix;
    else if (starFirst && starLast && n >= 2 && literalRun(1, n - 1, run))
        shape_ = Shape::Contains;
    else
        shape_ = Shape::General;
    if (shape_ != Shape::General)
        literal_ = run;
    // A match of such a run ends on a byte that is not a blank, so it lies inside the trimmed
    // value whenever it lies inside the padded one.
    untrimmed_ = (shape_ == Shape::Prefix || shape_ == Shape::Contains) && !literal_.isEmpty() && !literal_.endsWith(' ');
}

static bool equalFolded(const uint8_t *value, const QByteArray &literal, const uint8_t *fold)
{
    const auto *l = reinterpret_cast<const uint8_t *>(literal.constData());
    for (qsizetype k = 0; k < literal.size(); ++k)
        if (fold[value[k]] != l[k])
            return false;
    return true;
}

bool ContainsFolded(const uint8_t *hay, int length, const QByteArray &needle, const uint8_t *fold)
{
    const int n = static_cast<int>(needle.size());
    if (n == 0)
        return true;
    if (n > length)
        return false;
    const auto *l = reinterpret_cast<const uint8_t *>(needle.constData());
    const uint8_t first = l[0];
    const int last = length - n;
    for (int i = 0; i <= last; ++i) {
        if (fold[hay[i]] != first)
            continue;
        int k = 1;
        while (k < n && fold[hay[i + k]] == l[k])
            ++k;
        if (k == n)
            return true;
    }
    return false;
}

FoldedNeedle::FoldedNeedle(const QByteArray &needle, const uint8_t *fold) : needle_(needle), fold_(fold)
{
    if (needle_.isEmpty())
        return;
    // The bytes that fold to the needle's byte `at`: up to two of them, or none when there are more.
    auto variants = [&](int at, uint8_t *into) {
        const auto wanted = static_cast<uint8_t>(needle_[at]);
        int count = 0;
        for (int c = 0; c < 256; ++c)
            if (fold[c] == wanted) {
                if (count < 2)
                    into[count] = static_cast<uint8_t>(c);
                ++count;
            }
        if (count == 1)
            into[1] = into[0];
        return count <= 2 ? count : 0;
    };
    firstCount_ = variants(0, first_);
    if (needle_.size() >= 2)
        secondCount_ = variants(1, second_);
}

bool FoldedNeedle::matchesAt(const uint8_t *at) const
{
    const auto *l = reinterpret_cast<const uint8_t *>(needle_.constData());
    const int n = static_cast<int>(needle_.size());
    int k = 1;
    while (k < n && fold_[at[k]] == l[k])
        ++k;
    return k == n;
}

bool FoldedNeedle::foundIn(const uint8_t *hay, int length) const
{
    const int n = static_cast<int>(needle_.size());
    if (n == 0)
        return true;
    if (n > length)
        return false;
    if (firstCount_ == 0)
        return ContainsFolded(hay, length, needle_, fold_);
    const int lastStart = length - n; // the last place the needle can start
    int i = 0;
#ifdef __SSE2__
    // Sixteen places at a time: a place is a candidate when its byte folds to the needle's first
    // byte and, for longer needles, the next byte folds to its second. Every load stays inside the
    // slice: the block's last place is at most lastStart, and its next byte at most length - 1.
    const __m128i a0 = _mm_set1_epi8(static_cast<char>(first_[0])), a1 = _mm_set1_epi8(static_cast<char>(first_[1]));
    const bool pairs = secondCount_ != 0;
    const __m128i b0 = _mm_set1_epi8(static_cast<char>(second_[0])), b1 = _mm_set1_epi8(static_cast<char>(second_[1]));
    for (; i + 15 <= lastStart; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(hay + i));
        __m128i m = _mm_or_si128(_mm_cmpeq_epi8(v, a0), _mm_cmpeq_epi8(v, a1));
        if (pairs) {
            const __m128i w = _mm_loadu_si128(reinterpret_cast<const __m128i *>(hay + i + 1));
            m = _mm_and_si128(m, _mm_or_si128(_mm_cmpeq_epi8(w, b0), _mm_cmpeq_epi8(w, b1)));
        }
        unsigned bits = static_cast<unsigned>(_mm_movemask_epi8(m));
        while (bits) {
            if (matchesAt(hay + i + __builtin_ctz(bits)))
                return true;
            bits &= bits - 1;
        }
    }
#endif
    for (; i <= lastStart; ++i)
        if ((hay[i] == first_[0] || hay[i] == first_[1]) && matchesAt(hay + i))
            return true;
    return false;
}

bool SearchPattern::tokenMatches(const Token &t, uint8_t c) const
{
    switch (t.kind) {
    case Token::Literal: return c == t.byte;
    case Token::One: return true;
    case Token::Digit: return c >= '0' && c <= '9';
    case Token::Set: return sets_[static_cast<size_t>(t.set)].test(c);
    case Token::Star: return false;
    }
    return false;
}

// The classic single-star backtracking walk: every token but "*" takes exactly one character, so
// going back to the last star and letting it take one more character is enough.
bool SearchPattern::matchGeneral(const uint8_t *value, int length, const uint8_t *fold) const
{
    const size_t n = tokens_.size();
    size_t p = 0;
    int v = 0;
    size_t starToken = SIZE_MAX;
    int starValue = 0;
    while (v < length) {
        if (p < n && tokens_[p].kind == Token::Star) {
            starToken = p++;
            starValue = v;
        } else if (p < n && tokenMatches(tokens_[p], fold[value[v]])) {
            ++p;
            ++v;
        } else if (starToken != SIZE_MAX) {
            p = starToken + 1;
            v = ++starValue;
        } else {
            return false;
        }
    }
    while (p < n && tokens_[p].kind == Token::Star)
        ++p;
    return p == n;
}

bool SearchPattern::matchesPadded(const uint8_t *value, int length, const uint8_t *fold, uint8_t blank) const
{
    if (!untrimmed_) {
        while (length > 0 && value[length - 1] == blank)
            --length;
    }
    return matches(value, length, fold);
}

bool SearchPattern::matches(const uint8_t *value, int length, const uint8_t *fold) const
{
    const int n = static_cast<int>(literal_.size());
    switch (shape_) {
    case Shape::Everything: return true;
    case Shape::Exact: return length == n && equalFolded(value, literal_, fold);
    case Shape::Prefix: return length >= n && equalFolded(value, literal_, fold);
    case Shape::Suffix: return length >= n && equalFolded(value + length - n, literal_, fold);
    case Shape::Contains: return ContainsFolded(value, length, literal_, fold);
    case Shape::General: return matchGeneral(value, length, fold);
    }
    return false;
}

} // namespace ff
