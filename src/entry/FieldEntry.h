#pragma once
// The entry rules of the page's data elements as the window's events reach them: text fields,
// combos, check fields and notes. The window passes each event in and shows what comes back; the
// page holds the values, and everything that leaves the page (the lock, formulas) goes through
// the host. No widget is touched here, so the same rules run in tests and on the command line.

#include "core/Clock.h"
#include "core/CodePage.h"
#include "design/Page.h"
#include "entry/EntryHost.h"
#include "entry/EntryState.h"
#include "entry/KeyRules.h"
#include "entry/MultiFieldSelection.h"

#include <QChar>
#include <QLocale>
#include <QString>

#include <optional>

namespace ff {

class FieldEntry {
public:
    FieldEntry(Page &page, EntryHost &host, QLocale locale = QLocale(), const Clock &clock = Clock::system());

    EntryState &state() { return state_; }
    const EntryState &state() const { return state_; }
    MultiFieldSelection &selection() { return selection_; }
    const QLocale &locale() const { return locale_; }
    // The present moment as a day number, for the F-key fills of dates and times.
    double now() const;

    // The label in the status line: Title(1).
    static constexpr int kStatusLabel = 1;

    // What a key down asks of the window.
    struct KeyDown {
        enum class Action { None, LeaveToSystem, Filled, Scroll };
        Action action = Action::None;
        int scrollBy = 0; // for Scroll: the page's vertical position moves by this, within its bounds
    };

    // A change of any kind by the user (a typed key, a paste, a delete): false while read-only or
    // when another user holds the record (the page then shows the stored record again). Raises the
    // change flag and takes the record lock.
    bool beginEdit();

    // Text fields (Nameing).
    // Notes the field for the search, shows its hint, keeps its text for the comparison on leaving
    // and sets up the action button (returned, also kept in state().action).
    FieldAction fieldGotFocus(int index);
    // The character that goes into the field, or a null QChar to drop the key.
    QChar fieldKeyPress(int index, QChar typed);
    // After a key in a plain-text field: the text in its FieldCase with the caret kept; written to
    // the page. Nothing when the field has no case rule.
    std::optional<KeyRules::CaseResult> fieldKeyUp(int index, const QString &text, int caret);
    // Qt key code and modifiers. F1 to F11 fill the field; up and down arrows scroll the page.
    KeyDown fieldKeyDown(int index, int qtKey, Qt::KeyboardModifiers modifiers);
    // Converts the text by the field's format and runs the formulas when it changed since the focus
    // came. Returns whether it had changed.
    bool fieldLostFocus(int index);
    // A double click starts the date or time picker on the fields of the date and time formats.
    bool fieldWantsDatePicker(int index) const;

    // Combos (Cb).
    void comboGotFocus(int index);
    QChar comboKeyPress(int index, QChar typed);
    KeyDown comboKeyDown(int index, int qtKey, Qt::KeyboardModifiers modifiers);
    // A choice from the drop list: the text goes into the combo and the formulas run.
    bool comboChosen(int index, const QString &text);
    void comboLostFocus(int index);

    // Check fields (Checkbox), numbered from 0.
    void checkGotFocus(int index);
    // A mouse press: the right button only takes the focus (and picks the field for a find over
    // several fields); the left button toggles, marks the record as changed and runs the formulas,
    // unless the right button is held down at the same time, building a selection. Fields picked
    // earlier stay picked: a left click never waits for the search that uses them. `held` is the
    // buttons down with this press. Returns whether the value changed.
    bool checkMouseDown(int index, Qt::MouseButton button, Qt::MouseButtons held = Qt::NoButton);
    // Space toggles as a left click does.
    bool checkKeyDown(int index, int qtKey);

    // Notes.
    void noteGotFocus(int index);
    QChar noteKeyPress(int index, QChar typed);

    // The right button on a text field, combo, check field or note picks it for a find over
    // several fields: its value joins the search text in progress.
    void pickForSearch(FocusKind kind, int index);

private:
    void noteFocus(FocusKind kind, int index);
    void showHint(const QString &hint);
    bool fieldMayChange(int index) const;
    bool comboMayChange(int index) const;
    KeyDown functionKeyDown(FocusKind kind, int index, int qtKey, Qt::KeyboardModifiers modifiers);
    QChar decimalSeparator() const;

    Page &page_;
    EntryHost &host_;
    QLocale locale_;
    const Clock *clock_;
    CodePage codePage_;
    EntryState state_;
    MultiFieldSelection selection_;
};

} // namespace ff
