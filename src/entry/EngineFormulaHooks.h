#pragma once
// The record store's calls into the formula language, answered by the formula library: stored
// values shown by their format code, number texts read by CleanNumber and Val, the defaults of a
// new record and the recalculation after a record is shown. The window and the command line give
// one to their Database, so the page looks the same in both.

#include "formula/FormulaContext.h"
#include "formula/FormulaEngine.h"
#include "store/FormulaHooks.h"

#include <memory>

namespace ff {

class EngineFormulaHooks : public FormulaHooks {
public:
    explicit EngineFormulaHooks(FormulaContext &context) : context_(context) {}

    QString FormatFieldValue(const Design &design, int index, double value) const override;
    double NumberValue(const QString &text, QChar decimalSeparator) const override;
    void SetFieldDefault(Page &page, int index, bool showZeros) const override;
    void RunFormulas(Page &page, int currentRecord) override;
    void RunFormulas(Page &page, int currentRecord, PendingRecord &pending) override;

private:
    FormulaEngine &engineFor(Page &page);

    FormulaContext &context_;
    // The engine of the last page: an import recalculates a page a million times over.
    std::unique_ptr<FormulaEngine> engine_;
    const Page *enginePage_ = nullptr;
};

} // namespace ff
