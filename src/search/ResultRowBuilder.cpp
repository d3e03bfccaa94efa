#include "search/ResultRowBuilder.h"

#include "design/Design.h"
#include "formula/FieldFormat.h"
#include "store/RecordLayout.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace ff {

ResultRowBuilder::ResultRowBuilder(const Design &design, const RecordLayout &layout, const RecordCodec &codec,
                                   const SearchField *columns, int count, const QLocale &locale)
    : layout_(layout), codec_(codec), count_(std::min(count, kColumnSlots))
{
    std::vector<int> valueFields;
    for (int k = 0; k < count_; ++k) {
        Column &c = columns_[size_t(k)];
        c.field = columns[k];
        switch (c.field.kind) {
        case SearchKind::Field:
            c.kind = c.field.format >= 1 && c.field.format <= 9 ? Kind::Value : Kind::Text;
            if (c.kind == Kind::Value)
                valueFields.push_back(c.field.index);
            break;
        case SearchKind::Check: c.kind = Kind::Check; break;
        case SearchKind::Note: c.kind = Kind::Note; break;
        case SearchKind::Picture: c.kind = Kind::Picture; break;
        default: c.kind = Kind::Text; break;
        }
        rowReserve_ += 1 + std::clamp(c.field.length, 16, 64);
    }
    values_ = std::make_shared<const StoredValueText>(design, codec, valueFields,
                                                      StoredValueText::DateForms(locale, &DatePattern));
}

ResultRowBuilder::ResultRowBuilder(const ResultRowBuilder &other, std::shared_ptr<const StoredValueText> values)
    : layout_(other.layout_), codec_(other.codec_), columns_(other.columns_), count_(other.count_),
      rowReserve_(other.rowReserve_), values_(std::move(values))
{
}

bool ResultRowBuilder::fastColumn(int column) const
{
    const Column &c = columns_[size_t(column)];
    return c.kind != Kind::Value || values_->fast(c.field.format);
}

void ResultRowBuilder::appendValue(QString &row, const Column &c, const uint8_t *plain)
{
    const SearchField &f = c.field;
    const uint8_t *p = plain + f.offset;
    const CodePage &cp = codec_.codePage();
    switch (c.kind) {
    case Kind::Check:
        row += QLatin1Char(char('0' + ((p[0] >= '0' && p[0] <= '9') ? p[0] - '0' : 0)));
        return;
    case Kind::Note: {
        int n = f.length;
        while (n > 0 && p[n - 1] == ' ')
            --n;
        QString text = cp.decode(reinterpret_cast<const char *>(p), n);
        text.replace(QLatin1String("\r\n"), QLatin1String(" "));
        text.replace(QLatin1Char('\r'), QLatin1Char(' '));
        text.replace(QLatin1Char('\n'), QLatin1Char(' '));
        row += text;
        return;
    }
    case Kind::Picture: {
        int lead = 0;
        while (lead < f.length && p[lead] == ' ')
            ++lead;
        cp.appendDecoded(row, reinterpret_cast<const char *>(p + lead), f.length - lead);
        return;
    }
    case Kind::Text: {
        int n = f.length;
        while (n > 0 && p[n - 1] == ' ')
            --n;
        cp.appendDecoded(row, reinterpret_cast<const char *>(p), n);
        return;
    }
    case Kind::Value: values_->append(f.index, plain, row, codec_, dates_); return;
    }
}

QString ResultRowBuilder::row(int record, const uint8_t *plainRecord)
{
    QString row;
    row.reserve(rowReserve_);
    char digits[12];
    const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, record);
    row += QLatin1String(digits, r.ptr - digits);
    for (int k = 0; k < count_; ++k) {
        row += QLatin1Char('~');
        appendValue(row, columns_[size_t(k)], plainRecord);
    }
    return row;
}

} // namespace ff
