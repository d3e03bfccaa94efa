#pragma once
// The default a text field gets when a record is created or cleared, by its format code. The
// record store calls this for each stored field after emptying it.

#include "design/Page.h"

#include <QLocale>

namespace ff {

// Fills field `fieldIndex` of the page with the default for its format. `now` is the present
// date and time as a day number; FieldDisplay days are added to the dates. With ShowZeros 1 the
// number formats show a zero in their format; with 0 they are left alone. Formats 6 to 9 show the
// present moment, 10 midnight, 11 nothing, 12 "00:00:00", 13 to 22 a part of today's date.
void SetFieldDefault(Page &page, int fieldIndex, double now, const QLocale &locale = QLocale());

} // namespace ff
