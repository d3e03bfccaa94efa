#pragma once
// Builds the rows of a results list, "number~column~column...", from plain record bytes: the text
// each column shows on the page, byte for byte. A long hit list must cost little more than the
// walk that found it, so the common kinds are formatted by small routines instead of a locale's
// string round trip per value: money and whole numbers by integer digits with the locale's marks,
// floating numbers by std::to_chars, dates by their locale pattern from the day number (a date
// with a time of day through a cache of the texts already made). Each fast
// routine is checked once against the codec's own text on a set of probe values when the builder
// is made; a column whose routine disagrees on any probe (another locale's grouping, other
// formatting hooks) keeps the codec's way for every value. Values outside the exact range of the
// fast routines take the codec's way too.

#include "search/SearchQuery.h"
#include "store/RecordCodec.h"

#include <QHash>
#include <QLocale>
#include <QString>
#include <array>
#include <cstdint>
#include <vector>

namespace ff {

struct Design;
struct RecordLayout;

class ResultRowBuilder {
public:
    // `locale` gives the marks of the fast routines: the locale the codec's hooks format with.
    ResultRowBuilder(const Design &design, const RecordLayout &layout, const RecordCodec &codec,
                     const SearchField *columns, int count, const QLocale &locale);

    // The row of `record` from its plain bytes.
    QString row(int record, const uint8_t *plainRecord);

    // True when column `column` is formatted by a fast routine (for tests).
    bool fastColumn(int column) const { return columns_[size_t(column)].fast; }

private:
    enum class Kind { Text, Note, Picture, Check, Float, Money, Whole, Date };
    // One piece of a date pattern: a literal text, a number of the date, or a name.
    struct DateToken {
        enum class Part { Literal, Day, Day2, Month, Month2, Year2, Year4, DayName, MonthName } part = Part::Literal;
        QString text;
        std::vector<QString> names; // weekday names Monday first, or month names January first
    };
    struct Column {
        SearchField field;
        Kind kind = Kind::Text;
        int decimals = 0;
        bool fast = false;
        std::vector<DateToken> datePattern; // empty: the pattern has parts the fast way lacks
        QHash<int64_t, QString> dates;      // texts the codec made, by stored value
    };

    void appendValue(QString &row, Column &c, const uint8_t *plain);
    void appendCodecText(QString &row, const Column &c, const uint8_t *plain) const;
    // The fast text of a money or whole value in fixed point with `decimals` places; false when
    // it must go the codec's way.
    bool appendFixed(QString &row, int64_t fixed, int decimals) const;
    bool appendFloat(QString &row, double value) const;
    // A whole day number by the column's date pattern; false when it must go the codec's way.
    bool appendDate(QString &row, const Column &c, int64_t fixed) const;
    std::vector<DateToken> datePattern(int fieldType) const;
    void calibrate(Column &c);

    const RecordLayout &layout_;
    const RecordCodec &codec_;
    std::array<Column, kColumnSlots> columns_{};
    int count_ = 0;
    qsizetype rowReserve_ = 12; // room for a usual row: the number and each column's length
    bool hideZeros_ = false;
    QLocale locale_;
    QString groupMark_, decimalMark_, minusSign_, floatPoint_;
};

} // namespace ff
