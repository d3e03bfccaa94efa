#include "formula/SetFieldDefault.h"

#include "formula/FieldFormat.h"

namespace ff {

void SetFieldDefault(Page &page, int fieldIndex, double now, const QLocale &locale)
{
    const Design &design = page.design();
    if (fieldIndex < 0 || fieldIndex >= static_cast<int>(design.Fields.size()) || fieldIndex >= page.FieldText.size())
        return;
    const FieldElement &field = design.Fields[static_cast<size_t>(fieldIndex)];
    const int type = field.FieldType;
    if (isNumberFormat(type)) {
        if (design.ShowZeros == 1) {
            if (type == kFormatNumber)
                page.setFieldText(fieldIndex, QStringLiteral("0"));
            else if (type == kFormatWhole)
                page.setFieldText(fieldIndex, FormatFixed(0, 0, locale, false));
            else
                page.setFieldText(fieldIndex, FormatFixed(0, type, locale));
        }
        return;
    }
    if (isDateFormat(type)) {
        const double date = now + field.FieldDisplay;
        page.FieldDate[fieldIndex] = date;
        if (date != 0.0)
            page.setFieldText(fieldIndex, FormatDateByType(date, type, locale));
        return;
    }
    switch (type) {
    case kFormatShortTime:
        page.FieldDate[fieldIndex] = 0;
        page.setFieldText(fieldIndex, FormatShortTime(0));
        break;
    case kFormatMediumTime:
        page.FieldDate[fieldIndex] = 0;
        page.setFieldText(fieldIndex, QString());
        break;
    case kFormatLongTime:
        page.FieldDate[fieldIndex] = 0;
        page.setFieldText(fieldIndex, FormatLongTime(0));
        break;
    default:
        if (type >= kFormatFirstDatePart && type <= kFormatLastDatePart)
            page.setFieldText(fieldIndex, FormatDateByType(now + field.FieldDisplay, type, locale));
        break;
    }
}

} // namespace ff
