#include "search/SearchNames.h"

#include "search/SearchPattern.h"

namespace ff {

SearchNames::SearchNames(const Design &design, const RecordLayout &layout) : design_(design), layout_(layout)
{
    auto add = [this](const QString &tag, SearchKind kind, int index) {
        const QString name = tag.trimmed().toLower();
        if (!name.isEmpty() && describe(kind, index).valid())
            entries_.append({name, kind, index});
    };
    for (size_t i = 1; i < design.Fields.size(); ++i)
        add(design.Fields[i].Tag, SearchKind::Field, int(i));
    for (size_t i = 1; i < design.Combos.size(); ++i)
        add(design.Combos[i].Tag, SearchKind::Combo, int(i));
    for (size_t i = 0; i < design.Checks.size(); ++i)
        add(design.Checks[i].Tag, SearchKind::Check, int(i));
    for (size_t i = 1; i < design.Notes.size(); ++i)
        add(design.Notes[i].Tag, SearchKind::Note, int(i));
}

static ValueKind valueForFormat(int format, bool storedAsText)
{
    if (storedAsText) {
        if (format >= 1 && format <= 5)
            return ValueKind::NumberText;
        if (format >= 6 && format <= 9)
            return ValueKind::DateText;
        if (format >= 10 && format <= 12)
            return ValueKind::TimeText;
        return ValueKind::Text;
    }
    switch (format) {
    case 1: return ValueKind::Float;
    case 2: case 3: case 4: case 6: case 7: case 8: case 9: return ValueKind::Currency;
    case 5: return ValueKind::Whole;
    case 10: case 11: case 12: return ValueKind::TimeText;
    default: return ValueKind::Text;
    }
}

SearchField SearchNames::describe(SearchKind kind, int index) const
{
    SearchField f;
    auto in = [index](const auto &v) { return index >= 0 && index < int(v.size()); };
    switch (kind) {
    case SearchKind::Field:
        if (index < 1 || !in(layout_.FieldOffset) || !in(design_.Fields) || layout_.FieldOffset[index] == 0)
            return f;
        f.format = design_.Fields[index].FieldType;
        f.offset = layout_.FieldOffset[index] - 1;
        f.length = layout_.FieldSize[index];
        f.value = valueForFormat(f.format, false);
        break;
    case SearchKind::Combo:
        if (index < 1 || !in(layout_.ComboOffset) || !in(design_.Combos) || layout_.ComboOffset[index] == 0)
            return f;
        f.format = design_.Combos[index].ComboFormat;
        f.offset = layout_.ComboOffset[index] - 1;
        f.length = layout_.ComboSize[index];
        f.value = valueForFormat(f.format, true);
        break;
    case SearchKind::Check:
        if (!in(layout_.CheckOffset) || layout_.CheckOffset[index] == 0)
            return f;
        f.offset = layout_.CheckOffset[index] - 1;
        f.length = 1;
        f.value = ValueKind::CheckByte;
        break;
    case SearchKind::Note:
        if (index < 1 || !in(layout_.NoteOffset) || layout_.NoteOffset[index] == 0)
            return f;
        f.offset = layout_.NoteOffset[index] - 1;
        f.length = layout_.NoteSize[index];
        break;
    case SearchKind::Picture:
        if (!in(layout_.PictureOffset) || layout_.PictureOffset[index] == 0)
            return f;
        f.offset = layout_.PictureOffset[index] - 1;
        f.length = kPictureNameLength;
        break;
    case SearchKind::None:
        return f;
    }
    if (f.length <= 0 || f.offset + f.length > layout_.RecordLength)
        return SearchField{};
    f.kind = kind;
    f.index = index;
    return f;
}

SearchField SearchNames::lookup(const QString &lowerName) const
{
    for (const Entry &e : entries_)
        if (e.name == lowerName)
            return describe(e.kind, e.index);
    return {};
}

QVector<SearchField> SearchNames::matching(const QString &lowerPattern) const
{
    QVector<SearchField> out;
    const SearchPattern pattern(lowerPattern.toLatin1());
    uint8_t same[256];
    for (int c = 0; c < 256; ++c)
        same[c] = static_cast<uint8_t>(c);
    for (const Entry &e : entries_) {
        const QByteArray name = e.name.toLatin1();
        if (pattern.matches(reinterpret_cast<const uint8_t *>(name.constData()), int(name.size()), same))
            out.append(describe(e.kind, e.index));
    }
    return out;
}

SearchField SearchNames::byTag(const QString &tag) const
{
    const SearchField named = lookup(tag.trimmed().toLower());
    if (named.valid())
        return named;
    if (tag.size() < 2)
        return {};
    bool ok = false;
    const int n = tag.mid(1).toInt(&ok);
    if (!ok)
        return {};
    switch (tag.at(0).toUpper().unicode()) {
    case 'F': return describe(SearchKind::Field, n);
    case 'C': return describe(SearchKind::Combo, n);
    case 'K': return describe(SearchKind::Check, n);
    case 'M': return describe(SearchKind::Note, n);
    case 'P': return describe(SearchKind::Picture, n);
    default: return {};
    }
}

QVector<SearchField> SearchNames::defaultColumns() const
{
    QVector<SearchField> out;
    for (int k = 1; k <= kColumnSlots; ++k) {
        const SearchField f = describe(SearchKind::Field, design_.SearchSetting[size_t(k)]);
        if (f.valid())
            out.append(f);
    }
    for (size_t i = 1; out.isEmpty() && i < design_.Fields.size(); ++i) {
        // No column is set: the first stored fields, up to ten.
        for (size_t j = i; j < design_.Fields.size() && out.size() < kColumnSlots; ++j) {
            const SearchField f = describe(SearchKind::Field, int(j));
            if (f.valid())
                out.append(f);
        }
        break;
    }
    return out;
}

} // namespace ff
