#include "charts/ChartReader.h"

namespace ff::charts {

namespace {

SearchKind searchKindOf(ChartKind kind)
{
    switch (kind) {
    case ChartKind::Field: return SearchKind::Field;
    case ChartKind::Combo: return SearchKind::Combo;
    case ChartKind::Check: return SearchKind::Check;
    }
    return SearchKind::None;
}

} // namespace

ChartReader::ChartReader(RecordStore &store, ChartKind kind, int index)
    : store_(store), names_(store.design(), store.layout()), field_(names_.describe(searchKindOf(kind), index)),
      reader_(store.codec().decimalSeparator(), QLocale(), StoredBytes(store.design().ScrambleRecords == 1)),
      recordCount_(store.RecordCount()), order_(store.browseOrder()), index_(store.SortIndex())
{
}

bool ChartReader::numeric() const
{
    return field_.kind == SearchKind::Field && field_.format >= 1 && field_.format <= 5;
}

bool ChartReader::storedNumber() const
{
    return field_.kind == SearchKind::Field && field_.format >= 1 && field_.format <= 9;
}

} // namespace ff::charts
