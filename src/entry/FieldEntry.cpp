#include "entry/FieldEntry.h"

#include "entry/FieldLeave.h"
#include "entry/FunctionKeys.h"
#include "formula/DateNumber.h"
#include "formula/NumberText.h"

namespace ff {

namespace {

constexpr int kScrollStep = 10;

template <typename Table>
bool inTable(const Table &table, int index)
{
    return index >= 0 && index < static_cast<int>(table.size());
}

} // namespace

FieldEntry::FieldEntry(Page &page, EntryHost &host, QLocale locale, const Clock &clock)
    : page_(page), host_(host), locale_(std::move(locale)), clock_(&clock),
      codePage_(page.design().FontCharset)
{
    // Until an element gets the focus, the first field is the one searched and sorted by.
    if (page.design().FieldCount > 0)
        state_.focusIndex = 1;
}

double FieldEntry::now() const { return NumberFromDateTime(clock_->now()); }

QChar FieldEntry::decimalSeparator() const
{
    const QString point = locale_.decimalPoint();
    return point.isEmpty() ? QLatin1Char('.') : point.at(0);
}

bool FieldEntry::beginEdit()
{
    if (host_.readOnly())
        return false;
    state_.changed = true;
    // Only another user's lock throws the edit away; other failures of the lock leave it be.
    const Status locked = host_.lockRecord();
    return locked.ok() || locked.error().code != ErrorCode::PermissionDenied;
}

void FieldEntry::noteFocus(FocusKind kind, int index)
{
    state_.focusKind = kind;
    state_.focusIndex = index;
}

void FieldEntry::showHint(const QString &hint)
{
    if (!hint.isEmpty())
        page_.setTitleCaption(kStatusLabel, hint);
}

bool FieldEntry::fieldMayChange(int index) const
{
    return index >= 1 && inTable(page_.design().Fields, index) && index < page_.FieldText.size()
           && !(index < page_.FieldLocked.size() && page_.FieldLocked[index]);
}

bool FieldEntry::comboMayChange(int index) const
{
    return index >= 1 && inTable(page_.design().Combos, index) && index < page_.ComboText.size()
           && !(index < page_.ComboLocked.size() && page_.ComboLocked[index]);
}

// ---- Text fields ----

FieldAction FieldEntry::fieldGotFocus(int index)
{
    noteFocus(FocusKind::Field, index);
    state_.focusText = index < page_.FieldText.size() && index >= 0 ? page_.FieldText[index] : QString();
    state_.action = FieldAction();
    if (!inTable(page_.design().Fields, index) || index < 1)
        return state_.action;
    const FieldElement &field = page_.design().Fields[static_cast<size_t>(index)];
    showHint(field.FieldHint);
    state_.action = FieldAction::choose(state_.focusText, field.FieldType);
    return state_.action;
}

QChar FieldEntry::fieldKeyPress(int index, QChar typed)
{
    if (!fieldMayChange(index) || !beginEdit())
        return QChar();
    const int format = page_.design().Fields[static_cast<size_t>(index)].FieldType;
    return KeyRules::fieldCharacter(format, typed, decimalSeparator(), codePage_);
}

std::optional<KeyRules::CaseResult> FieldEntry::fieldKeyUp(int index, const QString &text, int caret)
{
    if (index < 1 || !inTable(page_.design().Fields, index))
        return std::nullopt;
    const FieldElement &field = page_.design().Fields[static_cast<size_t>(index)];
    if (field.FieldType != 0 || field.FieldCase < 1 || field.FieldCase > 3)
        return std::nullopt;
    KeyRules::CaseResult result = KeyRules::applyFieldCase(text, field.FieldCase, caret);
    page_.setFieldText(index, result.text);
    return result;
}

FieldEntry::KeyDown FieldEntry::functionKeyDown(FocusKind kind, int index, int qtKey, Qt::KeyboardModifiers modifiers)
{
    KeyDown result;
    if (modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier)) {
        result.action = KeyDown::Action::LeaveToSystem;
        return result;
    }
    const std::optional<int> key = FunctionKeys::functionKeyNumber(qtKey);
    if (!key)
        return result;
    const bool mayChange = kind == FocusKind::Field ? fieldMayChange(index) : comboMayChange(index);
    if (!mayChange || !beginEdit())
        return result;
    const QString value = FunctionKeys::resolveKey(page_, *key, now(), locale_);
    if (kind == FocusKind::Field)
        page_.setFieldText(index, value);
    else
        page_.setComboText(index, value);
    result.action = KeyDown::Action::Filled;
    return result;
}

