#include "entry/FieldLeave.h"

#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/Evaluator.h"
#include "formula/FieldFormat.h"
#include "formula/NumberText.h"

namespace ff {

QString FieldLeave::evaluateNumberText(const QString &typed, int format, const QLocale &locale)
{
    const QString separator = locale.decimalPoint();
    QString expression = CleanNumberCopy(typed, separator);
    // The user's minus is the evaluator's subtraction; a leading one gives 0 minus the rest.
    expression.replace(QLatin1Char('-'), QLatin1Char('~'));
    const double value = EvaluateExpression(expression, separator).value_or(0.0);
    switch (format) {
    case kFormatMoney2:
    case kFormatMoney3:
    case kFormatMoney4: return FormatFixed(value, format, locale);
    case kFormatWhole: return FormatFixed(value, 0, locale);
    default: return NumberToText(value, separator);
    }
}

double FieldLeave::readTimeDigits(const QString &text)
{
    double seconds = Val(text.right(2));
    if (text.size() >= 6) {
        seconds += Val(text.mid(3, 2)) * 60.0;
        seconds += Val(text.left(2)) * 3600.0;
    } else if (text.size() >= 3) {
        seconds += Val(text.left(2)) * 60.0;
    }
    return seconds / 86400.0;
}

QString FieldLeave::timeDigitsText(double value, int format)
{
    if (format == kFormatLongTime)
        return FormatLongTime(value);
    const QDateTime when = DateFromNumber(value);
    return when.isValid() ? when.time().toString(QStringLiteral("mm:ss")) : QString();
}

bool FieldLeave::leaveTextField(Page &page, int index, const QString &textAtFocus, const QLocale &locale)
{
    if (index < 1 || index >= page.FieldText.size() || index >= static_cast<int>(page.design().Fields.size()))
        return false;
    const QString text = page.FieldText[index];
    if (text == textAtFocus)
        return false;
    const FieldElement &field = page.design().Fields[static_cast<size_t>(index)];
    const int format = field.FieldType;
    double &date = page.FieldDate[index];

    if (isDateFormat(format) || format == kFormatMediumTime) {
        if (text.isEmpty()) {
            date = 0;
        } else if (const std::optional<double> read = ReadDate(text, locale)) {
            if (*read != 0.0)
                date = *read + field.FieldDisplay;
            page.setFieldText(index, FormatStoredValue(date, format, locale));
        }
    } else if (format == kFormatShortTime || format == kFormatLongTime) {
        date = readTimeDigits(text);
        page.setFieldText(index, timeDigitsText(date, format));
    } else if (isNumberFormat(format) && !text.isEmpty()) {
        page.setFieldText(index, evaluateNumberText(text, format, locale));
    }
    return true;
}

void FieldLeave::leaveCombo(Page &page, int index, const QLocale &locale)
{
    if (index < 1 || index >= page.ComboText.size() || index >= static_cast<int>(page.design().Combos.size()))
        return;
    const int format = page.design().Combos[static_cast<size_t>(index)].ComboFormat;
    const QString text = page.ComboText[index];
    if (format == 0 || text.isEmpty())
        return;
    page.setComboText(index, evaluateNumberText(text, format, locale));
}

} // namespace ff
