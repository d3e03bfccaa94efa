#pragma once
// The calculator's operands: decimal numbers of up to 28 significant digits and up to 28 decimal
// places, held as exact decimal digits, so that 0.1 + 0.2 is 0.3 and a 28-digit sum keeps its last
// digit. Every result is rounded to 28 significant digits, half to even; a whole part of more than
// 28 digits overflows, and an overflow or a division by zero gives no value.

#include <QString>

#include <optional>
#include <string>

namespace ff::toolkit {

class DecimalNumber {
public:
    static constexpr int kDigits = 28;

    DecimalNumber() = default;
    // A plain number: an optional "-", digits, an optional "." and digits. Rounded to 28 digits.
    static std::optional<DecimalNumber> fromText(const QString &text);

    std::optional<DecimalNumber> plus(const DecimalNumber &other) const;
    std::optional<DecimalNumber> minus(const DecimalNumber &other) const;
    std::optional<DecimalNumber> times(const DecimalNumber &other) const;
    std::optional<DecimalNumber> dividedBy(const DecimalNumber &other) const;

    bool isZero() const { return digits_ == "0"; }
    bool isNegative() const { return negative_; }
    // The whole part's digits and the decimals (no trailing zeros), without sign.
    QString wholeDigits() const;
    QString decimalDigits() const;

private:
    // value = digits_ × 10^-scale_, digits_ without leading zeros ("0" for zero).
    static std::optional<DecimalNumber> rounded(bool negative, std::string digits, int scale, bool sticky);

    bool negative_ = false;
    std::string digits_ = "0";
    int scale_ = 0;
};

} // namespace ff::toolkit
