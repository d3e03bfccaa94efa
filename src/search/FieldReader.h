#pragma once
// Reads the values the search compares straight out of raw (unscrambled) record bytes: texts as
// byte runs, numbers, money, dates, times and check bytes in the 4-decimal fixed-point form.
// Nothing here allocates for the stored kinds; only a time or date written in an unusual form
// falls back to the formula library's date reader.

#include "search/SearchQuery.h"

#include <QLocale>
#include <cstdint>

namespace ff {

class FieldReader {
public:
    explicit FieldReader(QChar decimalSeparator, QLocale locale = QLocale());

    // The length of the slice without its trailing blanks.
    static int trimmedLength(const uint8_t *p, int length)
    {
        while (length > 0 && p[length - 1] == ' ')
            --length;
        return length;
    }
    // A number as a 4-decimal fixed-point value (halves to even, as a currency conversion does).
    static int64_t toFixed(double value);

    // The value of `field` in `record` as fixed point. False when it cannot be read (then the
    // field counts as not matching).
    bool fixedValue(const SearchField &field, const uint8_t *record, int64_t &out) const;
    // The value that `sum` adds.
    double numberValue(const SearchField &field, const uint8_t *record) const;

    // CleanNumber then Val on bytes: group marks out, the decimal separator made a point, blanks
    // skipped, the leading number read.
    double valBytes(const uint8_t *p, int length) const;
    // "hh:mm", "hh:mm:ss" with an optional "am"/"pm" as a fraction of a day; other forms go to
    // the date reader. False when the text is no time.
    bool timeValue(const uint8_t *p, int length, double &day) const;
    bool dateValue(const uint8_t *p, int length, double &day) const;

    static double readDouble(const uint8_t *p);
    static int64_t readInt64(const uint8_t *p);
    static int32_t readInt32(const uint8_t *p);

private:
    char separator_;
    QLocale locale_;
};

} // namespace ff
