#pragma once
// One field of the record as find and replace sees it: the text its stored bytes stand for, and
// the bytes a replaced text goes back as. Texts, number combos, check fields and notes are stored
// as text and are taken byte for byte. Number fields (floats, money, whole numbers) are taken on
// their stored form, the value as a plain number text with the system's decimal separator and no
// group marks ("1250.5" for an amount shown as 1,250.50), so that a replacement acts on the
// digits of the value; the new text is read back as a number. Date fields, whose stored form is a
// day number no user reads, are taken on the text they show and read back as a date.

#include "search/SearchQuery.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <optional>

namespace ff {
class RecordCodec;
}

namespace ff::gui {

class ReplaceableField {
public:
    ReplaceableField(const SearchField &field, const RecordCodec &codec, QChar decimalSeparator, QLocale locale);

    // Whether the field takes a replaced text at all: text fields, combos, check fields, notes,
    // numbers, money and dates.
    bool takesText() const;

    // The field's text in the plain record `record` (RecordLength bytes).
    QString text(const QByteArray &record) const;

    // The field's new bytes (exactly its length, not scrambled) for `text`: a text padded with
    // blanks and cut to the field's length, a number or date in its binary form. No value when the
    // text is no number or date, or its value does not fit the field.
    std::optional<QByteArray> bytes(const QString &text) const;

private:
    enum class Form { None, Text, Float, Money, Whole, Date };
    static Form formOf(const SearchField &field);

    SearchField field_;
    const RecordCodec &codec_;
    QString separator_;
    QLocale locale_;
    Form form_;
};

} // namespace ff::gui
