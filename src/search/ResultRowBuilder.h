#pragma once
// Builds the rows of a results list, "number~column~column...", from plain record bytes: the text
// each column shows on the page, byte for byte. A long hit list must cost little more than the
// walk that found it: texts are decoded straight from their slots, numbers and dates are made by
// StoredValueText, learned once for the builder's columns.

#include "search/SearchQuery.h"
#include "store/RecordCodec.h"
#include "store/StoredValueText.h"

#include <QLocale>
#include <QString>
#include <array>
#include <cstdint>
#include <memory>

namespace ff {

struct Design;
struct RecordLayout;

class ResultRowBuilder {
public:
    // `locale` gives the date patterns and names: the locale the codec's hooks format with.
    ResultRowBuilder(const Design &design, const RecordLayout &layout, const RecordCodec &codec,
                     const SearchField *columns, int count, const QLocale &locale);

    // A builder of the same columns for another thread: what was learned is shared.
    ResultRowBuilder twin() const { return ResultRowBuilder(*this, values_); }

    // The row of `record` from its plain bytes.
    QString row(int record, const uint8_t *plainRecord);

    // True when column `column` is a number or date made without the codec (for tests).
    bool fastColumn(int column) const;

private:
    enum class Kind { Text, Note, Picture, Check, Value };
    struct Column {
        SearchField field;
        Kind kind = Kind::Text;
    };

    ResultRowBuilder(const ResultRowBuilder &other, std::shared_ptr<const StoredValueText> values);
    void appendValue(QString &row, const Column &c, const uint8_t *plain);

    const RecordLayout &layout_;
    const RecordCodec &codec_;
    std::array<Column, kColumnSlots> columns_{};
    int count_ = 0;
    qsizetype rowReserve_ = 12; // room for a usual row: the number and each column's length
    std::shared_ptr<const StoredValueText> values_;
    StoredValueText::DateTexts<QString> dates_;
};

} // namespace ff
