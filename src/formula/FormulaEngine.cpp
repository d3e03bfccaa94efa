#include "formula/FormulaEngine.h"

#include "formula/Conditions.h"
#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/Evaluator.h"
#include "formula/FieldFormat.h"
#include "formula/NumberText.h"
#include "formula/RightSide.h"

#include <algorithm>
#include <cmath>

namespace ff {

FormulaEngine::FormulaEngine(Page &page, FormulaContext &context) : page_(page), context_(context) {}

int FormulaEngine::fieldCount() const
{
    return static_cast<int>(std::min<qsizetype>(page_.design().Fields.size(), page_.FieldText.size())) - 1;
}
int FormulaEngine::comboCount() const
{
    return static_cast<int>(std::min<qsizetype>(page_.design().Combos.size(), page_.ComboText.size())) - 1;
}
int FormulaEngine::noteCount() const
{
    return static_cast<int>(std::min<qsizetype>(page_.design().Notes.size(), page_.NoteText.size())) - 1;
}
int FormulaEngine::checkCount() const
{
    return static_cast<int>(std::min<qsizetype>(page_.design().Checks.size(), page_.CheckValue.size())) - 1;
}

QString FormulaEngine::systemVariables(QString &line, Qt::CaseSensitivity cs)
{
    const QString separator = context_.DecimalSeparator();
    const double now = context_.Now();
    line.replace(QLatin1String("ID"), CleanNumberCopy(QString::number(context_.CurrentRecord), separator), cs);
    line.replace(QLatin1String("SDATE"), NumberToText(RoundHalfEven(context_.SearchDate, 0), separator), cs);
    line.replace(QLatin1String("Date$"), FormatDateByType(std::floor(now), kFormatShortDate, context_.locale), cs);
    line.replace(QLatin1String("DateVal$"), FormatGeneralDate(now, context_.locale), cs);
    line.replace(QLatin1String("SumTotal$"), NumberToText(context_.SumTotal, separator), cs);
    line.replace(QLatin1String("SumAdv$"), NumberToText(context_.SumAverage, separator), cs);
    line.replace(QLatin1String("CountTotal$"), NumberToText(context_.CountTotal, separator), cs);
    return line;
}

QString FormulaEngine::SubstituteFields(QString &line, int mode)
{
    if (mode != 1) {
        systemVariables(line, Qt::CaseInsensitive);
        for (int n = fieldCount(); n >= 1; --n)
            line.replace(QLatin1Char('F') + QString::number(n), FieldValues.value(n));
        for (int n = comboCount(); n >= 1; --n) {
            QString value = ComboValues.value(n);
            if (page_.design().Combos[n].ComboFormat == 0)
                value = QLatin1Char('"') + value.replace(QLatin1Char('-'), QLatin1Char('~')) + QLatin1Char('"');
            line.replace(QLatin1Char('C') + QString::number(n), value);
        }
    } else {
        for (int n = fieldCount(); n >= 1; --n) {
            QString text = page_.FieldText[n];
            line.replace(QLatin1Char('F') + QString::number(n), text.replace(QLatin1Char(' '), QLatin1Char('_')));
        }
        for (int n = comboCount(); n >= 1; --n) {
            QString text = page_.ComboText[n];
            line.replace(QLatin1Char('C') + QString::number(n), text.replace(QLatin1Char(' '), QLatin1Char('_')));
        }
    }
    for (int n = checkCount(); n >= 0; --n)
        line.replace(QLatin1Char('K') + QString::number(n), CheckValues.value(n));
    return line;
}

QString FormulaEngine::ReplaceVariables(QString &line)
{
    for (int n = kFormulaVarCount - 1; n >= 0; --n)
        line.replace(QLatin1Char('V') + QString::number(n), context_.FormulaVars[static_cast<size_t>(n)]);
    return line;
}

QString FormulaEngine::InsertV(QString &line)
{
    const QString separator = context_.DecimalSeparator();
    systemVariables(line, Qt::CaseSensitive);
    for (int n = fieldCount(); n >= 1; --n)
        line.replace(QLatin1Char('F') + QString::number(n),
                     NumberToText(Val(CleanNumberCopy(page_.FieldText[n], separator)), separator));
    for (int n = comboCount(); n >= 1; --n)
        line.replace(QLatin1Char('C') + QString::number(n), CleanNumberCopy(page_.ComboText[n], separator));
    for (int n = checkCount(); n >= 0; --n)
        line.replace(QLatin1Char('K') + QString::number(n), QString::number(page_.CheckValue[n]));
    return line;
}

void FormulaEngine::takeSnapshot()
{
    const QString separator = context_.DecimalSeparator();
    const Design &design = page_.design();
    for (int n = 0; n <= fieldCount(); ++n) {
        const QString &text = page_.FieldText[n];
        const int type = design.Fields[n].FieldType;
        if (type == kFormatText) {
            FieldValues[n] = NumberToText(Val(CleanNumberCopy(text, separator)), separator);
        } else if (type >= kFormatGeneralDate && type <= kFormatLongTime) {
            if (text.isEmpty())
                continue;
            if (const std::optional<double> date = ReadDate(text, context_.locale))
                FieldValues[n] = CleanNumberCopy(NumberToText(*date, separator), separator);
        } else {
            FieldValues[n] = CleanNumberCopy(text, separator);
        }
    }
    for (int n = 1; n <= comboCount(); ++n)
        ComboValues[n] = CleanNumberCopy(page_.ComboText[n], separator);
    for (int n = 0; n <= checkCount(); ++n)
        CheckValues[n] = QString::number(page_.CheckValue[n]);
}

void FormulaEngine::RunFormulas()
{
    const Design &design = page_.design();
    const int fields = fieldCount();
    FieldValues = QVector<QString>(std::max(fields + 1, 0));
    ComboValues = QVector<QString>(std::max(comboCount() + 1, 0));
    CheckValues = QVector<QString>(std::max(checkCount() + 1, 0));

    int first = 1;
    while (first <= fields && design.Fields[first].FieldFormula.isEmpty())
        ++first;
    if (first > fields)
        return; // no formula at all: nothing is touched, not even the variables

    takeSnapshot();
    context_.FormulaVars.fill(QString());

    for (int n = first; n <= fields; ++n) {
        const QString &formula = design.Fields[n].FieldFormula;
        const int type = design.Fields[n].FieldType;
        if (formula.isEmpty() || type >= kFormatLongTime)
            continue;
        if (formula.contains(QLatin1Char('\n'))) {
            QString lines = formula;
            lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
            for (const QString &line : lines.split(QLatin1Char('\n')))
                std::ignore = runLine(line, type); // a failing line is passed over
        } else if (formula.startsWith(QLatin1String("IF"), Qt::CaseInsensitive)
                   || formula.contains(QLatin1Char('='))) {
            std::ignore = runLine(formula, type); // as above: the field keeps its value
        } else if (type == kFormatText) {
            QString line = formula;
            page_.setFieldText(n, SubstituteFields(line, 1));
        } else {
            QString line = formula;
            SubstituteFields(line, 0);
            const QString value = EvaluateToText(line, context_.DecimalSeparator());
            FieldValues[n] = value;
            showBareResult(n, value);
        }
    }
}

Status FormulaEngine::runLine(QString line, int fieldType)
{
    const int mode = fieldType == kFormatText ? 1 : 0;
    uint8_t compareMode = static_cast<uint8_t>(mode);
    SubstituteFields(line, mode);
    ReplaceVariables(line);
    const StatementRunner run = [this](QString &token) { return RunStatement(token); };
    if (line.startsWith(QLatin1String("IF"), Qt::CaseInsensitive))
        return RunIf(line, compareMode, run, context_);
    return RunAssignments(line, compareMode, run);
}

void FormulaEngine::showBareResult(int field, const QString &value)
{
    const FieldElement &element = page_.design().Fields[field];
    const int type = element.FieldType;
    const double number = Val(value);
    QString text = page_.FieldText[field];
    switch (type) {
    case kFormatNumber: text = NumberToText(number, context_.DecimalSeparator()); break;
    case kFormatMoney2:
    case kFormatMoney3:
    case kFormatMoney4: text = FormatFixed(number, type, context_.locale); break;
    case kFormatWhole: text = FormatFixed(number, 0, context_.locale); break;
    case kFormatShortTime: text = FormatShortTime(number); break;
    default:
        if (const std::optional<double> date = ReadDate(value, context_.locale)) {
            const double shown = *date + element.FieldDisplay;
            page_.FieldDate[field] = shown;
            text = shown == 0.0 ? QString() : FormatDateByType(shown, type, context_.locale);
        }
        break;
    }
    if (page_.design().ShowZeros <= 0 && number == 0.0)
        text.clear();
    page_.setFieldText(field, text);
}

Status FormulaEngine::RunStatement(QString &token)
{
    if (token.contains(QLatin1Char('"')))
        token.remove(QLatin1Char('"'));
    if (!token.contains(QLatin1Char('=')))
        return Status();
    const QStringList pieces = token.split(QLatin1Char('='));
    const QString left = pieces[0];
    QString right = pieces[1];
    if (Status status = EvaluateRightSide(token, right, context_); !status)
        return status;

    const auto named = [&left](char letter, int n) {
        return left.compare(QLatin1Char(letter) + QString::number(n), Qt::CaseInsensitive) == 0;
    };
    for (int n = noteCount(); n >= 1; --n) {
        if (named('m', n)) {
            page_.setNoteText(n, QString(right).replace(QLatin1Char('_'), QLatin1Char(' ')));
            return Status();
        }
    }
    for (int n = fieldCount(); n >= 1; --n) {
        if (named('f', n))
            return assignField(n, right);
    }
    for (int n = comboCount(); n >= 1; --n) {
        if (named('c', n)) {
            page_.setComboText(n, right);
            if (n < ComboValues.size())
                ComboValues[n] = right;
            return Status();
        }
    }
    for (int n = checkCount(); n >= 0; --n) {
        if (named('k', n))
            return assignCheck(n, right);
    }
    if (left.compare(QLatin1String("MSGBOX"), Qt::CaseInsensitive) == 0) {
        if (context_.host)
            context_.host->ShowMessage(context_.AppTitle, right, kFormulaMessageColour);
        return Status();
    }
    for (int n = kFormulaVarCount - 1; n >= 0; --n) {
        if (!named('v', n))
            continue;
        QString &variable = context_.FormulaVars[static_cast<size_t>(n)];
        static const QString operators = QStringLiteral("M+*/~^");
        bool holdsOperator = false;
        for (QChar c : operators)
            holdsOperator = holdsOperator || right.contains(c);
        if (Val(right) > 0 && holdsOperator) {
            const std::optional<double> value = EvaluateExpression(right, context_.DecimalSeparator());
            variable = value ? NumberToText(*value, context_.DecimalSeparator()) : QString();
        } else {
            variable = right;
        }
        return Status();
    }
    return Status();
}

Status FormulaEngine::assignField(int field, QString &right)
{
    const FieldElement &element = page_.design().Fields[field];
    const int type = element.FieldType;
    const QString separator = context_.DecimalSeparator();
    if (type == kFormatText) {
        page_.setFieldText(field, QString(right).replace(QLatin1Char('_'), QLatin1Char(' ')));
    } else if ((type >= kFormatGeneralDate && type <= kFormatLongDate) || type == kFormatMediumTime) {
        const std::optional<double> date = ReadDate(right, context_.locale);
        if (!date)
            return makeError(ErrorCode::Invalid, QStringLiteral("not a date: ") + right);
        page_.FieldDate[field] = *date;
        page_.setFieldText(field, FormatGeneralDate(*date, context_.locale));
    } else {
        right = EvaluateToText(right, separator);
        if (type == kFormatShortTime)
            page_.setFieldText(field, FormatShortTime(Val(right)));
        else if (type == kFormatLongTime)
            page_.setFieldText(field, FormatLongTime(Val(right)));
        else
            page_.setFieldText(field, CleanNumberCopy(right, separator));
    }
    if (field < FieldValues.size())
        FieldValues[field] = right;
    return Status();
}

Status FormulaEngine::assignCheck(int check, QString &right)
{
    if (Val(right) < 0)
        right = QStringLiteral("0");
    // The whole number of the text as the system converts it: "True" is -1, which a check field
    // refuses like any value but 0, 1 and 2 (grey).
    std::optional<double> number = ParseNumericText(right);
    if (!number && right.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        number = -1;
    if (!number && right.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        number = 0;
    if (!number)
        return makeError(ErrorCode::Invalid, QStringLiteral("not a number: ") + right);
    const double whole = RoundHalfEven(*number, 0);
    if (whole < 0 || whole > 2)
        return makeError(ErrorCode::Invalid, QStringLiteral("not a check value: ") + right);
    context_.SettingCheckFromFormula = true;
    page_.setCheckValue(check, static_cast<int>(whole));
    context_.SettingCheckFromFormula = false;
    if (check < CheckValues.size())
        CheckValues[check] = right;
    return Status();
}

} // namespace ff
