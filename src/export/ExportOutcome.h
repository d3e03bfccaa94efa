#pragma once
// What an export did: how many records it wrote, whether the stop was pressed, and where.

#include <QString>

namespace ff {

struct ExportOutcome {
    int records = 0;      // records written (a template of one file counts its one record)
    bool stopped = false; // the stop was pressed; what was written stays
    QString path;         // the file, or the folder of a file-a-record export
    int pictures = 0;     // picture files copied beside the export
};

} // namespace ff
