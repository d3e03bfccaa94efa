#include "store/RecordLayout.h"

#include <algorithm>

namespace ff {

int FieldByteSize(const FieldElement &field)
{
    switch (field.FieldType) {
    case 1: case 2: case 3: case 4: case 6: case 7: case 8: case 9:
        return 8;
    case 5:
        return 4;
    case 23:
        return 10;
    default:
        return std::max(0, static_cast<int>(field.MaxLength));
    }
}

bool FieldIsStored(const FieldElement &field) { return Design::onPage(field.FieldPage) && !field.FieldGlobal; }

RecordLayout ComputeRecordLayout(const Design &design)
{
    RecordLayout l;
    int visited = 0;
    auto place = [&l](int size) {
        const int at = l.RecordLength;
        l.RecordLength += size;
        return at;
    };

    l.FieldOffset.assign(design.Fields.size(), 0);
    l.FieldSize.assign(design.Fields.size(), 0);
    for (size_t i = 1; i < design.Fields.size(); ++i) {
        ++visited;
        const FieldElement &f = design.Fields[i];
        if (!FieldIsStored(f))
            continue;
        l.FieldSize[i] = FieldByteSize(f);
        l.FieldOffset[i] = place(l.FieldSize[i]);
    }
    l.ComboOffset.assign(design.Combos.size(), 0);
    l.ComboSize.assign(design.Combos.size(), 0);
    for (size_t i = 1; i < design.Combos.size(); ++i) {
        ++visited;
        const ComboElement &c = design.Combos[i];
        if (!Design::onPage(c.ComboPage))
            continue;
        l.ComboSize[i] = std::max(0, static_cast<int>(c.MaxLength));
        l.ComboOffset[i] = place(l.ComboSize[i]);
    }
    l.CheckOffset.assign(design.Checks.size(), 0);
    for (size_t i = 0; i < design.Checks.size(); ++i) {
        ++visited;
        if (Design::onPage(design.Checks[i].CheckPage))
            l.CheckOffset[i] = place(1);
    }
    // A per-record picture keeps its name whatever its page.
    l.PictureOffset.assign(design.Pictures.size(), 0);
    for (size_t i = 0; i < design.Pictures.size(); ++i) {
        ++visited;
        if (design.Pictures[i].Stretch)
            l.PictureOffset[i] = place(kPictureNameLength);
    }
    l.NoteOffset.assign(design.Notes.size(), 0);
    l.NoteSize.assign(design.Notes.size(), 0);
    for (size_t i = 1; i < design.Notes.size(); ++i) {
        ++visited;
        const NoteElement &n = design.Notes[i];
        if (!Design::onPage(n.NotePage))
            continue;
        l.NoteSize[i] = std::max(0, static_cast<int>(n.MaxLength));
        l.NoteOffset[i] = place(l.NoteSize[i]);
    }
    if (design.Titles.size() > 4 && design.Titles[4].present && Design::onPage(design.Titles[4].TitlePage))
        l.StampOffset = place(kStampLength);
    if (design.FlowPageEnabled == 1)
        l.FlowOffset = place(kFlowAreaLength);
    l.ColumnCount = visited + 15;
    return l;
}

} // namespace ff
