#include "formula/SubstituteTags.h"

#include "formula/NumberText.h"

#include <algorithm>

namespace ff {

QString SubstituteTags(QString &text, const Page &page, const FormulaContext &context)
{
    const Design &design = page.design();
    const auto tag = [](char letter, qsizetype n, char end) {
        return QLatin1Char(letter) + QString::number(n) + QLatin1Char(end);
    };
    const Qt::CaseSensitivity ci = Qt::CaseInsensitive;
    text.replace(QLatin1String("ID:"), CleanNumberCopy(QString::number(context.CurrentRecord), context.DecimalSeparator()), ci);
    text.replace(QLatin1String("APATH:"), context.AppPath, ci);
    const qsizetype fields = std::min<qsizetype>(design.Fields.size(), page.FieldText.size());
    for (qsizetype n = 1; n < fields; ++n)
        text.replace(tag('F', n, ':'), page.FieldText[n], ci);
    const qsizetype combos = std::min<qsizetype>(design.Combos.size(), page.ComboText.size());
    for (qsizetype n = 1; n < combos; ++n)
        text.replace(tag('C', n, ':'), page.ComboText[n], ci);
    const qsizetype notes = std::min<qsizetype>(design.Notes.size(), page.NoteText.size());
    for (qsizetype n = 1; n < notes; ++n)
        text.replace(tag('M', n, ':'), page.NoteText[n], ci);
    const qsizetype titles = std::min<qsizetype>(design.Titles.size(), page.TitleCaption.size());
    for (qsizetype n = 1; n < titles; ++n)
        text.replace(tag('L', n, ':'), page.TitleCaption[n], ci);
    for (qsizetype n = 1; n < titles; ++n)
        text.replace(tag('L', n, '$'), design.Titles[static_cast<size_t>(n)].Tag, ci);
    text.replace(QLatin1String("LF$"), QLatin1String("\r\n"), ci);
    const qsizetype checks = std::min<qsizetype>(design.Checks.size(), page.CheckValue.size());
    for (qsizetype n = 0; n < checks; ++n)
        text.replace(tag('K', n, ':'), QString::number(page.CheckValue[n]), ci);
    return text;
}

} // namespace ff
