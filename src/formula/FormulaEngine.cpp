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

namespace {

// The reference "F12", "K0" or "V99" as characters on the stack: found without building a string.
struct Reference {
    Reference(char letter, int n)
    {
        char digits[12];
        int count = 0;
        do {
            digits[count++] = char('0' + n % 10);
            n /= 10;
        } while (n > 0);
        text[0] = QChar(QLatin1Char(letter));
        for (int i = 0; i < count; ++i)
            text[i + 1] = QChar(QLatin1Char(digits[count - 1 - i]));
        size = count + 1;
    }
    QStringView view() const { return QStringView(text, size); }
    QChar text[12];
    qsizetype size = 0;
};

// Replaces every occurrence of `name` in `line` as QString::replace does (left to right, the
// inserted text not searched again); the value is made only when the name occurs.
template <typename MakeValue>
void replaceName(QString &line, QStringView name, Qt::CaseSensitivity cs, MakeValue &&makeValue)
{
    if (line.indexOf(name, 0, cs) < 0)
        return;
    const QString value = makeValue();
    line.replace(name.data(), name.size(), value.constData(), value.size(), cs);
}

// Replaces the names `letter` + n for n from `highest` down to `lowest`, one after the other as
// replaceName does, each by value(n). A name can stand only where `letter` is followed by a run
// of digits that starts with n's digits: the runs are found once (and again after a replacement,
// which changes the line), so a line naming two fields of a hundred costs two replacements.
template <typename MakeValue>
void replaceNumbered(QString &line, char letter, int highest, int lowest, MakeValue &&value)
{
    // Where each run of digits starts, and its length; kept between calls, as this runs three times
    // for every formula line of every record of an import.
    thread_local std::vector<std::pair<qsizetype, qsizetype>> runs;
    const auto findRuns = [&] {
        runs.clear();
        for (qsizetype at = line.indexOf(QLatin1Char(letter)); at >= 0; at = line.indexOf(QLatin1Char(letter), at + 1)) {
            qsizetype end = at + 1;
            while (end < line.size() && line[end].isDigit() && line[end].unicode() < 128)
                ++end;
            if (end > at + 1)
                runs.emplace_back(at + 1, end - at - 1);
        }
    };
    findRuns();
    for (int n = highest; n >= lowest && !runs.empty(); --n) {
        const Reference name(letter, n);
        const QStringView digits = name.view().mid(1);
        const bool mayStand = std::any_of(runs.cbegin(), runs.cend(), [&](const auto &run) {
            return run.second >= digits.size() && QStringView(line).mid(run.first, digits.size()) == digits;
        });
        if (!mayStand)
            continue;
        replaceName(line, name.view(), Qt::CaseSensitive, [&] { return value(n); });
        findRuns();
    }
}

} // namespace

void FormulaEngine::startSnapshot()
{
    if (pending_) {
        // The start values are the pending record's, read when first named.
        startFieldText_.clear();
        startComboText_.clear();
        startCheckValue_.clear();
        const size_t sizes[4] = {size_t(page_.FieldText.size()), size_t(page_.ComboText.size()),
                                 size_t(page_.CheckValue.size()), size_t(page_.NoteText.size())};
        for (int k = 0; k < 4; ++k)
            onPage_[k].assign(sizes[k], 0);
    } else {
        startFieldText_ = page_.FieldText;
        startComboText_ = page_.ComboText;
        startCheckValue_ = page_.CheckValue;
    }
    fieldValues_.assign(size_t(std::max(fieldCount() + 1, 0)), std::nullopt);
    comboValues_.assign(size_t(std::max(comboCount() + 1, 0)), std::nullopt);
    checkValues_.assign(size_t(std::max(checkCount() + 1, 0)), std::nullopt);
}

const QString &FormulaEngine::fieldValue(int n)
{
    static const QString none;
    if (size_t(n) >= fieldValues_.size())
        return none; // named before any recalculation
    std::optional<QString> &value = fieldValues_[size_t(n)];
    if (value)
        return *value;
    const QString separator = context_.DecimalSeparator();
    const QString text = pending_ ? pending_->fieldText(n) : startFieldText_[n];
    const int type = page_.design().Fields[n].FieldType;
    value.emplace();
    if (type == kFormatText) {
        *value = NumberToText(Val(CleanNumberCopy(text, separator)), separator);
    } else if (type >= kFormatGeneralDate && type <= kFormatLongTime) {
        if (!text.isEmpty()) {
            if (const std::optional<double> date = ReadDate(text, context_.locale))
                *value = CleanNumberCopy(NumberToText(*date, separator), separator);
        }
    } else {
        *value = CleanNumberCopy(text, separator);
    }
    return *value;
}

const QString &FormulaEngine::comboValue(int n)
{
    static const QString none;
    if (size_t(n) >= comboValues_.size())
        return none;
    std::optional<QString> &value = comboValues_[size_t(n)];
    if (!value)
        value = CleanNumberCopy(pending_ ? pending_->comboText(n) : startComboText_[n], context_.DecimalSeparator());
    return *value;
}

const QString &FormulaEngine::checkValue(int n)
{
    static const QString none;
    if (size_t(n) >= checkValues_.size())
        return none;
    std::optional<QString> &value = checkValues_[size_t(n)];
    if (!value)
        value = QString::number(pending_ ? pending_->checkValue(n) : startCheckValue_[n]);
    return *value;
}

namespace {

int kindSlot(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Field: return 0;
    case ElementKind::Combo: return 1;
    case ElementKind::Check: return 2;
    default: return 3;
    }
}

} // namespace

