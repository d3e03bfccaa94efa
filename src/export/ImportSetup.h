#pragma once
// What every import is given and what it reports: the open record store, where its messages go,
// the progress and stop of a long walk, the picture store, and whether the store was empty.

#include "core/MessageSink.h"
#include "core/Progress.h"
#include "export/ImportPictureSink.h"
#include "store/RecordStore.h"

#include <QString>
#include <QStringList>

namespace ff {

struct FormulaContext;

struct ImportSetup {
    RecordStore *store = nullptr;
    // The record limit message, under the design's caption. Null: not shown (still reported).
    MessageSink *messages = nullptr;
    // Percent and stop, asked once a line. Null: the import runs to its end.
    Progress *progress = nullptr;
    // Stores the pictures of picture columns; null skips those columns.
    ImportPictureSink *pictures = nullptr;
    // The context behind the store's formula hooks. When given, the delimited text import stores
    // its rows on two threads, each with a copy of it and an engine of its own; null runs the
    // store's own hooks on one thread.
    const FormulaContext *formulaContext = nullptr;
    // The store held no record before it was opened: its one record is the blank one the opening
    // made, and the first imported record goes into it instead of after it.
    bool storeWasEmpty = false;
};

struct ImportReport {
    int added = 0;          // records written (the first into record 1 when the store was empty)
    int firstRecord = 0;    // the number of the first of them, 0 when none
    bool limitReached = false; // "Maximum Record Limited Reached": the rest was not imported
    bool stopped = false;      // the user pressed stop
    int picturesStored = 0;
    QStringList warnings;      // what was passed over (a picture that could not be stored, ...)
};

} // namespace ff
