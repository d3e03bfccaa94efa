#pragma once
// Reads the values the search compares straight out of stored record bytes, plain or scrambled:
// texts as byte runs, numbers, money, dates, times and check bytes in the 4-decimal fixed-point
// form. Nothing here allocates for the stored kinds; only a time or date written in an unusual
// form falls back to the formula library's date reader.

#include "search/SearchQuery.h"
#include "search/StoredBytes.h"

#include <QLocale>
#include <cstdint>

namespace ff {

class FieldReader {
public:
    explicit FieldReader(QChar decimalSeparator, QLocale locale = QLocale(), StoredBytes stored = StoredBytes(false));

    const StoredBytes &stored() const { return stored_; }
    // A number as a 4-decimal fixed-point value (halves to even, as a currency conversion does).
    static int64_t toFixed(double value);

    // The value of `field` in the stored `record` as fixed point. False when it cannot be read
    // (then the field counts as not matching).
    bool fixedValue(const SearchField &field, const uint8_t *record, int64_t &out) const;
    // The value that `sum` adds.
    double numberValue(const SearchField &field, const uint8_t *record) const;
    // Val of a stored text slice of `length` bytes, trailing blanks included or not.
    double storedVal(const uint8_t *p, int length) const;

    // CleanNumber then Val on plain bytes: group marks out, the decimal separator made a point,
    // blanks skipped, the leading number read.
    double valBytes(const uint8_t *p, int length) const;
    // "hh:mm", "hh:mm:ss" with an optional "am"/"pm" as a fraction of a day; other forms go to
    // the date reader. False when the text is no time. Plain bytes.
    bool timeValue(const uint8_t *p, int length, double &day) const;
    bool dateValue(const uint8_t *p, int length, double &day) const;

private:
    char separator_;
    QLocale locale_;
    StoredBytes stored_;
};

} // namespace ff
