#include "entry/FunctionKeys.h"

#include "entry/DatePatternText.h"
#include "formula/NumberText.h"

namespace ff {

QString FunctionKeys::resolveKey(const Page &page, int key, double now, const QLocale &locale)
{
    const auto &texts = page.design().SelectiveText;
    if (key < 1 || key > kCount || key >= static_cast<int>(texts.size()))
        return QString();
    const QString &text = texts[static_cast<size_t>(key)];
    const double number = Val(text);
    if (number != 0.0) {
        const long long field = static_cast<long long>(number);
        if (field >= 1 && field < page.FieldText.size())
            return page.FieldText[static_cast<int>(field)];
        return QString(); // names no field of this design
    }
    if (text.startsWith(QLatin1Char('*')))
        return DatePatternText::formatNumber(now, text.mid(1), locale);
    return text;
}

std::array<QString, FunctionKeys::kCount> FunctionKeys::resolve(const Page &page, double now, const QLocale &locale)
{
    std::array<QString, kCount> values;
    for (int key = 1; key <= kCount; ++key)
        values[static_cast<size_t>(key - 1)] = resolveKey(page, key, now, locale);
    return values;
}

std::optional<int> FunctionKeys::functionKeyNumber(int qtKey)
{
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F11)
        return qtKey - Qt::Key_F1 + 1;
    return std::nullopt;
}

} // namespace ff
