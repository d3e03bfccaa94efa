#pragma once
// The part of EntryHost that the formula library answers: recalculation, tags of free texts and
// the lines of a page button, over one FormulaEngine. The window (and the command line) derive from
// it and add the record store, the search and the desktop.

#include "design/Page.h"
#include "entry/EntryHost.h"
#include "formula/FormulaContext.h"
#include "formula/FormulaEngine.h"

namespace ff {

class FormulaEntryHost : public EntryHost {
public:
    FormulaEntryHost(Page &page, FormulaContext &context);

    FormulaEngine &engine() { return engine_; }
    FormulaContext &context() { return context_; }

    void runFormulas() override;
    QString substituteTags(const QString &text) override;
    // InsertV, then V0 to V99 by the formula variables.
    QString insertV(const QString &line) override;
    // Button lines compare as numbers until a quoted text makes them compare as text.
    Status runIf(const QString &line) override;
    Status runAssignments(const QString &line) override;

private:
    Page &page_;
    FormulaContext &context_;
    FormulaEngine engine_;
};

} // namespace ff
