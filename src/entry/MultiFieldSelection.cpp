#include "entry/MultiFieldSelection.h"

namespace ff {

void MultiFieldSelection::add(FocusKind kind, int index, const QString &value)
{
    ++count_;
    fields_.append({kind, index});
    // No "+" in front of the first value: a leading "+" would give the find an empty first term.
    if (count_ > 1)
        searchText_ += QLatin1Char('+');
    searchText_ += value;
}

void MultiFieldSelection::clear()
{
    count_ = 0;
    fields_.clear();
    searchText_.clear();
}

} // namespace ff
