#include "formula/Conditions.h"

#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/Evaluator.h"
#include "formula/NumberText.h"

#include <QCollator>

namespace ff {

QString &ProtectQuotedText(QString &line)
{
    if (!line.contains(QLatin1Char('"')))
        return line;
    bool inside = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == QLatin1Char('"'))
            inside = !inside;
        else if (inside && line[i] == QLatin1Char(' '))
            line[i] = QLatin1Char('_');
    }
    return line;
}

Status RunAssignments(QString &line, uint8_t &mode, const StatementRunner &run)
{
    (void)mode;
    line.replace(QLatin1String("TRUE"), QLatin1String("1"), Qt::CaseInsensitive);
    line.replace(QLatin1String("FALSE"), QLatin1String("0"), Qt::CaseInsensitive);
    ProtectQuotedText(line);
    if (line.isEmpty())
        return Status();
    QStringList tokens = line.split(QLatin1Char(' '));
    for (QString &token : tokens) {
        Status status = run(token);
        if (!status)
            return status;
    }
    return Status();
}

namespace {

bool is(const QString &token, const char *word) { return token.compare(QLatin1String(word), Qt::CaseInsensitive) == 0; }

// Runs the statements from `from` on, up to and including a token "ELSE".
Status runFrom(QStringList &tokens, qsizetype from, const StatementRunner &run)
{
    for (qsizetype k = from; k < tokens.size(); ++k) {
        Status status = run(tokens[k]);
        if (!status)
            return status;
        if (is(tokens[k], "ELSE"))
            break;
    }
    return Status();
}

qsizetype findWord(const QStringList &tokens, qsizetype from, const char *word)
{
    for (qsizetype k = from; k < tokens.size(); ++k) {
        if (is(tokens[k], word))
            return k;
    }
    return -1;
}

} // namespace

Status RunIf(QString &line, uint8_t &mode, const StatementRunner &run, const FormulaContext &context)
{
    ProtectQuotedText(line);
    if (line.isEmpty())
        return Status();
    QStringList tokens = line.split(QLatin1Char(' '));
    for (QString &token : tokens)
        token.replace(QLatin1Char('_'), QLatin1Char(' '));

    bool result = false;
    for (qsizetype i = 1; i < tokens.size(); ++i) {
        const QString &token = tokens[i];
        if (is(token, "OR") && result) {
            const qsizetype then = findWord(tokens, i, "THEN");
            if (then >= 0)
                return runFrom(tokens, then + 1, run);
        } else if (is(token, "AND") && !result) {
            qsizetype k = i;
            for (; k < tokens.size(); ++k) {
                if (is(tokens[k], "OR") || is(tokens[k], "ELSE"))
                    break;
            }
            if (k == tokens.size())
                return Status(); // neither: nothing runs
            if (is(tokens[k], "ELSE"))
                return runFrom(tokens, k + 1, run);
            // An "OR" lies ahead: the "AND" is tested like any token and the walk goes on.
        } else if (is(token, "THEN")) {
            if (result)
                return runFrom(tokens, i + 1, run);
            const qsizetype elseAt = findWord(tokens, i, "ELSE");
            if (elseAt >= 0)
                return runFrom(tokens, elseAt + 1, run);
        }
        Result<bool> test = TestCondition(tokens[i], mode, context);
        if (!test)
            return Status(test.error());
        result = *test;
    }
    return Status();
}

namespace {

bool holdsOperator(const QString &side)
{
    for (QChar c : side) {
        const char16_t u = c.unicode();
        if (u == '+' || u == '~' || u == '/' || u == '*' || u == '^' || u == 'M' || u == 'm')
            return true;
    }
    return false;
}

bool compareWith(const QString &op, int order)
{
    if (op == QLatin1String("<>"))
        return order != 0;
    if (op == QLatin1String("<="))
        return order <= 0;
    if (op == QLatin1String(">="))
        return order >= 0;
    if (op == QLatin1String(">"))
        return order > 0;
    if (op == QLatin1String("<"))
        return order < 0;
    return order == 0;
}

int order(double a, double b) { return a < b ? -1 : (a > b ? 1 : 0); }

} // namespace

Result<bool> TestCondition(QString &token, uint8_t &mode, const FormulaContext &context)
{
    if (token.contains(QLatin1Char('"'))) {
        token.remove(QLatin1Char('"'));
        mode = 1;
    }
    if (token.contains(QLatin1String("NOT"), Qt::CaseInsensitive)) {
        token.remove(QLatin1String("NOT("), Qt::CaseInsensitive);
        token.remove(QLatin1Char(')'));
        for (const char *op : {">=", "<=", "<", ">"}) {
            const QString o = QLatin1String(op);
            if (!token.contains(o))
                continue;
            const QStringList pieces = token.split(o);
            return !compareWith(o, order(Val(pieces[0]), Val(pieces[1])));
        }
        return false;
    }
    QString op;
    for (const char *candidate : {"<>", "<=", ">=", ">", "<", "="}) {
        if (token.contains(QLatin1String(candidate))) {
            op = QLatin1String(candidate);
            break;
        }
    }
    if (op.isEmpty())
        return false;
    const QStringList pieces = token.split(op);
    QString left = pieces[0];
    QString right = pieces[1];
    if (op != QLatin1String("=")) {
        const QString separator = context.DecimalSeparator();
        for (QString *side : {&left, &right}) {
            if (!holdsOperator(*side))
                continue;
            const std::optional<double> value = EvaluateExpression(*side, separator);
            *side = value ? NumberToText(*value, separator) : QString();
        }
    }
    switch (mode) {
    case 0: return compareWith(op, order(Val(left), Val(right)));
    case 1: {
        QCollator collator(context.locale);
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        const int c = collator.compare(left, right);
        return compareWith(op, c < 0 ? -1 : (c > 0 ? 1 : 0));
    }
    case 2: {
        const std::optional<double> a = ReadDate(left, context.locale);
        const std::optional<double> b = ReadDate(right, context.locale);
        if (!a || !b)
            return makeError(ErrorCode::Invalid, QStringLiteral("not a date"));
        return compareWith(op, order(*a, *b));
    }
    default: return false;
    }
}

} // namespace ff
