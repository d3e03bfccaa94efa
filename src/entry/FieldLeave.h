#pragma once
// What a text field or a combo turns its text into when the focus leaves it: dates read and shown
// again in the field's form, times read as digits in fixed places, number fields evaluated as
// expressions (the user's "-" subtracts, so 100-5 gives 95).

#include "design/Page.h"

#include <QLocale>
#include <QString>

namespace ff {

class FieldLeave {
public:
    // Converts field `index` of the page by its FieldType when its text differs from
    // `textAtFocus`, the text it held when it got the focus. Returns whether the text had changed:
    // then the caller clears the change marker and runs the formulas. A text that is no date stays
    // as typed and keeps the field's date.
    static bool leaveTextField(Page &page, int index, const QString &textAtFocus, const QLocale &locale);

    // Combo `index` of a number ComboFormat (1 to 5) with a non-empty text: evaluated and shown by
    // the format. A text combo keeps its text as it stands.
    static void leaveCombo(Page &page, int index, const QLocale &locale);

    // A number text as typed (group marks, the locale's decimal separator, an expression) evaluated
    // and shown by a number format 1 to 5: 1 as the number converts, 2 to 4 with that many
    // decimals, 5 with none. What does not evaluate gives 0.
    static QString evaluateNumberText(const QString &typed, int format, const QLocale &locale);

    // A time typed as digits in fixed places: the last two characters are the seconds; with six
    // characters or more the first two are the hours and the two from the fourth on the minutes;
    // with three to five the first two are the minutes. Gives the time as a day number.
    static double readTimeDigits(const QString &text);
    // How a time field shows that value: "hh:nn:ss" for format 12, "nn:ss" for format 10.
    static QString timeDigitsText(double value, int format);
};

} // namespace ff
