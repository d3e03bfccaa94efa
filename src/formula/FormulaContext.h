#pragma once
// The program-wide values that formulas read and write, owned by the caller and passed in: the
// formula variables, the record position, the last search's figures, the locale and the clock.
// Keeping them here rather than in globals lets several pages and tests run side by side.

#include "core/Clock.h"
#include "core/MessageSink.h"

#include <QLocale>
#include <QString>

#include <array>
#include <cstdint>

namespace ff {

constexpr int kFormulaVarCount = 100;

// The colour formulas show their messages in.
constexpr int kFormulaMessageColour = kMessageColour;

struct FormulaContext {
    // Number, date and currency settings; the decimal separator is the locale's.
    QLocale locale;
    QString DecimalSeparator() const { return locale.decimalPoint(); }

    // V0 to V99. Emptied at the start of every recalculation; they carry from field to field.
    std::array<QString, kFormulaVarCount> FormulaVars;

    int32_t CurrentRecord = 0;
    int32_t RecordCount = 0;

    // The last search.
    QString SearchLine;
    double SearchDate = 0;
    double SumTotal = 0;
    double SumAverage = 0;
    double CountTotal = 0;

    QString AppTitle; // the caption of formula messages
    QString AppPath;  // the folder of the program, for "APATH:"

    // The present moment; tests install a FixedClock. Now() is it as a day number.
    const Clock *clock = &Clock::system();
    double Now() const;

    // Raised while a formula sets a check field, so that the check field's own change handling
    // does not start another recalculation.
    bool SettingCheckFromFormula = false;

    // Where MSGBOX shows its message; none shown when null.
    MessageSink *host = nullptr;
};

} // namespace ff