QString FormulaEngine::liveFieldText(int n) const
{
    if (!pending_ || onPage_[0][size_t(n)])
        return page_.FieldText[n];
    return pending_->fieldText(n);
}

QString FormulaEngine::liveComboText(int n) const
{
    if (!pending_ || onPage_[1][size_t(n)])
        return page_.ComboText[n];
    return pending_->comboText(n);
}

void FormulaEngine::touch(ElementKind kind, int n)
{
    if (!pending_)
        return;
    std::vector<uint8_t> &flags = onPage_[kindSlot(kind)];
    if (n < 0 || size_t(n) >= flags.size() || flags[size_t(n)])
        return;
    flags[size_t(n)] = 1;
    pending_->putOnPage(kind, n, page_);
}

QString FormulaEngine::FieldValue(int n) const
{
    if (n < 0 || size_t(n) >= fieldValues_.size() || !fieldValues_[size_t(n)])
        return QString();
    return *fieldValues_[size_t(n)];
}

QString FormulaEngine::systemVariables(QString &line, Qt::CaseSensitivity cs)
{
    // Every name holds a "d", an "s" or a "t" in either case: most lines hold none of them.
    if (std::none_of(line.cbegin(), line.cend(), [](QChar c) {
            const char16_t u = c.unicode() | 0x20;
            return u == 'd' || u == 's' || u == 't';
        }))
        return line;
    const QString separator = context_.DecimalSeparator();
    std::optional<double> now;
    const auto present = [this, &now] {
        if (!now)
            now = context_.Now();
        return *now;
    };
    replaceName(line, u"ID", cs, [&] { return CleanNumberCopy(QString::number(context_.CurrentRecord), separator); });
    replaceName(line, u"SDATE", cs, [&] { return NumberToText(RoundHalfEven(context_.SearchDate, 0), separator); });
    replaceName(line, u"Date$", cs,
                [&] { return FormatDateByType(std::floor(present()), kFormatShortDate, context_.locale); });
    replaceName(line, u"DateVal$", cs, [&] { return FormatGeneralDate(present(), context_.locale); });
    replaceName(line, u"SumTotal$", cs, [&] { return NumberToText(context_.SumTotal, separator); });
    replaceName(line, u"SumAdv$", cs, [&] { return NumberToText(context_.SumAverage, separator); });
    replaceName(line, u"CountTotal$", cs, [&] { return NumberToText(context_.CountTotal, separator); });
    return line;
}

QString FormulaEngine::SubstituteFields(QString &line, int mode)
{
    if (mode != 1) {
        systemVariables(line, Qt::CaseInsensitive);
        replaceNumbered(line, 'F', fieldCount(), 1, [&](int n) { return fieldValue(n); });
        replaceNumbered(line, 'C', comboCount(), 1, [&](int n) {
            QString value = comboValue(n);
            if (page_.design().Combos[n].ComboFormat == 0)
                value = QLatin1Char('"') + value.replace(QLatin1Char('-'), QLatin1Char('~')) + QLatin1Char('"');
            return value;
        });
    } else {
        replaceNumbered(line, 'F', fieldCount(), 1,
                        [&](int n) { return QString(liveFieldText(n)).replace(QLatin1Char(' '), QLatin1Char('_')); });
        replaceNumbered(line, 'C', comboCount(), 1,
                        [&](int n) { return QString(liveComboText(n)).replace(QLatin1Char(' '), QLatin1Char('_')); });
    }
    replaceNumbered(line, 'K', checkCount(), 0, [&](int n) { return checkValue(n); });
    return line;
}

QString FormulaEngine::ReplaceVariables(QString &line)
{
    replaceNumbered(line, 'V', kFormulaVarCount - 1, 0, [&](int n) { return context_.FormulaVars[static_cast<size_t>(n)]; });
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

void FormulaEngine::RunFormulas(PendingRecord &pending)
{
    pending_ = &pending;
    RunFormulas();
    pending_ = nullptr;
}

void FormulaEngine::RunFormulas()
{
    const Design &design = page_.design();
    const int fields = fieldCount();
    fieldValues_.clear();

    int first = 1;
    while (first <= fields && design.Fields[first].FieldFormula.isEmpty())
        ++first;
    if (first > fields)
        return; // no formula at all: nothing is touched, not even the variables

    startSnapshot();
    for (QString &variable : context_.FormulaVars) {
        if (!variable.isNull()) // most are: a hundred assignments a record add up in an import
            variable = QString();
    }

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
            SubstituteFields(line, 1);
            touch(ElementKind::Field, n);
            page_.setFieldText(n, line);
        } else {
            QString line = formula;
            SubstituteFields(line, 0);
            const QString value = EvaluateToText(line, context_.DecimalSeparator());
            fieldValues_[size_t(n)] = value;
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
    touch(ElementKind::Field, field);
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
            touch(ElementKind::Note, n);
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
            touch(ElementKind::Combo, n);
            page_.setComboText(n, right);
            if (size_t(n) < comboValues_.size())
                comboValues_[size_t(n)] = right;
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
    touch(ElementKind::Field, field);
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
    if (size_t(field) < fieldValues_.size())
        fieldValues_[size_t(field)] = right;
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
    touch(ElementKind::Check, check);
    context_.SettingCheckFromFormula = true;
    page_.setCheckValue(check, static_cast<int>(whole));
    context_.SettingCheckFromFormula = false;
    if (size_t(check) < checkValues_.size())
        checkValues_[size_t(check)] = right;
    return Status();
}

} // namespace ff
