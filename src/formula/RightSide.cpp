#include "formula/RightSide.h"

#include "formula/CMoney.h"
#include "formula/Evaluator.h"
#include "formula/FieldFormat.h"
#include "formula/NumberText.h"

namespace ff {

namespace {

// Removes the function word and every ")" and cleans what is left as a number.
QString argumentOf(QString right, const QString &word, const QString &separator)
{
    right.remove(word, Qt::CaseInsensitive);
    right.remove(QLatin1Char(')'));
    return CleanNumber(right, separator);
}

double sideValue(QString side, const QString &separator) { return Val(EvaluateToText(side, separator)); }

bool holds(double a, double b, const QString &op)
{
    if (op == QLatin1String(">="))
        return a >= b;
    if (op == QLatin1String("<="))
        return a <= b;
    if (op == QLatin1String("="))
        return a == b;
    if (op == QLatin1String("<"))
        return a < b;
    return a > b;
}

// Cuts `right` at the first operator of `ops` found and gives the truth of the comparison of the
// two evaluated pieces, or no value when none is found.
std::optional<bool> compareRight(const QString &right, std::initializer_list<const char *> ops,
                                 const QString &separator)
{
    for (const char *op : ops) {
        const QString o = QLatin1String(op);
        if (!right.contains(o))
            continue;
        const QStringList pieces = right.split(o);
        return holds(sideValue(pieces[0], separator), sideValue(pieces[1], separator), o);
    }
    return std::nullopt;
}

} // namespace

Status EvaluateRightSide(const QString &token, QString &right, FormulaContext &context)
{
    const QString separator = context.DecimalSeparator();
    const auto has = [&token](const QString &form) { return token.contains(form, Qt::CaseInsensitive); };

    if (has(QStringLiteral("CUR("))) {
        const QString amount = argumentOf(right, QStringLiteral("CUR("), separator);
        right = CMoney(context.locale).MonetaryToWords(amount).replace(QLatin1Char(' '), QLatin1Char('_'));
        return Status();
    }
    for (const bool currency : {true, false}) {
        for (int decimals = 0; decimals <= 4; ++decimals) {
            const QString word = QString::fromLatin1(currency ? "CUR%1(" : "NUM%1(").arg(decimals);
            if (!has(word))
                continue;
            const std::optional<double> value = ParseNumericText(argumentOf(right, word, separator));
            if (!value)
                return makeError(ErrorCode::Invalid, QStringLiteral("not a number: ") + right);
            right = currency ? FormatCurrency(*value, decimals, context.locale)
                             : FormatFixed(*value, decimals, context.locale);
            return Status();
        }
    }
    if (has(QStringLiteral("MSGBOX("))) {
        right = argumentOf(right, QStringLiteral("MSGBOX("), separator);
        if (context.host)
            context.host->ShowMessage(context.AppTitle, right, kFormulaMessageColour);
        return Status();
    }
    if (has(QStringLiteral("NOT("))) {
        right.remove(QStringLiteral("NOT("), Qt::CaseInsensitive);
        right.remove(QLatin1Char(')'));
        if (const auto truth = compareRight(right, {">=", "<=", "=", "<", ">"}, separator))
            right = *truth ? QStringLiteral("False") : QStringLiteral("True");
        return Status();
    }
    if (const auto truth = compareRight(right, {">=", "<=", "<", ">"}, separator))
        right = *truth ? QStringLiteral("True") : QStringLiteral("False");
    return Status();
}

} // namespace ff
