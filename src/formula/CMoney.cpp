#include "formula/CMoney.h"

namespace ff {

CMoney::CMoney(const QLocale &locale)
{
    ones_ = {QStringLiteral("Zero"), QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three"),
             QStringLiteral("Four"), QStringLiteral("Five"), QStringLiteral("Six"), QStringLiteral("Seven"),
             QStringLiteral("Eight"), QStringLiteral("Nine"), QStringLiteral("Ten"), QStringLiteral("Eleven"),
             QStringLiteral("Twelve"), QStringLiteral("Thirteen"), QStringLiteral("Fourteen"),
             QStringLiteral("Fifteen"), QStringLiteral("Sixteen"), QStringLiteral("Seventeen"),
             QStringLiteral("Eighteen"), QStringLiteral("Nineteen")};
    tens_ = {QStringLiteral("Twenty"), QStringLiteral("Thirty"), QStringLiteral("Forty"), QStringLiteral("Fifty"),
             QStringLiteral("Sixty"), QStringLiteral("Seventy"), QStringLiteral("Eighty"), QStringLiteral("Ninety")};
    hundred_ = QStringLiteral("Hundred");
    groups_ = {QString(), QStringLiteral("Thousand"), QStringLiteral("Million"), QStringLiteral("Billion"),
               QStringLiteral("Trillion"), QStringLiteral("Quadrillion"), QStringLiteral("Quintillion"),
               QStringLiteral("Sextillion"), QStringLiteral("Septillion"), QStringLiteral("Octillion")};
    // The currency words come from the sign the locale puts in a formatted sum.
    const QString sample = locale.toCurrencyString(1.5);
    if (sample.contains(QChar(0x00A3))) {
        singularMain_ = QStringLiteral(" Pound");
        pluralMain_ = QStringLiteral(" Pounds");
        nothing_ = QStringLiteral("No Pence");
        singularMinor_ = QStringLiteral(" Pence");
        pluralMinor_ = QStringLiteral(" Pence");
    } else if (sample.contains(QChar(0x20AC))) {
        singularMain_ = QStringLiteral(" Euro");
        pluralMain_ = QStringLiteral(" Euros");
        nothing_ = QStringLiteral("No Euros");
        singularMinor_ = QStringLiteral(" Cent");
        pluralMinor_ = QStringLiteral(" Cents");
    } else {
        singularMain_ = QStringLiteral(" Dollar");
        pluralMain_ = QStringLiteral(" Dollars");
        nothing_ = QStringLiteral("No Cents");
        singularMinor_ = QStringLiteral(" Cent");
        pluralMinor_ = QStringLiteral(" Cents");
    }
}

std::optional<QString> CMoney::numberWords(const QString &digits, bool currency) const
{
    if (digits.isEmpty())
        return std::nullopt;
    for (QChar c : digits) {
        if (!c.isDigit() || c.unicode() > '9')
            return std::nullopt;
    }
    QString significant = digits;
    while (significant.size() > 1 && significant.startsWith(QLatin1Char('0')))
        significant.remove(0, 1);
    const QString currencyWord = currency ? pluralMain_ : QString();
    if (significant == QLatin1String("0"))
        return ones_[0] + currencyWord;
    if (significant == QLatin1String("1"))
        return ones_[1] + currencyWord;

    QStringList built; // groups from the left, each a list of words joined by single blanks
    QString rest = significant;
    int counter = 1;
    while (!rest.isEmpty()) {
        if (counter > groups_.size())
            return std::nullopt;
        QString group = rest.right(3);
        rest.chop(group.size());
        group = group.rightJustified(3, QLatin1Char('0'));
        const int h = group[0].digitValue();
        const int t = group[1].digitValue();
        const int u = group[2].digitValue();
        if (h || t || u) {
            QStringList words;
            if (h > 0)
                words << ones_[h] << hundred_;
            if (t >= 2)
                words << (u > 0 ? tens_[t - 2] + QLatin1Char('-') + ones_[u] : tens_[t - 2]);
            else if (t * 10 + u > 0)
                words << ones_[t * 10 + u];
            if (!groups_[counter - 1].isEmpty())
                words << groups_[counter - 1];
            built.prepend(words.join(QLatin1Char(' ')));
        }
        ++counter;
    }
    return built.join(QLatin1Char(' ')).trimmed() + currencyWord;
}

QString CMoney::MonetaryToWords(const QString &input) const
{
    QString amount = input.trimmed();
    const int point = amount.indexOf(QLatin1Char('.'));
    if (point >= 0 && amount.size() - point - 1 > 2)
        amount.truncate(point + 3);
    if (amount.startsWith(QLatin1Char('-'))) {
        // Only a value below zero is refused; "-0" is zero.
        bool nonZero = false;
        for (QChar c : amount)
            nonZero = nonZero || (c.isDigit() && c != QLatin1Char('0'));
        if (nonZero)
            return invalidAmount();
        amount.remove(0, 1);
    }
    QString main = amount;
    QString minor = QStringLiteral("00");
    const QStringList parts = amount.split(QLatin1Char('.'));
    if (parts.size() > 1) {
        if (parts[1].size() > 2)
            return invalidAmount();
        main = parts[0];
        minor = (parts[1] + QStringLiteral("00")).left(2);
    }
    QString minorWords;
    if (minor == QLatin1String("00")) {
        minorWords = nothing_;
    } else if (minor == QLatin1String("01")) {
        minorWords = ones_[1] + singularMinor_;
    } else {
        const std::optional<QString> words = numberWords(minor, false);
        if (!words)
            return QString();
        minorWords = *words + pluralMinor_;
    }
    const std::optional<QString> mainWords = numberWords(main, true);
    if (!mainWords)
        return QString();
    return *mainWords + QStringLiteral(" and ") + minorWords;
}

} // namespace ff
