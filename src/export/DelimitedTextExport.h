#pragma once
// The delimited text export: a head row and one row a record, values in the columns of the tab
// walk and then the per-record pictures, separated by the design's FieldSeparator, rows ended by
// CR LF, in the design's code page. A value holding a double quote has it doubled; a value holding
// a double quote, the separator or a CR LF pair is enclosed in double quotes. Each row starts
// with the record number. The picture files named in a row are copied into the folder
// "Pictures" beside the export (".jpg" added to a name without a dot); a missing one is passed by.
//
// A long export is shared by two threads: the range is cut into chunks of rows that the calling
// thread and a helper make in turn, each with its own reader; the calling thread writes the
// chunks in order, reports progress at every tenth index and learns of the stop there. The file
// holds exactly the rows before the index at which the stop was seen.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportColumns.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "export/ExportRecordReader.h"

#include <QByteArray>
#include <QString>
#include <string>
#include <vector>

namespace ff {

class DelimitedTextExport {
public:
    DelimitedTextExport(const ExportSource &source, const PageAllowed &allowed);

    // The file name for a chosen base: the base, ".", TextExtension.
    QString fileName(const QString &base) const;
    std::string headRow() const;
    // The row of the record loaded in `reader`.
    void appendRow(ExportRecordReader &reader, std::string &out) const;

    // `threads` 0: two for a long range, one otherwise.
    Result<ExportOutcome> run(const ExportRange &range, const QString &path, Progress *progress, int threads = 0,
                              ExportRecordReader::Mode mode = ExportRecordReader::Mode::Values);

    static constexpr int kChunkRecords = 4096;
    static constexpr int kTwoThreadsFrom = 20000;

private:
    bool needsQuotes(const char *value, size_t size) const;
    void appendQuoted(const char *value, size_t size, std::string &out) const;
    // Quotes the value that stands in `out` from `from` on, when it needs quotes.
    void quoteTail(std::string &out, size_t from) const;
    struct Chunk;
    Status makeChunk(ExportRecordReader &reader, const ExportRange &range, int first, int count, Chunk &chunk) const;
    int copyPicture(const QString &name, const QString &folder) const;

    const ExportSource &source_;
    std::vector<ExportColumn> columns_;
    size_t pictureColumns_ = 0; // the last columns are pictures
    std::string separator_;
};

} // namespace ff
