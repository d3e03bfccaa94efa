#pragma once
// The text a stored number of a text field shows, as code-page bytes, without a trip through the
// locale for every value. The page gets these texts from the formula hooks (FormatFieldValue, then
// the ShowZeros rule); an export of a million records cannot afford a locale call per value, so
// this formatter learns the hooks' notation once (sign, decimal point, where the group marks
// stand for each number of digits) and then writes the digits itself:
//
//   - types 2 to 5 (money and whole numbers) from the stored integer, rounded half away from
//     zero at the type's decimals as the hooks round them;
//   - type 1 as "%.15G" gives it, with the hooks' decimal point.
//
// Before a type is taken on, its texts are compared with the hooks' own over several hundred
// values of every size and sign; a type whose texts differ in any of them, and any value beyond
// the exact range, is left to the hooks. Dates go through the hooks once per distinct value
// (DateTextCache).

#include "core/CodePage.h"
#include "design/Design.h"
#include "store/FormulaHooks.h"

#include <QByteArray>
#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ff {

class FieldTextFormatter {
public:
    // `codecDecimalSeparator` is the one the record codec tests zeros with (ShowZeros 0).
    FieldTextFormatter(const Design &design, const FormulaHooks &hooks, const CodePage &codePage,
                       QChar codecDecimalSeparator);

    // True when field type `type` (1..5) is written here rather than by the hooks.
    bool fast(int type) const { return type >= 1 && type <= 5 && notation_[size_t(type)].fast; }

    // Appends the text of field `index` (type 1..5) for its stored slot. `hooks` answers what the
    // fast way does not take: it must format as the hooks given to the constructor do.
    void appendNumber(int index, const uint8_t *slot, std::string &out, const FormulaHooks &hooks) const;

    // The hooks' text of field `index` for `value`, after the ShowZeros rule, in code-page bytes.
    QByteArray hookText(const FormulaHooks &hooks, int index, double value) const;

    // The value a stored slot of field type 1..5 holds.
    static double slotValue(int type, const uint8_t *slot);

private:
    struct Notation {
        bool fast = false;
        std::string minus, point, group;
        // For n integer digits (1..10), bit p set: a group mark between the p-th and (p+1)-th
        // digit counted from the right.
        std::array<uint32_t, 11> marks{};
    };

    // False when the value is beyond what the fast way writes exactly.
    bool appendFast(int type, const uint8_t *slot, std::string &out) const;
    void learn(int type, int index, const FormulaHooks &hooks);
    bool zeroText(const char *text, size_t size) const;

    const Design &design_;
    const CodePage &codePage_;
    QChar codecDecimalSeparator_;
    std::array<Notation, 6> notation_;
    std::vector<QByteArray> zeros_; // texts that ShowZeros 0 shows empty, in code-page bytes
};

// The hooks' text of date fields (types 6 to 9), one call per distinct stored value and field.
// One per thread.
class DateTextCache {
public:
    // Appends the text of date field `index` for its stored currency value (0: empty).
    void append(const Design &design, const FormulaHooks &hooks, const CodePage &codePage, int index, int64_t stored,
                std::string &out);

private:
    // Whole days in a table indexed by the day (most dates are), anything else in a map.
    struct DayText {
        uint8_t size = 0xFF; // 0xFF: not made yet
        char text[31];
    };
    struct FieldDates {
        int64_t firstDay = 0; // the day of days[0], set by the first date seen
        std::vector<DayText> days;
        std::unordered_map<int64_t, QByteArray> others;
    };
    std::vector<FieldDates> fields_; // by field index
};

} // namespace ff
