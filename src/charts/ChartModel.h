#pragma once
// Everything a chart shows for one element: its title, the statistics of a number field with their
// header and list rows, and the groups of the pie. The chart window and the command line build it
// the same way.

#include "charts/ChartReader.h"
#include "charts/PieGroups.h"
#include "charts/PieStats.h"

#include <QLocale>
#include <QString>

namespace ff::charts {

struct ChartModel {
    QString title;
    bool valid = false;   // the element has bytes in the record
    bool numeric = false; // statistics were made
    PieStatsData stats;
    StatsHeader header;
    std::vector<StatsRow> rows;
    PieGroups groups;
    bool stopped = false;
};

// The title of element `index` of `kind`: its tag, or the kind and number when it has none.
QString ChartTitle(const Design &design, ChartKind kind, int index);

// Reads the element twice at most: the numbers for the statistics when it is a number field, the
// groups always.
ChartModel BuildChart(RecordStore &store, ChartKind kind, int index, const QLocale &locale, Progress *progress = nullptr);

} // namespace ff::charts
