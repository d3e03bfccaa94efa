#include "toolkit/CalculatorEngine.h"

#include <cmath>
#include <cstdio>

namespace ff::toolkit {

CalculatorEngine::CalculatorEngine(const QLocale &locale) : locale_(locale) { cancel(); }

void CalculatorEngine::cancel()
{
    readout_ = QStringLiteral("0");
    decimalFlag_ = false;
    lastInput_ = QStringLiteral("NONE");
    opCount_ = 0;
    op1_ = op2_ = 0;
    opFlag_ = QLatin1Char(' ');
    smallFont_ = false;
}

void CalculatorEngine::cancelEntry()
{
    readout_ = QStringLiteral("0");
    decimalFlag_ = false;
    lastInput_ = QStringLiteral("CE");
}

void CalculatorEngine::digit(int d)
{
    // After an operator (or at the start) a digit begins a new number.
    if (lastInput_ != QLatin1String("NUMS")) {
        readout_ = lastInput_ == QLatin1String("NEG") ? QStringLiteral("-") : QString();
        decimalFlag_ = false;
    }
    if (readout_ == QLatin1String("0") || readout_ == QLatin1String("-0"))
        readout_.chop(1);
    readout_ += QChar(u'0' + d);
    lastInput_ = QStringLiteral("NUMS");
}

void CalculatorEngine::decimal()
{
    if (lastInput_ != QLatin1String("NUMS")) {
        readout_ = lastInput_ == QLatin1String("NEG") ? QStringLiteral("-0") : QStringLiteral("0");
        decimalFlag_ = false;
        lastInput_ = QStringLiteral("NUMS");
    }
    if (!decimalFlag_) {
        readout_ += locale_.decimalPoint();
        decimalFlag_ = true;
    }
}

long double CalculatorEngine::readoutValue() const
{
    QString t = readout_;
    t.remove(locale_.groupSeparator());
    t.replace(locale_.decimalPoint(), QLatin1String("."));
    if (t == QLatin1String("-") || t.isEmpty())
        return 0;
    return std::strtold(t.toLatin1().constData(), nullptr);
}

void CalculatorEngine::op(QChar op)
{
    if (lastInput_ == QLatin1String("NUMS"))
        ++opCount_;
    if (opCount_ == 0) {
        if (op == QLatin1Char('-') && lastInput_ != QLatin1String("NEG")) {
            readout_ = QStringLiteral("-");
            lastInput_ = QStringLiteral("NEG");
        }
    } else if (opCount_ == 1) {
        op1_ = readoutValue();
        // A "-" that does not follow a number starts a negative number.
        if (op == QLatin1Char('-') && lastInput_ != QLatin1String("NUMS") && opFlag_ != QLatin1Char('=')) {
            readout_ = QStringLiteral("-");
            lastInput_ = QStringLiteral("NEG");
        }
    } else {
        op2_ = readoutValue();
        if (opFlag_ == QLatin1Char('+'))
            op1_ = op1_ + op2_;
        else if (opFlag_ == QLatin1Char('-'))
            op1_ = op1_ - op2_;
        else if (opFlag_ == QChar(u'×') || opFlag_ == QLatin1Char('%'))
            op1_ = op1_ * op2_;
        else if (opFlag_ == QChar(u'÷')) {
            if (op2_ != 0)
                op1_ = op1_ / op2_;
        } else if (opFlag_ == QLatin1Char('='))
            op1_ = op2_;
        readout_ = formatResult(op1_);
        opCount_ = 1;
    }
    if (lastInput_ != QLatin1String("NEG")) {
        lastInput_ = QStringLiteral("OPS");
        opFlag_ = op;
    }
}

void CalculatorEngine::percent()
{
    readout_ = formatResult(op1_ * readoutValue() / 100);
    lastInput_ = QStringLiteral("NUMS");
    decimalFlag_ = readout_.contains(locale_.decimalPoint());
}

QString CalculatorEngine::formatResult(long double v)
{
    // Grouped whole part, up to 28 decimals with trailing zeros dropped, never a bare decimal sign.
    smallFont_ = std::fabs(v) > 999999999999999.0L;
    // 18 significant digits (what the long double carries), written out without an exponent.
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.17Le", v);
    const QString sci = QString::fromLatin1(buf);
    const bool minus = sci.startsWith(QLatin1Char('-'));
    const QString mantissa = sci.section(QLatin1Char('e'), 0, 0).remove(QLatin1Char('-')).remove(QLatin1Char('.'));
    const int exponent = sci.section(QLatin1Char('e'), 1).toInt();
    QString whole, frac;
    if (exponent >= 0) {
        whole = mantissa.left(exponent + 1).leftJustified(exponent + 1, QLatin1Char('0'));
        frac = mantissa.mid(exponent + 1);
    } else {
        whole = QStringLiteral("0");
        frac = QString(-exponent - 1, QLatin1Char('0')) + mantissa;
    }
    frac = frac.left(28);
    while (frac.endsWith(QLatin1Char('0')))
        frac.chop(1);
    if (minus)
        whole.prepend(QLatin1Char('-'));
    const bool negative = whole.startsWith(QLatin1Char('-'));
    if (negative)
        whole.remove(0, 1);
    QString grouped;
    for (int i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0)
            grouped += locale_.groupSeparator();
        grouped += whole[i];
    }
    QString out = (negative && (grouped != QLatin1String("0") || !frac.isEmpty()) ? QStringLiteral("-") : QString()) + grouped;
    if (!frac.isEmpty())
        out += locale_.decimalPoint() + frac;
    return out;
}

} // namespace ff::toolkit
