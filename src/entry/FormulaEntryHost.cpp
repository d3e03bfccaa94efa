#include "entry/FormulaEntryHost.h"

#include "formula/Conditions.h"
#include "formula/SubstituteTags.h"

namespace ff {

FormulaEntryHost::FormulaEntryHost(Page &page, FormulaContext &context)
    : page_(page), context_(context), engine_(page, context)
{
}

void FormulaEntryHost::runFormulas() { engine_.RunFormulas(); }

QString FormulaEntryHost::substituteTags(const QString &text)
{
    QString filled = text;
    return SubstituteTags(filled, page_, context_);
}

QString FormulaEntryHost::insertV(const QString &line)
{
    QString filled = line;
    engine_.InsertV(filled);
    return engine_.ReplaceVariables(filled);
}

Status FormulaEntryHost::runIf(const QString &line)
{
    QString text = line;
    uint8_t mode = 0;
    const StatementRunner run = [this](QString &token) { return engine_.RunStatement(token); };
    return RunIf(text, mode, run, context_);
}

Status FormulaEntryHost::runAssignments(const QString &line)
{
    QString text = line;
    uint8_t mode = 0;
    const StatementRunner run = [this](QString &token) { return engine_.RunStatement(token); };
    return RunAssignments(text, mode, run);
}

} // namespace ff
