#pragma once
// The text a stored number or date of a field shows on the page, made without a trip through the
// locale for every value: a results list or an export of a million records cannot afford one.
// The text goes out as UTF-16 (rows of a results list) or as code-page bytes (exports), from the
// same learned notation:
//
//   - types 2 to 5 (money and whole numbers) from the stored integer, rounded half away from zero
//     at the type's decimals, with the sign, decimal point and group marks learned from the page's
//     own texts (where the group marks stand is learned for each number of integer digits);
//   - type 1 as "%.15G" gives it, with the learned decimal point;
//   - types 6 to 9 (whole days) by the date pattern the caller names, with the locale's names.
//     Dates the pattern cannot write are the codec's, made once per distinct value and field and
//     kept (DateTexts).
//
// The page's own text is the record codec's (the formula hooks, then the ShowZeros rule). Before a
// type is taken on, its texts in both forms are compared with the codec's over a hundred and more
// values of every size and sign (dates: every month and weekday over two centuries); a type whose
// texts differ in any of them, and every value beyond the exact range of the fast way (a time of
// day, a negative amount that rounds to zero, a float that is not finite), takes the codec's text.
// The hooks answer a field by its type, so one field of each type is learned for all of them.
//
// One object is learned once and may be shared by threads; DateTexts and the codec that answers
// what the fast way does not take belong to one thread.

#include "design/Design.h"
#include "store/RecordCodec.h"

#include <QLocale>
#include <QString>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ff {

class StoredValueText {
public:
    // How whole days show: the QLocale date pattern of each date type (6 to 9) and the locale of
    // the day and month names. Patterns left empty make those dates the codec's.
    struct DateForms {
        DateForms() = default;
        DateForms(const QLocale &locale, QString (*patternOf)(int fieldType, const QLocale &locale));
        QLocale locale;
        std::array<QString, 4> patterns;
    };

    // The texts of each field, one form of output (QString: UTF-16, std::string: code-page bytes).
    // The codec's texts of dates already made, for one form of output (QString: UTF-16,
    // std::string: code-page bytes). One per thread.
    template <class Out>
    class DateTexts {
    private:
        friend class StoredValueText;
        static constexpr int kPageBits = 9;
        struct Entry {
            uint32_t offset = 0;
            uint32_t size = UINT32_MAX; // not made yet
        };
        using Page = std::array<Entry, 1 << kPageBits>;
        struct FieldDates {
            Out pool;                                // every text made, one after another
            std::vector<std::unique_ptr<Page>> pages; // whole days, by day
            std::unordered_map<int64_t, Out> others;  // times of day and days beyond the calendar
        };
        std::vector<FieldDates> fields_; // by field index
    };

    // Learns the types of `fields` (indexes of fields with bytes in the record) against `codec`'s
    // texts.
    StoredValueText(const Design &design, const RecordCodec &codec, const std::vector<int> &fields,
                    const DateForms &dates = {});

    // True when field type `type` (1..9) is made here rather than by the codec.
    bool fast(int type) const { return type >= 1 && type <= 9 && fast_[size_t(type)]; }

    // Appends the text field `index` (type 1 to 9) shows for the plain record `plain`. `codec`
    // answers what the fast way does not take: it must format as the one given to the constructor.
    void append(int index, const uint8_t *plain, QString &out, const RecordCodec &codec, DateTexts<QString> &dates) const;
    void append(int index, const uint8_t *plain, std::string &out, const RecordCodec &codec,
                DateTexts<std::string> &dates) const;

private:
    template <class Out>
    struct Marks {
        Out minus, point, group;
    };
    struct Notation {
        Marks<QString> wide;
        Marks<std::string> narrow;
        bool zeroHidden = false; // ShowZeros 0 shows a zero empty
        bool plainPoint = false; // the decimal point is "." in both forms
        // For n integer digits (1..10), bit p set: a group mark between the p-th and (p+1)-th
        // digit counted from the right.
        std::array<uint32_t, 11> marks{};
    };
    // One piece of a date pattern: a literal text, a number of the date, or a name.
    struct DateToken {
        enum class Part { Literal, Day, Day2, Month, Month2, Year2, Year4, DayName, MonthName } part = Part::Literal;
        QString wide;
        std::string narrow;
        std::vector<QString> wideNames; // weekday names Monday first, or month names January first
        std::vector<std::string> narrowNames;
    };

    template <class Out>
    void appendValue(int index, const uint8_t *plain, Out &out, const RecordCodec &codec, DateTexts<Out> &dates) const;
    // False when the value is beyond what the fast way writes exactly.
    template <class Out>
    bool appendNumber(int type, const uint8_t *slot, Out &out) const;
    template <class Out>
    bool appendDate(int type, int64_t stored, Out &out) const;
    template <class Out>
    void appendCodecText(int index, const uint8_t *plain, Out &out, const RecordCodec &codec) const;

    void learnNumbers(int type, int index, const RecordCodec &codec);
    void learnDates(int type, int index, const RecordCodec &codec, const DateForms &forms);
    bool parseDatePattern(int type, const DateForms &forms);

    const Design &design_;
    const RecordLayout &layout_;
    CodePage codePage_;
    std::array<bool, 10> fast_{};
    std::array<Notation, 6> notation_;
    std::array<std::vector<DateToken>, 4> datePattern_;
};

} // namespace ff
