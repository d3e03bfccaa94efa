#pragma once
// The fields picked with the right button for a find over several fields at once: a running count,
// the kind and number of each field in the order they were picked, and the search text in progress
// with the picked values joined by "+" (all terms must be found). The search window takes it as
// the field group of the next plain find and clears it after that search.

#include "entry/EntryState.h"

#include <QString>
#include <QVector>

namespace ff {

class MultiFieldSelection {
public:
    struct Entry {
        FocusKind kind = FocusKind::None;
        int index = 0;
    };

    void add(FocusKind kind, int index, const QString &value);
    void clear();

    bool active() const { return count_ > 0; }
    int count() const { return count_; }
    const QVector<Entry> &fields() const { return fields_; }
    const QString &searchText() const { return searchText_; }

private:
    int count_ = 0;
    QVector<Entry> fields_;
    QString searchText_;
};

} // namespace ff
