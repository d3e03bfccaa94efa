#pragma once
// The record store's calls into the formula language: how a stored value shows in a field, how a
// number text reads, the default of a new record's field and the recalculation after a record is
// shown. The formula library supplies its own subclass; this base gives plain behaviour (formats
// from the default QLocale, no formulas run) so that the store works on its own.

#include "core/Clock.h"
#include "design/Page.h"
#include "design/PendingRecord.h"

#include <QChar>
#include <QDateTime>
#include <QString>

namespace ff {

class FormulaHooks {
public:
    virtual ~FormulaHooks() = default;

    // Text of a stored number or date of field `index` by its FieldType (1 to 9), before the
    // ShowZeros rule. A date number of 0 is handled by the caller.
    virtual QString FormatFieldValue(const Design &design, int index, double value) const;
    // CleanNumber then Val: group marks out, the decimal separator made a point, the leading number.
    virtual double NumberValue(const QString &text, QChar decimalSeparator) const;
    // Fills field `index` of a new or cleared record with the default for its FieldType.
    virtual void SetFieldDefault(Page &page, int index, bool showZeros) const;
    // Recalculates the formulas of the record on the page. The base runs none.
    virtual void RunFormulas(Page &page, int currentRecord);
    // The same for a record not yet on the page (an import's row): see PendingRecord.
    virtual void RunFormulas(Page &page, int currentRecord, PendingRecord &pending);

    // The clock the base's date defaults read; the store sets its own.
    void setClock(const Clock &clock) { clock_ = &clock; }

    // Day numbers: days since 30 December 1899, the fraction is the time of day.
    static QDateTime ToDateTime(double dayNumber);
    static double FromDateTime(const QDateTime &when);
    static double Today(const Clock &clock); // today, no time
    static double Now(const Clock &clock);
    // "Medium Date" and the date part of the general date as the system shows them.
    static QString FormatDate(double dayNumber, int fieldType);
    // The system's decimal separator: the second character of 1.1 formatted.
    static QChar SystemDecimalSeparator();

private:
    const Clock *clock_ = &Clock::system();
};

} // namespace ff
