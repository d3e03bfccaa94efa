#pragma once
// Reads the records of an export one by one and gives the value of each column as the page shows
// it, in the design's code-page bytes. One reader serves one thread: it keeps its own page, its
// own formula context and hooks, its own descriptors of the record files.
//
// Page mode is the way of the page: the stored record is unpacked onto the reader's page and the
// formulas run (UnpackRecord), so that derived fields show their computed values, and values are
// read from the page. Value mode gives the same texts straight from the stored bytes when the
// design has no formula at all (then the page would only repeat the stored values): texts as
// stored, numbers and dates through StoredValueText.
// Elements without bytes in the record (global fields, elements on no page) show what the page
// on screen shows, in both modes.

#include "core/CodePage.h"
#include "core/Result.h"
#include "design/Page.h"
#include "entry/EngineFormulaHooks.h"
#include "export/ExportColumns.h"
#include "formula/FormulaContext.h"
#include "search/RecordScanner.h"
#include "store/RecordCodec.h"
#include "store/RecordStore.h"
#include "store/StoredValueText.h"

#include <memory>
#include <string>
#include <vector>

namespace ff {

// What all readers of one export share, taken from the open store.
struct ExportSource {
    ExportSource(RecordStore &store, const FormulaContext &context);

    const Design &design;
    const RecordLayout &layout;
    const RecordFile &file;
    int recordCount;
    QChar decimalSeparator;
    const FormulaContext &context;
    const Page &livePage;
    QString recordPictureFolder; // with a trailing '/', empty when the design has none
    int32_t NextPictureNumber = 0;
    CodePage codePage;
    bool formulas = false; // some text field has a formula
};

// The numbers and dates of the source's fields learned against `codec`, for the readers of one
// export to share.
std::unique_ptr<StoredValueText> storedValueText(const ExportSource &source, const RecordCodec &codec);

class ExportRecordReader {
public:
    enum class Mode { Values, Page };
    enum class Access { InOrder, Jumping };

    // `values` serves Value mode and may be shared by the readers of one export (see
    // storedValueText()).
    ExportRecordReader(const ExportSource &source, Mode mode, Access access, const StoredValueText *values = nullptr);
    ExportRecordReader(const ExportRecordReader &) = delete;
    ExportRecordReader &operator=(const ExportRecordReader &) = delete;

    // True when values come from the stored bytes without the page.
    bool valueMode() const { return valueMode_; }

    // Reads `record` (1..RecordCount); in Page mode unpacks it and runs the formulas.
    Status load(int record);
    int record() const { return record_; }

    // Appends the column's value as the page shows it: a field's, combo's or note's text, a check
    // field's number, a per-record picture's file name.
    void appendValue(const ExportColumn &column, std::string &out);
    QString text(const ExportColumn &column);

    // The page after load() in Page mode.
    Page &page() { return *page_; }
    FormulaContext &context() { return context_; }
    FormulaHooks &hooks() { return hooks_; }
    const ExportSource &source() const { return source_; }

private:
    void appendStoredText(const uint8_t *p, int size, std::string &out) const;
    void appendConstant(const QString &text, std::string &out) const;

    const ExportSource &source_;
    FormulaContext context_;
    EngineFormulaHooks hooks_;
    std::unique_ptr<RecordCodec> codec_;
    std::unique_ptr<Page> page_;
    RecordScanner scanner_;
    RecordScanner::Access access_;
    const StoredValueText *values_;
    std::unique_ptr<StoredValueText> ownValues_;
    StoredValueText::DateTexts<std::string> dates_;
    bool valueMode_ = false;
    bool textsAsStored_ = false; // the code page gives every byte back as it was
    const uint8_t *plain_ = nullptr;
    int record_ = 0;
};

} // namespace ff
