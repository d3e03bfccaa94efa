// libFuzzer target for the formula language: the evaluator on the raw input, and RunFormulas on
// a small page whose field formulas are the input's lines. Nothing may crash or hang, and the
// evaluator must give a finite number or an abandoned call.

#include "core/FixedClock.h"
#include "design/Page.h"
#include "formula/Evaluator.h"
#include "formula/FormulaEngine.h"
#include "formula/SubstituteTags.h"

#include <QString>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

struct SilentHost : ff::MessageSink {
    void ShowMessage(const QString &, const QString &, int) override {}
};

void runPage(const QString &text)
{
    ff::Design design;
    const QStringList lines = text.split(QLatin1Char('\n'));
    const int fields = 8;
    design.Fields.resize(fields + 1);
    design.FieldCount = fields;
    design.Combos.resize(3);
    design.ComboCount = 2;
    design.Combos[2].ComboFormat = 1;
    design.Notes.resize(2);
    design.NoteCount = 1;
    design.Checks.resize(2);
    design.CheckCount = 1;
    design.Titles.resize(6);
    const int types[fields + 1] = {0, 0, 1, 2, 5, 7, 10, 11, 6};
    for (int i = 1; i <= fields; ++i) {
        design.Fields[static_cast<size_t>(i)].FieldType = static_cast<uint8_t>(types[i]);
        if (i - 1 < lines.size())
            design.Fields[static_cast<size_t>(i)].FieldFormula = lines[i - 1];
    }
    // A multi-line formula from what is left.
    if (lines.size() > fields)
        design.Fields[1].FieldFormula = lines.mid(fields).join(QStringLiteral("\r\n"));
    ff::Page page(design);
    page.FieldText[1] = QStringLiteral("some text");
    page.FieldText[2] = QStringLiteral("1,234.5");
    page.FieldText[5] = QStringLiteral("1/15/2024");
    page.ComboText[1] = QStringLiteral("Net-30");
    page.ComboText[2] = QStringLiteral("7");
    // A fixed moment: the same input takes the same path on every run.
    static const ff::FixedClock clock(QDateTime(QDate(2024, 1, 15), QTime(12, 0)));
    ff::FormulaContext context;
    context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
    context.clock = &clock;
    SilentHost host;
    context.host = &host;
    ff::FormulaEngine engine(page, context);
    engine.RunFormulas();
    QString tags = text;
    ff::SubstituteTags(tags, page, context);
    QString button = text;
    engine.InsertV(button);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0 || size > 4096)
        return 0;
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data + 1),
                                             static_cast<qsizetype>(size - 1));
    if (data[0] & 1) {
        QString expression = text;
        const std::optional<double> value = ff::EvaluateExpression(expression);
        if (value && !std::isfinite(*value))
            std::abort();
        QString again = text;
        (void)ff::EvaluateToText(again, QStringLiteral(","));
    } else {
        runPage(text);
    }
    return 0;
}
