#include "toolkit/CalculatorEngine.h"


namespace ff::toolkit {

CalculatorEngine::CalculatorEngine(const QLocale &locale) : locale_(locale) { cancel(); }

void CalculatorEngine::cancel()
{
    readout_ = QStringLiteral("0");
    decimalFlag_ = false;
    lastInput_ = QStringLiteral("NONE");
    opCount_ = 0;
    op1_ = op2_ = DecimalNumber();
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

std::optional<DecimalNumber> CalculatorEngine::readoutValue() const
{
    QString t = readout_;
    t.remove(locale_.groupSeparator());
    t.replace(locale_.decimalPoint(), QLatin1String("."));
    if (t == QLatin1String("-") || t.isEmpty())
        return DecimalNumber();
    return DecimalNumber::fromText(t);
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
        op1_ = readoutValue().value_or(op1_);
        // A "-" that does not follow a number starts a negative number.
        if (op == QLatin1Char('-') && lastInput_ != QLatin1String("NUMS") && opFlag_ != QLatin1Char('=')) {
            readout_ = QStringLiteral("-");
            lastInput_ = QStringLiteral("NEG");
        }
    } else {
        op2_ = readoutValue().value_or(op2_);
        // An overflow, like a division by zero, leaves the result as it was.
        std::optional<DecimalNumber> result = op1_;
        if (opFlag_ == QLatin1Char('+'))
            result = op1_.plus(op2_);
        else if (opFlag_ == QLatin1Char('-'))
            result = op1_.minus(op2_);
        else if (opFlag_ == QChar(u'×') || opFlag_ == QLatin1Char('%'))
            result = op1_.times(op2_);
        else if (opFlag_ == QChar(u'÷'))
            result = op1_.dividedBy(op2_);
        else if (opFlag_ == QLatin1Char('='))
            result = op2_;
        op1_ = result.value_or(op1_);
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
    const std::optional<DecimalNumber> shown = readoutValue();
    std::optional<DecimalNumber> value;
    if (shown)
        if (const std::optional<DecimalNumber> product = op1_.times(*shown))
            value = product->dividedBy(*DecimalNumber::fromText(QStringLiteral("100")));
    if (value)
        readout_ = formatResult(*value);
    lastInput_ = QStringLiteral("NUMS");
    decimalFlag_ = readout_.contains(locale_.decimalPoint());
}

QString CalculatorEngine::formatResult(const DecimalNumber &v)
{
    // "###,###,###,###,###,###,###,###,###.############################": the whole part grouped,
    // the decimals (up to 28) without trailing zeros, never a bare decimal sign.
    const QString whole = v.wholeDigits();
    const QString decimals = v.decimalDigits();
    const QString limit(15, QLatin1Char('9')); // above 999,999,999,999,999 the font goes down
    smallFont_ = whole.size() > limit.size() || (whole == limit && !decimals.isEmpty());
    QString grouped;
    for (int i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0)
            grouped += locale_.groupSeparator();
        grouped += whole[i];
    }
    QString out = (v.isNegative() ? QStringLiteral("-") : QString()) + grouped;
    if (!decimals.isEmpty())
        out += locale_.decimalPoint() + decimals;
    return out;
}

} // namespace ff::toolkit
