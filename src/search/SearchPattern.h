#pragma once
// The pattern rule of the search: "*" any run of characters, "?" one character, "#" one digit,
// "[list]" one character of the list (ranges "a-z", "!" first for none of them). The whole value
// must match. A pattern is compiled once; the common shapes (no wildcard, "abc*", "*abc", "*abc*")
// are compared by plain byte runs. Values are folded byte by byte through a case table while they
// are matched, so no folded copy of a record is ever made.

#include <QByteArray>
#include <bitset>
#include <cstdint>
#include <vector>

namespace ff {

class SearchPattern {
public:
    SearchPattern() = default;
    explicit SearchPattern(const QByteArray &pattern);

    // `fold` maps every value byte before it is compared (the pattern is folded already).
    bool matches(const uint8_t *value, int length, const uint8_t *fold) const;
    // The same for a stored value that still has its trailing blanks (stored as `blank`): what
    // matches() says of the value without them. The prefix and contains shapes need no trimming.
    bool matchesPadded(const uint8_t *value, int length, const uint8_t *fold, uint8_t blank = ' ') const;

    enum class Shape { Exact, Prefix, Suffix, Contains, Everything, General };
    Shape shape() const { return shape_; }
    // The fixed run of the simple shapes (folded).
    const QByteArray &literal() const { return literal_; }

private:
    struct Token {
        enum Kind : uint8_t { Literal, One, Digit, Set, Star } kind = Literal;
        uint8_t byte = 0;
        int set = -1; // index into sets_
    };
    bool matchGeneral(const uint8_t *value, int length, const uint8_t *fold) const;
    bool tokenMatches(const Token &t, uint8_t c) const;

    Shape shape_ = Shape::Exact;
    QByteArray literal_; // the fixed run of the simple shapes
    bool untrimmed_ = false; // a prefix or contains run that does not end in a blank
    std::vector<Token> tokens_;
    std::vector<std::bitset<256>> sets_;
};

// Finds `needle` (already folded) in `hay` folded through `fold`; true when it occurs.
bool ContainsFolded(const uint8_t *hay, int length, const QByteArray &needle, const uint8_t *fold);

// The same search prepared once per term: the bytes that fold to the needle's first two bytes are
// known, so candidates are found sixteen places at a time and only they are compared byte by byte.
class FoldedNeedle {
public:
    FoldedNeedle(const QByteArray &needle, const uint8_t *fold);
    bool foundIn(const uint8_t *hay, int length) const;

private:
    bool matchesAt(const uint8_t *at) const; // the bytes after the first

    QByteArray needle_;
    const uint8_t *fold_;
    uint8_t first_[2] = {0, 0};
    uint8_t second_[2] = {0, 0};
    int firstCount_ = 0;  // 0: more than two bytes fold to the first, use the plain loop
    int secondCount_ = 0; // 0: a one-byte needle, or more than two bytes fold to the second
};

} // namespace ff
