#include "entry/EngineFormulaHooks.h"

#include "formula/FieldFormat.h"
#include "formula/FormulaEngine.h"
#include "formula/NumberText.h"
#include "formula/SetFieldDefault.h"

namespace ff {

QString EngineFormulaHooks::FormatFieldValue(const Design &design, int index, double value) const
{
    if (index < 1 || size_t(index) >= design.Fields.size())
        return QString();
    return FormatStoredValue(value, design.Fields[size_t(index)].FieldType, context_.locale);
}

double EngineFormulaHooks::NumberValue(const QString &text, QChar decimalSeparator) const
{
    return Val(CleanNumberCopy(text, QString(decimalSeparator)));
}

void EngineFormulaHooks::SetFieldDefault(Page &page, int index, bool showZeros) const
{
    // The formula library reads ShowZeros from the page's design itself.
    Q_UNUSED(showZeros);
    ff::SetFieldDefault(page, index, context_.Now(), context_.locale);
}

FormulaEngine &EngineFormulaHooks::engineFor(Page &page)
{
    if (!engine_ || enginePage_ != &page) {
        engine_ = std::make_unique<FormulaEngine>(page, context_);
        enginePage_ = &page;
    }
    return *engine_;
}

void EngineFormulaHooks::RunFormulas(Page &page, int currentRecord)
{
    context_.CurrentRecord = currentRecord;
    engineFor(page).RunFormulas();
}

void EngineFormulaHooks::RunFormulas(Page &page, int currentRecord, PendingRecord &pending)
{
    context_.CurrentRecord = currentRecord;
    engineFor(page).RunFormulas(pending);
}

} // namespace ff
