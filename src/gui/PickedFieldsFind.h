#pragma once
// The plain find over the fields picked with the right button: the line is looked for in those
// fields and no others. Each term is looked for in every picked field by that field's own rule
// (a text as a substring, a number, date or time as a comparison); with "+" terms every term must
// be found in one of the fields, with " or " terms one is enough.
//
// The engine's find reads one field, so the find runs as passes of it: one per term and field,
// each term's passes over the records that held all the terms before it. The hits are listed in
// the order of the walk asked for, at most `hitCap` rows, and every hit is counted. A stop keeps
// the records found by the last term's passes so far: only they are known to hold every term.

#include "search/SearchEngine.h"

#include <QVector>

namespace ff {
struct FormulaContext;
}

namespace ff::gui {

class PickedFieldsFind {
public:
    PickedFieldsFind(SearchEngine &engine, QVector<SearchField> fields);

    // Whether `line` is a find that the picked fields take: not a command, not a whole-record
    // find ("!"), and at least one picked field that the search can read.
    bool takes(const QString &line) const;

    // Runs the find of `line`; `options` as for the engine (within, sort order, forward, stop).
    SearchResult run(const QString &line, const SearchOptions &options, FormulaContext *context);

private:
    // Where a record stands in the walk asked for: lower comes first.
    struct WalkRank {
        explicit WalkRank(const SearchOptions &options);
        int64_t of(int record) const;
        QHash<int, int64_t> places;
        bool byPlace = false;
        int64_t direction = -1;
    };

    SearchEngine &engine_;
    QVector<SearchField> fields_;
};

} // namespace ff::gui
