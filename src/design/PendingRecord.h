#pragma once
// A record whose values are not on the page yet. An import keeps each row's values in the row and
// lets the formulas run on a page that holds a new record's defaults: the formula engine reads a
// value from here until a formula writes the element, and before that write it asks for the
// element to be put on the page. Afterwards only the elements put on the page are made into record
// bytes again; the rest of the record comes from the row as it stands.

#include "design/Page.h"

#include <QString>

namespace ff {

class PendingRecord {
public:
    virtual ~PendingRecord() = default;

    // The texts and values the page would hold for the element, were the record on it.
    virtual QString fieldText(int n) const = 0;
    virtual QString comboText(int n) const = 0;
    virtual int checkValue(int n) const = 0;
    // Copies every value of the element (a field's text and date, ...) onto `page`.
    virtual void putOnPage(ElementKind kind, int n, Page &page) = 0;
};

} // namespace ff
