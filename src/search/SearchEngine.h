#pragma once
// Runs a compiled search line over the raw records of one file set: select and the plain find
// list their hits (record numbers and the rows as the results list shows them, at most 32000),
// sum adds, count counts and replace writes the prepared bytes into the matching records. The
// walk goes from the last record down unless the forward flag is set; sum always goes up. It can
// run over all records, over a sort order or over the hits of an earlier search. The stop press
// is learned through ff::Progress every `progressStep` records; what was found until then stands.
// Long select, find, count and fixed-point sum walks run their second half on a helper thread
// (see SearchOptions::twoThreadsFrom); the result is that of the one-thread walk. Plain and
// scrambled stores are walked alike, in place (see StoredBytes).

#include "core/MessageSink.h"
#include "core/Progress.h"
#include "design/Design.h"
#include "search/SearchNames.h"
#include "search/SearchParser.h"
#include "search/RecordScanner.h"
#include "search/ResultRowBuilder.h"
#include "search/SearchQuery.h"
#include "store/RecordCodec.h"
#include "store/RecordFile.h"
#include "store/RecordStore.h"

#include <QLocale>
#include <QStringList>
#include <QVector>

namespace ff {

struct FormulaContext;

// Totals of money and dates are kept exact in 4-decimal fixed point, wider than any record count
// times any amount.
__extension__ typedef __int128 WideFixed;
__extension__ typedef unsigned __int128 WideFixedUnsigned;
class RecordStore;

struct SearchOptions {
    bool matchCase = false;
    bool forward = false;
    bool silent = false;       // a page button's line: no message
    int hitCap = 32000;        // rows kept; the walk goes on past it
    int progressStep = 4096;   // records between two progress reports and stop tests
    // Select, find, count and sum walks over at least this many records run on two threads (0:
    // never); a sum over a float field always runs on one.
    int64_t twoThreadsFrom = 65536;
    const QVector<int> *within = nullptr; // hits of an earlier search: only those are walked
    const QVector<int> *sortIndex = nullptr; // a browse order (entry 0 unused)
    BrowseOrder order = BrowseOrder::FileOrder; // SortIndexUp / SortIndexDown read sortIndex
    Progress *progress = nullptr;
};

struct SearchResult {
    CommandKind command = CommandKind::Find;
    bool ran = false;          // false: nothing to do (no condition row, no term)
    bool aborted = false;
    QVector<int> hits;         // record numbers, in the order found
    QStringList rows;          // "number~column~column..." for each hit
    int64_t found = 0;         // all hits, also those past the cap
    int64_t walked = 0;        // records looked at
    std::array<SearchField, kColumnSlots> columns{};
    int columnCount = 0;
    double SumTotal = 0;
    double SumAverage = 0;
    bool averageSet = false;   // false when the count was 0
    int64_t sumCount = 0;
    int CountTotal = 0;
    int Replacements = 0;
    int skippedLocked = 0;     // records another user held; replace left them alone
    QString message;           // the text for ShowMessage, also when silent
};

class SearchEngine {
public:
    SearchEngine(const Design &design, const RecordLayout &layout, const RecordCodec &codec, const RecordFile &file,
                 int recordCount, bool readOnly, QChar decimalSeparator, QLocale locale = QLocale());
    // Over the open file set of a record store.
    explicit SearchEngine(RecordStore &store, QChar decimalSeparator, QLocale locale = QLocale());

    const SearchNames &names() const { return names_; }
    CompiledQuery compile(const QString &line, bool matchCase, const SearchField &focus) const;

    // `context` (may be null) receives SearchLine, SumTotal, SumAverage and CountTotal. The final
    // word of sum, count and replace goes to `messages` unless the search is silent.
    SearchResult run(const CompiledQuery &query, const SearchOptions &options, MessageSink *messages = nullptr,
                     FormulaContext *context = nullptr);

    // The maker of row texts for the given columns, as the results list shows them.
    ResultRowBuilder rowBuilder(const SearchField *columns, int count) const;

    // Decimal text of a total: exact for money, whole numbers and dates.
    static QString totalText(WideFixed fixed, double floating, const QString &decimalSeparator);

private:
    // The rows of the hits, in their order.
    QStringList makeRows(const QVector<int> &hits, RecordScanner::Access access, const SearchField *columns, int count,
                         bool twoThreads) const;

    const Design &design_;
    const RecordLayout &layout_;
    const RecordCodec &codec_;
    const RecordFile &file_;
    int recordCount_;
    bool readOnly_;
    QString separator_;
    QLocale locale_;
    SearchNames names_;
    SearchParser parser_;
};

} // namespace ff
