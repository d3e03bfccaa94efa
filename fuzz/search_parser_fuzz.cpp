// libFuzzer target for the search language: any line is parsed over a design with every kind of
// named element, as a command or a plain find, with and without match-case. The compiled query
// must stay inside the record (offsets, lengths, replacement sizes), and its patterns and value
// readers are run against a record buffer filled from the input.

#include "search/CaseFold.h"
#include "search/FieldReader.h"
#include "search/SearchNames.h"
#include "search/SearchParser.h"
#include "store/RecordLayout.h"

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

ff::Design makeDesign()
{
    ff::Design d;
    const uint8_t types[] = {0, 0, 1, 2, 5, 7, 10, 12, 6, 23, 15};
    const char *tags[] = {"", "name", "amount", "price", "qty", "when", "short", "time", "stamp", "code", "part"};
    d.Fields.resize(11);
    for (int i = 1; i <= 10; ++i) {
        d.Fields[size_t(i)].FieldType = types[i];
        d.Fields[size_t(i)].MaxLength = 12;
        d.Fields[size_t(i)].Tag = QString::fromLatin1(tags[i]);
    }
    d.FieldCount = 10;
    d.Combos.resize(4);
    for (int i = 1; i <= 3; ++i) {
        d.Combos[size_t(i)].MaxLength = 8;
        d.Combos[size_t(i)].ComboFormat = (i - 1) * 4; // text, number, date
        d.Combos[size_t(i)].Tag = QStringLiteral("c%1").arg(i);
    }
    d.ComboCount = 3;
    d.Checks.resize(2);
    d.Checks[0].Tag = QStringLiteral("paid");
    d.Checks[1].Tag = QStringLiteral("name"); // a second holder of a name
    d.CheckCount = 1;
    d.Notes.resize(2);
    d.Notes[1].MaxLength = 40;
    d.Notes[1].Tag = QStringLiteral("memo");
    d.NoteCount = 1;
    d.Titles.resize(6);
    d.SearchSetting[1] = 1;
    d.SearchSetting[2] = 4;
    return d;
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ff::Design design = makeDesign();
    static const ff::RecordLayout layout = ff::ComputeRecordLayout(design);
    static const ff::SearchNames names(design, layout);
    static const ff::SearchParser parser(names, QLatin1Char('.'));
    static const ff::CaseFold fold{ff::CodePage(0)};
    static const ff::FieldReader reader(QLatin1Char('.'));
    if (size == 0 || size > 4096)
        return 0;
    const bool matchCase = data[0] & 1;
    const int focusIndex = 1 + (data[0] >> 1) % 10;
    const QString line = QString::fromLatin1(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));

    std::vector<uint8_t> record(size_t(layout.RecordLength), ' ');
    for (size_t k = 0; k < record.size() && k + 1 < size; ++k)
        record[k] = data[k + 1];

    const ff::SearchField focus = names.describe(ff::SearchKind::Field, focusIndex);
    const ff::CompiledQuery q = parser.parse(line, matchCase, focus);
    auto inside = [&](const ff::SearchField &f) { return f.offset >= 0 && f.length > 0 && f.offset + f.length <= layout.RecordLength; };
    check(q.columnCount >= 0 && q.columnCount <= ff::kColumnSlots);
    for (int k = 0; k < q.columnCount; ++k)
        check(inside(q.columns[size_t(k)]));
    for (const ff::ConditionRow &row : q.conditions) {
        check(inside(row.field));
        int64_t v = 0;
        reader.fixedValue(row.field, record.data(), v);
        const uint8_t *p = record.data() + row.field.offset;
        row.pattern.matches(p, reader.stored().trimmedLength(p, row.field.length), fold.table());
        row.pattern.matches(reinterpret_cast<const uint8_t *>(row.text.constData()), int(row.text.size()), fold.table());
    }
    for (const ff::ReplacementRow &row : q.replacements) {
        check(inside(row.field));
        check(row.bytes.size() == row.field.length);
    }
    for (const ff::FindTerm &t : q.terms)
        ff::ContainsFolded(record.data(), int(record.size()), t.text, fold.table());
    return 0;
}
