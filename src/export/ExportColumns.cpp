#include "export/ExportColumns.h"

#include <QHash>

#include <algorithm>

namespace ff {

bool ExportPageCounts(int page, const PageAllowed &allowed)
{
    if (page == -1)
        return true;
    return page >= 0 && page < kPageLimit && allowed[size_t(page)];
}

namespace {

// The four name tables, with the "2_Name" rule and its one counter.
struct NameTables {
    std::vector<QString> fields, combos, notes, checks;
};

template <typename Element, typename TagOf>
std::vector<QString> uniqueNames(const std::vector<Element> &elements, size_t first, TagOf tagOf, int &counter)
{
    std::vector<QString> names(elements.size());
    QHash<QString, int> seen;
    for (size_t i = first; i < elements.size(); ++i) {
        const QString tag = tagOf(elements[i]);
        if (seen[tag]++ == 0)
            names[i] = tag;
        else
            names[i] = QString::number(counter++) + QLatin1Char('_') + tag;
    }
    return names;
}

NameTables buildNames(const Design &d)
{
    int counter = 2;
    NameTables t;
    t.fields = uniqueNames(d.Fields, 1, [](const FieldElement &e) { return e.Tag; }, counter);
    t.combos = uniqueNames(d.Combos, 1, [](const ComboElement &e) { return e.Tag; }, counter);
    t.notes = uniqueNames(d.Notes, 1, [](const NoteElement &e) { return e.Tag; }, counter);
    t.checks = uniqueNames(d.Checks, 0, [](const CheckElement &e) { return e.Tag; }, counter);
    return t;
}

} // namespace

std::vector<ExportColumn> TabWalkColumns(const Design &d, const PageAllowed &allowed, TabWalkOrder order)
{
    const int checkRank = order == TabWalkOrder::TextCheckComboNote ? 1 : 2;
    const int comboRank = order == TabWalkOrder::TextCheckComboNote ? 2 : 1;
    const NameTables names = buildNames(d);
    int highest = -1;
    for (size_t i = 1; i < d.Fields.size(); ++i)
        highest = std::max<int>(highest, d.Fields[i].FieldTabOrder);
    for (const CheckElement &e : d.Checks)
        highest = std::max<int>(highest, e.CheckTabOrder);
    for (size_t i = 1; i < d.Combos.size(); ++i)
        highest = std::max<int>(highest, d.Combos[i].ComboTabOrder);
    for (size_t i = 1; i < d.Notes.size(); ++i)
        highest = std::max<int>(highest, d.Notes[i].NoteTabOrder);

    // Elements grouped by position once, so that a design with high positions is walked in one pass.
    struct Slot {
        int position;
        int family; // 0 text, 1 check, 2 combo, 3 note
        int index;
        int rank; // the family's place at one position
    };
    std::vector<Slot> slots;
    for (size_t i = 1; i < d.Fields.size(); ++i)
        if (ExportPageCounts(d.Fields[i].FieldPage, allowed))
            slots.push_back({d.Fields[i].FieldTabOrder, 0, int(i), 0});
    for (size_t i = 0; i < d.Checks.size(); ++i)
        if (ExportPageCounts(d.Checks[i].CheckPage, allowed))
            slots.push_back({d.Checks[i].CheckTabOrder, 1, int(i), checkRank});
    for (size_t i = 1; i < d.Combos.size(); ++i)
        if (ExportPageCounts(d.Combos[i].ComboPage, allowed))
            slots.push_back({d.Combos[i].ComboTabOrder, 2, int(i), comboRank});
    for (size_t i = 1; i < d.Notes.size(); ++i)
        if (ExportPageCounts(d.Notes[i].NotePage, allowed))
            slots.push_back({d.Notes[i].NoteTabOrder, 3, int(i), 3});
    slots.erase(std::remove_if(slots.begin(), slots.end(),
                               [highest](const Slot &s) { return s.position < 0 || s.position > highest; }),
                slots.end());
    std::stable_sort(slots.begin(), slots.end(), [](const Slot &a, const Slot &b) {
        return a.position != b.position ? a.position < b.position : a.rank < b.rank;
    });

    std::vector<ExportColumn> columns;
    columns.reserve(slots.size());
    for (const Slot &s : slots) {
        const size_t i = size_t(s.index);
        switch (s.family) {
        case 0: columns.push_back({ElementKind::Field, s.index, names.fields[i], d.Fields[i].Width}); break;
        case 1: columns.push_back({ElementKind::Check, s.index, names.checks[i], 0}); break;
        case 2: columns.push_back({ElementKind::Combo, s.index, names.combos[i], d.Combos[i].Width}); break;
        default: columns.push_back({ElementKind::Note, s.index, names.notes[i], d.Notes[i].Width}); break;
        }
    }
    return columns;
}

std::vector<ExportColumn> PictureColumns(const Design &d, const PageAllowed &allowed)
{
    std::vector<ExportColumn> columns;
    for (size_t i = 0; i < d.Pictures.size(); ++i) {
        const PictureElement &p = d.Pictures[i];
        if (p.Stretch && ExportPageCounts(p.PicturePage, allowed))
            columns.push_back({ElementKind::Picture, int(i), p.PictureName, p.Width});
    }
    return columns;
}

} // namespace ff
