#pragma once
// The pocket calculator's state machine, apart from its window: digits, the decimal sign, the four
// operators with "=" and "%", percent, clear entry and clear all.

#include "toolkit/DecimalNumber.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace ff::toolkit {

class CalculatorEngine {
public:
    explicit CalculatorEngine(const QLocale &locale = QLocale());

    void digit(int d);       // 0..9
    void decimal();          // the decimal sign, once per number
    void op(QChar op);       // '+', '-', u'×', u'÷', '=', '%'
    void percent();          // display := Op1 × display / 100
    void cancelEntry();      // empties the entry
    void cancel();           // resets everything

    QString readout() const { return readout_; }
    QString lastInput() const { return lastInput_; }
    int opCount() const { return opCount_; }
    // True when a result grew past 999,999,999,999,999 and the display font goes down to 8.25 pt.
    bool smallFont() const { return smallFont_; }

private:
    // The display as a number; none when it does not fit 28 digits.
    std::optional<DecimalNumber> readoutValue() const;
    QString formatResult(const DecimalNumber &v);

    QLocale locale_;
    QString readout_;
    bool decimalFlag_ = false;
    QString lastInput_ = QStringLiteral("NONE");
    int opCount_ = 0;
    DecimalNumber op1_, op2_;
    QChar opFlag_ = QLatin1Char(' ');
    bool smallFont_ = false;
};

} // namespace ff::toolkit