FieldEntry::KeyDown FieldEntry::fieldKeyDown(int index, int qtKey, Qt::KeyboardModifiers modifiers)
{
    KeyDown result = functionKeyDown(FocusKind::Field, index, qtKey, modifiers);
    if (result.action != KeyDown::Action::None)
        return result;
    if (qtKey == Qt::Key_Up || qtKey == Qt::Key_Down) {
        result.action = KeyDown::Action::Scroll;
        result.scrollBy = qtKey == Qt::Key_Up ? -kScrollStep : kScrollStep;
    }
    return result;
}

bool FieldEntry::fieldLostFocus(int index)
{
    if (!FieldLeave::leaveTextField(page_, index, state_.focusText, locale_))
        return false;
    state_.changed = false;
    state_.focusText = index < page_.FieldText.size() ? page_.FieldText[index] : QString();
    host_.runFormulas();
    return true;
}

bool FieldEntry::fieldWantsDatePicker(int index) const
{
    if (index < 1 || !inTable(page_.design().Fields, index))
        return false;
    const int format = page_.design().Fields[static_cast<size_t>(index)].FieldType;
    return format >= 6 && format <= 12;
}

// ---- Combos ----

void FieldEntry::comboGotFocus(int index)
{
    noteFocus(FocusKind::Combo, index);
    state_.focusText = index >= 0 && index < page_.ComboText.size() ? page_.ComboText[index] : QString();
    if (index >= 1 && inTable(page_.design().Combos, index))
        showHint(page_.design().Combos[static_cast<size_t>(index)].ComboHint);
    if (selection_.active())
        pickForSearch(FocusKind::Combo, index);
    host_.runFormulas(); // so that the combos show current values
}

QChar FieldEntry::comboKeyPress(int index, QChar typed)
{
    if (!comboMayChange(index) || !beginEdit())
        return QChar();
    const int format = page_.design().Combos[static_cast<size_t>(index)].ComboFormat;
    return KeyRules::fieldCharacter(format, typed, decimalSeparator(), codePage_);
}

FieldEntry::KeyDown FieldEntry::comboKeyDown(int index, int qtKey, Qt::KeyboardModifiers modifiers)
{
    return functionKeyDown(FocusKind::Combo, index, qtKey, modifiers);
}

bool FieldEntry::comboChosen(int index, const QString &text)
{
    if (!comboMayChange(index) || !beginEdit())
        return false;
    page_.setComboText(index, text);
    host_.runFormulas();
    return true;
}

void FieldEntry::comboLostFocus(int index)
{
    FieldLeave::leaveCombo(page_, index, locale_);
    state_.changed = false;
    host_.runFormulas();
}

// ---- Check fields ----

void FieldEntry::checkGotFocus(int index) { noteFocus(FocusKind::Check, index); }

bool FieldEntry::checkMouseDown(int index, Qt::MouseButton button, Qt::MouseButtons held)
{
    if (!inTable(page_.design().Checks, index) || index >= page_.CheckValue.size())
        return false;
    noteFocus(FocusKind::Check, index);
    if (button == Qt::RightButton) {
        pickForSearch(FocusKind::Check, index);
        return false;
    }
    if (button != Qt::LeftButton || (held & Qt::RightButton))
        return false;
    if (index < page_.CheckLocked.size() && page_.CheckLocked[index])
        return false;
    if (!beginEdit())
        return false;
    page_.setCheckValue(index, page_.CheckValue[index] != 0 ? 0 : 1);
    host_.runFormulas();
    return true;
}

bool FieldEntry::checkKeyDown(int index, int qtKey)
{
    if (qtKey != Qt::Key_Space)
        return false;
    return checkMouseDown(index, Qt::LeftButton);
}

// ---- Notes ----

void FieldEntry::noteGotFocus(int index) { noteFocus(FocusKind::Note, index); }

QChar FieldEntry::noteKeyPress(int index, QChar typed)
{
    if (index < 1 || !inTable(page_.design().Notes, index) || index >= page_.NoteText.size())
        return QChar();
    if (index < page_.NoteLocked.size() && page_.NoteLocked[index])
        return QChar();
    if (!beginEdit())
        return QChar();
    return KeyRules::noteCharacter(typed, codePage_);
}

// ---- Multi-field selection ----

void FieldEntry::pickForSearch(FocusKind kind, int index)
{
    QString value;
    switch (kind) {
    case FocusKind::Field:
        if (index >= 0 && index < page_.FieldText.size())
            value = page_.FieldText[index];
        break;
    case FocusKind::Combo:
        if (index >= 0 && index < page_.ComboText.size())
            value = page_.ComboText[index];
        break;
    case FocusKind::Check:
        if (index >= 0 && index < page_.CheckValue.size())
            value = QString::number(page_.CheckValue[index]);
        break;
    case FocusKind::Note:
        if (index >= 0 && index < page_.NoteText.size())
            value = page_.NoteText[index];
        break;
    case FocusKind::None: return;
    }
    selection_.add(kind, index, value);
}

} // namespace ff
