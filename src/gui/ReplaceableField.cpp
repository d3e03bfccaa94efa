#include "gui/ReplaceableField.h"

#include "formula/DateReader.h"
#include "formula/NumberText.h"
#include "store/RecordCodec.h"

#include <cmath>

namespace ff::gui {

ReplaceableField::ReplaceableField(const SearchField &field, const RecordCodec &codec, QChar decimalSeparator, QLocale locale)
    : field_(field), codec_(codec), separator_(decimalSeparator.isNull() ? QChar(QLatin1Char('.')) : decimalSeparator),
      locale_(std::move(locale)), form_(formOf(field))
{
}

ReplaceableField::Form ReplaceableField::formOf(const SearchField &f)
{
    if (!f.valid() || f.kind == SearchKind::Picture)
        return Form::None;
    switch (f.value) {
    case ValueKind::Float: return f.length == 8 ? Form::Float : Form::None;
    case ValueKind::Whole: return f.length == 4 ? Form::Whole : Form::None;
    case ValueKind::Currency:
        if (f.length != 8)
            return Form::None;
        return f.format >= 6 && f.format <= 9 ? Form::Date : Form::Money;
    default: return Form::Text;
    }
}

bool ReplaceableField::takesText() const { return form_ != Form::None; }

QString ReplaceableField::text(const QByteArray &record) const
{
    if (form_ == Form::None || field_.offset + field_.length > record.size())
        return QString();
    const QByteArray slice = record.mid(field_.offset, field_.length);
    switch (form_) {
    case Form::Text: return codec_.codePage().decode(slice.constData(), int(slice.size()));
    case Form::Float: return NumberToText(RecordCodec::readDouble(slice, 1), separator_);
    case Form::Money: return NumberToText(double(RecordCodec::readInt64(slice, 1)) / 10000.0, separator_);
    case Form::Whole: return QString::number(RecordCodec::readInt32(slice, 1));
    case Form::Date: return codec_.fieldDisplayText(record, field_.index);
    case Form::None: break;
    }
    return QString();
}

std::optional<QByteArray> ReplaceableField::bytes(const QString &text) const
{
    QByteArray out(field_.length, '\0');
    switch (form_) {
    case Form::None: return std::nullopt;
    case Form::Text:
        out = codec_.codePage().encode(text);
        if (out.size() < field_.length)
            out.append(QByteArray(field_.length - out.size(), ' '));
        out.truncate(field_.length);
        return out;
    case Form::Float:
    case Form::Money:
    case Form::Whole: {
        const QString cleaned = CleanNumberCopy(text, separator_);
        if (!ParseNumericText(cleaned))
            return std::nullopt; // the replacement left no number: the value stays
        const double value = Val(cleaned);
        if (!std::isfinite(value))
            return std::nullopt;
        if (form_ == Form::Float) {
            RecordCodec::writeDouble(out, 1, value);
        } else if (form_ == Form::Money) {
            const double scaled = std::nearbyint(value * 10000.0);
            if (std::fabs(scaled) >= 9.2233720368547e18)
                return std::nullopt;
            RecordCodec::writeInt64(out, 1, static_cast<int64_t>(scaled));
        } else {
            const double whole = std::nearbyint(value);
            if (!(whole >= INT32_MIN && whole <= INT32_MAX))
                return std::nullopt;
            RecordCodec::writeInt32(out, 1, static_cast<int32_t>(whole));
        }
        return out;
    }
    case Form::Date: {
        // An emptied date is no date; anything else must still read as one.
        const std::optional<double> day = ReadDate(text, locale_);
        if (text.trimmed().isEmpty() || !day || !std::isfinite(*day))
            return std::nullopt;
        const double scaled = std::nearbyint(*day * 10000.0);
        if (std::fabs(scaled) >= 9.2233720368547e18)
            return std::nullopt;
        RecordCodec::writeInt64(out, 1, static_cast<int64_t>(scaled));
        return out;
    }
    }
    return std::nullopt;
}

} // namespace ff::gui
