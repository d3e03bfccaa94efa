#include "export/ImportRecordMaker.h"

#include "core/Scramble.h"
#include "formula/DateReader.h"
#include "formula/NumberText.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace ff {

namespace {

constexpr size_t kDateMemory = 8192; // answers of the date reader kept per maker

bool isDateType(int type) { return type >= 6 && type <= 9; }
bool isNumberType(int type) { return type >= 1 && type <= 5; }

// Money and dates are stored as value times 10,000 in 64 bits.
bool currencyFits(double v)
{
    const double scaled = std::nearbyint(v * 10000.0);
    return std::isfinite(scaled) && std::fabs(scaled) < 9.2233720368547e18;
}

// Val's reading of a text already stripped of blanks, tabs and line feeds, with every character
// outside ASCII made '?': a sign, digits, one point, an exponent in E or D. The number is
// converted as strtod converts it (both round correctly), by the faster from_chars.
double valOfStripped(const char *s, size_t n)
{
    std::string number;
    number.reserve(n + 1);
    size_t i = 0;
    bool negative = false;
    if (i < n && (s[i] == '+' || s[i] == '-'))
        negative = s[i++] == '-';
    bool digits = false;
    while (i < n && s[i] >= '0' && s[i] <= '9') {
        number.push_back(s[i++]);
        digits = true;
    }
    if (i < n && s[i] == '.') {
        number.push_back(s[i++]);
        while (i < n && s[i] >= '0' && s[i] <= '9') {
            number.push_back(s[i++]);
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    if (i < n && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        size_t j = i + 1;
        std::string exponent(1, 'e');
        if (j < n && (s[j] == '+' || s[j] == '-'))
            exponent.push_back(s[j++]);
        bool expDigits = false;
        while (j < n && s[j] >= '0' && s[j] <= '9') {
            exponent.push_back(s[j++]);
            expDigits = true;
        }
        if (expDigits)
            number += exponent;
    }
    double value = 0;
    const std::from_chars_result r = std::from_chars(number.data(), number.data() + number.size(), value);
    if (r.ec != std::errc())
        value = std::strtod(number.c_str(), nullptr); // beyond the range of a double: strtod's infinity or 0
    return negative ? -value : value;
}

// Digits of a number text, leading zeros not counted: at most 15 come back the same through the
// 15-digit text of the double they give.
int significantDigits(std::string_view text)
{
    int digits = 0;
    bool leading = true;
    for (const char c : text) {
        if (c >= '1' && c <= '9')
            leading = false;
        if (c >= '0' && c <= '9' && !leading)
            ++digits;
        if (c == 'e' || c == 'E' || c == 'd' || c == 'D')
            break;
    }
    return digits;
}

} // namespace

// ---- columns ----

ImportColumns ImportColumns::match(const Design &design, const QStringList &header)
{
    ImportColumns c;
    auto columnOf = [&header](const QString &name) -> int {
        const QString upper = name.toUpper();
        if (upper.isEmpty() || upper == QLatin1String("NO."))
            return -1;
        return int(header.indexOf(upper));
    };
    auto fill = [&](std::vector<int> &table, size_t size, size_t first, auto nameOf) {
        table.assign(size, -1);
        for (size_t i = first; i < size; ++i) {
            table[i] = columnOf(nameOf(i));
            if (table[i] >= 0)
                ++c.matched;
        }
    };
    fill(c.field, design.Fields.size(), 1, [&](size_t i) { return design.Fields[i].Tag; });
    fill(c.combo, design.Combos.size(), 1, [&](size_t i) { return design.Combos[i].Tag; });
    fill(c.check, design.Checks.size(), 0, [&](size_t i) { return design.Checks[i].Tag; });
    fill(c.note, design.Notes.size(), 1, [&](size_t i) { return design.Notes[i].Tag; });
    c.picture.assign(design.Pictures.size(), -1);
    for (size_t i = 0; i < design.Pictures.size(); ++i) {
        if (!design.Pictures[i].Stretch)
            continue; // only record pictures take a picture from a row
        c.picture[i] = columnOf(design.Pictures[i].PictureName);
        if (c.picture[i] >= 0) {
            ++c.matched;
            ++c.pictureColumns;
        }
    }
    return c;
}

// ---- the maker ----

ImportRecordMaker::ImportRecordMaker(const Design &design, const RecordLayout &layout, const ImportColumns &columns,
                                     FormulaHooks &hooks, QChar decimalSeparator, const Page &blank, QLocale locale)
    : design_(design), layout_(layout), columns_(columns), hooks_(hooks), decimalSeparator_(decimalSeparator),
      separatorText_(decimalSeparator), blank_(blank), locale_(std::move(locale)), codePage_(design.FontCharset),
      codec_(design, layout, hooks, decimalSeparator), page_(design), dateSlots_(kDateMemory),
      dateTextSlots_(kDateMemory)
{
    // The blank page's values, copied to this maker's own memory: the strings of a page shared
    // by two threads would have their use counts bounced between the cores for every record.
    const auto own = [](const QVector<QString> &texts) {
        QVector<QString> copy;
        copy.reserve(texts.size());
        for (const QString &t : texts)
            copy.append(t.isNull() ? QString() : QString(t.constData(), t.size()));
        return copy;
    };
    blankFieldText_ = own(blank.FieldText);
    blankComboText_ = own(blank.ComboText);
    blankNoteText_ = own(blank.NoteText);
    blankPictureNames_ = own(blank.PictureRecordName);
    blankFieldDate_ = QVector<double>(blank.FieldDate.cbegin(), blank.FieldDate.cend());
    blankFieldLocked_ = QVector<bool>(blank.FieldLocked.cbegin(), blank.FieldLocked.cend());
    blankCheckValue_ = QVector<int>(blank.CheckValue.cbegin(), blank.CheckValue.cend());
    for (size_t i = 1; i < design.Fields.size(); ++i)
        formulas_ = formulas_ || !design.Fields[i].FieldFormula.isEmpty();
    Result<QByteArray> packed = codec_.pack(blank_);
    blankPlain_ = packed ? codec_.plain(*packed) : QByteArray(layout.RecordLength, ' ');
    record_ = QByteArray(layout.RecordLength, ' ');
}

double ImportRecordMaker::NumberFromBytes(std::string_view bytes, QChar decimalSeparator, const CodePage &codePage,
                                          std::string *cleaned)
{
    const char16_t sep = decimalSeparator.unicode();
    if (sep >= 128 || sep == 0) {
        // A separator outside ASCII: through the text, as the field would read it.
        return Val(CleanNumberCopy(codePage.decode(bytes.data(), qsizetype(bytes.size())), QString(decimalSeparator)));
    }
    // CleanNumber, then Val's skipping of blanks, on the bytes.
    std::string clean;
    clean.reserve(bytes.size());
    const bool otherPoint = sep != '.';
    const bool letter = std::isalpha(int(sep)) != 0;
    for (const char c : bytes) {
        if (otherPoint && c == '.')
            continue;
        if (otherPoint && (c == char(sep) || (letter && std::tolower(uint8_t(c)) == std::tolower(int(sep))))) {
            clean.push_back('.');
            continue;
        }
        if (c == ',' || c == '\'' || uint8_t(c) == 0xA0 || c == ' ' || c == '\t' || c == '\n')
            continue;
        clean.push_back(uint8_t(c) < 128 ? c : '?');
    }
    const double value = valOfStripped(clean.data(), clean.size());
    if (cleaned)
        *cleaned = std::move(clean);
    return value;
}

std::optional<double> ImportRecordMaker::date(std::string_view bytes) const
{
    // The reader's answers are kept in a table of slots by a hash of the text: the same dates
    // come again and again in an import.
    uint32_t hash = 2166136261u;
    for (const char c : bytes)
        hash = (hash ^ uint8_t(c)) * 16777619u;
    DateSlot &slot = dateSlots_[hash % dateSlots_.size()];
    if (slot.used && slot.key == bytes)
        return slot.value;
    slot.value = ReadDate(codePage_.decode(bytes.data(), qsizetype(bytes.size())), locale_);
    slot.key.assign(bytes);
    slot.used = true;
    return slot.value;
}

QString ImportRecordMaker::dateText(int field, int type, double day) const
{
    // Formatting a date goes through the system's local time for every call; the same days come
    // again and again, and the text depends on the type and the day alone. The texts are kept in
    // a table of slots by a hash of both.
    uint64_t bits = 0;
    std::memcpy(&bits, &day, sizeof bits);
    const uint64_t hash = (bits ^ uint64_t(type)) * 0x9E3779B97F4A7C15ull;
    DateTextSlot &slot = dateTextSlots_[(hash >> 40) % dateTextSlots_.size()];
    if (slot.type != type || slot.day != day) {
        slot.text = hooks_.FormatFieldValue(design_, field, day);
        slot.type = type;
        slot.day = day;
    }
    return slot.text;
}

bool ImportRecordMaker::numberFits(int type, double value) const
{
    if (!std::isfinite(value))
        return false;
    if (type == 5) {
        const double v = std::nearbyint(value);
        return v >= INT32_MIN && v <= INT32_MAX;
    }
    return type == 1 || currencyFits(value);
}

void ImportRecordMaker::putText(char *plain, int offset1, int size, std::string_view bytes) const
{
    if (offset1 < 1 || size <= 0 || offset1 - 1 + size > layout_.RecordLength)
        return;
    const size_t n = std::min<size_t>(size_t(size), bytes.size());
    std::memcpy(plain + offset1 - 1, bytes.data(), n);
    std::memset(plain + offset1 - 1 + n, ' ', size_t(size) - n);
}

void ImportRecordMaker::fillBytes(const ImportRows &rows, int row, const QString *pictureNames, char *plain,
                                  QStringList &warnings)
{
    QByteArray scratch(8, '\0');
    if (formulas_) {
        rowNumbers_.resize(design_.Fields.size());
        for (RowNumber &n : rowNumbers_)
            n.read = false;
        numbersRows_ = &rows;
        numbersRow_ = row;
    }
    for (size_t i = 1; i < design_.Fields.size(); ++i) {
        const int column = columns_.field[i];
        const int at = layout_.FieldOffset[i];
        if (column < 0 || at == 0 || column >= rows.valueCount(row))
            continue;
        const std::string_view value = rows.value(row, column);
        const int type = design_.Fields[i].FieldType;
        if (isDateType(type)) {
            const std::optional<double> d = date(value);
            const double day = d && currencyFits(*d) ? *d : 0.0;
            RecordCodec::writeInt64(scratch, 1, static_cast<int64_t>(std::nearbyint(day * 10000.0)));
            std::memcpy(plain + at - 1, scratch.constData(), 8);
        } else if (isNumberType(type)) {
            double v;
            if (formulas_) {
                // The formulas may name the field: its cleaned text is kept for them.
                RowNumber &kept = rowNumbers_[i];
                kept.value = v = NumberFromBytes(value, decimalSeparator_, codePage_, &kept.cleaned);
                kept.read = true;
            } else {
                v = NumberFromBytes(value, decimalSeparator_, codePage_);
            }
            if (!numberFits(type, v)) {
                warnings << QStringLiteral("%1 does not fit field %2").arg(codePage_.decode(value.data(), qsizetype(value.size())), design_.Fields[i].Tag);
                v = 0;
            }
            if (type == 1) {
                // The field shows 15 digits, and that is what it keeps, as when typed. A text of
                // no more digits than that gives that double already.
                if (significantDigits(value) > 15)
                    v = Val(NumberToText(v));
                RecordCodec::writeDouble(scratch, 1, v);
            } else if (type == 5) {
                RecordCodec::writeInt32(scratch, 1, static_cast<int32_t>(std::nearbyint(v)));
            } else {
                RecordCodec::writeInt64(scratch, 1, static_cast<int64_t>(std::nearbyint(v * 10000.0)));
            }
            std::memcpy(plain + at - 1, scratch.constData(), type == 5 ? 4 : 8);
        } else {
            putText(plain, at, layout_.FieldSize[i], value);
        }
    }
    for (size_t i = 1; i < design_.Combos.size(); ++i)
        if (columns_.combo[i] >= 0 && layout_.ComboOffset[i] && columns_.combo[i] < rows.valueCount(row))
            putText(plain, layout_.ComboOffset[i], layout_.ComboSize[i], rows.value(row, columns_.combo[i]));
    for (size_t i = 0; i < design_.Checks.size(); ++i) {
        const int column = columns_.check[i];
        if (column >= 0 && layout_.CheckOffset[i] && column < rows.valueCount(row))
            plain[layout_.CheckOffset[i] - 1] = NumberFromBytes(rows.value(row, column), decimalSeparator_, codePage_) != 0 ? '1' : '0';
    }
    for (size_t i = 1; i < design_.Notes.size(); ++i)
        if (columns_.note[i] >= 0 && layout_.NoteOffset[i] && columns_.note[i] < rows.valueCount(row))
            putText(plain, layout_.NoteOffset[i], layout_.NoteSize[i], rows.value(row, columns_.note[i]));
    if (pictureNames) {
        for (size_t i = 0; i < design_.Pictures.size(); ++i) {
            const int at = layout_.PictureOffset[i];
            if (columns_.picture[i] < 0 || !at)
                continue;
            const QByteArray name = codePage_.encode(pictureNames[i]).left(kPictureNameLength);
            std::memset(plain + at - 1, ' ', kPictureNameLength);
            std::memcpy(plain + at - 1 + kPictureNameLength - name.size(), name.constData(), size_t(name.size()));
        }
    }
}

// ---- the row as a pending record: what the page would hold for each element ----

int ImportRecordMaker::columnOf(const std::vector<int> &columns, int n) const
{
    const int column = n >= 0 && size_t(n) < columns.size() ? columns[size_t(n)] : -1;
    return column >= 0 && column < rows_->valueCount(row_) ? column : -1;
}

QString ImportRecordMaker::textOf(int column) const
{
    const std::string_view v = rows_->value(row_, column);
    return codePage_.decode(v.data(), qsizetype(v.size()));
}

double ImportRecordMaker::dayOf(int n) const
{
    const int column = columnOf(columns_.field, n);
    if (column < 0)
        return blankFieldDate_.value(n);
    const std::optional<double> d = date(rows_->value(row_, column));
    return d && currencyFits(*d) ? *d : 0.0;
}

QString ImportRecordMaker::fieldText(int n) const
{
    const int column = columnOf(columns_.field, n);
    if (column < 0)
        return blankFieldText_.value(n);
    const int type = design_.Fields[size_t(n)].FieldType;
    if (isDateType(type)) {
        const double day = dayOf(n);
        return day == 0 ? QString() : dateText(n, type, day);
    }
    if (isNumberType(type)) {
        std::string own;
        const std::string_view value = rows_->value(row_, column);
        const bool kept = numbersRows_ == rows_ && numbersRow_ == row_ && size_t(n) < rowNumbers_.size() && rowNumbers_[size_t(n)].read;
        const double v = kept ? rowNumbers_[size_t(n)].value : NumberFromBytes(value, decimalSeparator_, codePage_, &own);
        const std::string &cleaned = kept ? rowNumbers_[size_t(n)].cleaned : own;
        if (!numberFits(type, v))
            return QStringLiteral("0"); // fillBytes has told it
        if (decimalSeparator_.unicode() < 128 && !cleaned.empty() && !(type == 1 && significantDigits(value) > 15)) {
            // The text through the number clean-up, with the system's decimal separator, so
            // that the record's own reading of it (PackRecord) finds the same number.
            QString t = QString::fromLatin1(cleaned.data(), qsizetype(cleaned.size()));
            if (decimalSeparator_ != QLatin1Char('.'))
                t.replace(QLatin1Char('.'), decimalSeparator_);
            return t;
        }
        return NumberToText(v, separatorText_);
    }
    return textOf(column);
}

QString ImportRecordMaker::comboText(int n) const
{
    const int column = columnOf(columns_.combo, n);
    return column < 0 ? blankComboText_.value(n) : textOf(column);
}

int ImportRecordMaker::checkValue(int n) const
{
    const int column = columnOf(columns_.check, n);
    if (column < 0)
        return blankCheckValue_.value(n);
    return NumberFromBytes(rows_->value(row_, column), decimalSeparator_, codePage_) != 0 ? 1 : 0;
}

void ImportRecordMaker::putOnPage(ElementKind kind, int n, Page &page)
{
    switch (kind) {
    case ElementKind::Field:
        page.FieldText[n] = fieldText(n);
        page.FieldDate[n] = isDateType(design_.Fields[size_t(n)].FieldType) ? dayOf(n) : blankFieldDate_.value(n);
        break;
    case ElementKind::Combo: page.ComboText[n] = comboText(n); break;
    case ElementKind::Check: page.CheckValue[n] = checkValue(n); break;
    case ElementKind::Note: {
        const int column = columnOf(columns_.note, n);
        page.NoteText[n] = column < 0 ? blankNoteText_.value(n) : textOf(column);
        break;
    }
    default: return;
    }
    onPage_.emplace_back(kind, n);
}

void ImportRecordMaker::make(const ImportRows &rows, int row, int64_t record, const QString *pictureNames, char *out,
                             QStringList &warnings)
{
    const int length = layout_.RecordLength;
    std::memcpy(record_.data(), blankPlain_.constData(), size_t(length));
    fillBytes(rows, row, pictureNames, record_.data(), warnings);
    if (formulas_) {
        // The formulas run on the row as a pending record; what they write goes on the page and
        // from there into the record, element by element. The rest keeps the row's bytes, which
        // are what packing the row's values would give.
        rows_ = &rows;
        row_ = row;
        onPage_.clear();
        hooks_.RunFormulas(page_, int(record), *this);
        Status packed;
        for (const auto &[kind, n] : onPage_) {
            packed = codec_.packElement(record_, kind, size_t(n), page_);
            if (!packed)
                break;
        }
        if (!packed) {
            // A formula gave a value its field cannot hold: the record keeps the new record's
            // defaults, as a save that fails would.
            warnings << QStringLiteral("record %1: %2").arg(record).arg(packed.error().text);
            std::memcpy(record_.data(), blankPlain_.constData(), size_t(length));
        }
    }
    std::memcpy(out, record_.constData(), size_t(length));
    if (design_.ScrambleRecords == 1)
        ScrambleBytes(out, length);
}

} // namespace ff
