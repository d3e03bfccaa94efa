#pragma once
// The program-wide state of field entry: which element has the focus (noted for the search), the
// text a field held when it got the focus, the change flag raised by typing and the action
// button chosen for the focused field.

#include "entry/FieldAction.h"

#include <QString>

#include <cstdint>

namespace ff {

// The kind noted for the search when an element gets the focus.
enum class FocusKind : uint8_t { None = 0, Field = 1, Combo = 2, Check = 3, Note = 4 };

struct EntryState {
    FocusKind focusKind = FocusKind::Field;
    int focusIndex = 0; // FieldEntry starts it at field 1 when the design has fields
    // The text of the focused field or combo when it got the focus; leaving compares against it.
    QString focusText;
    // Raised by any typed key; cleared when the field is left.
    bool changed = false;
    // The action button as set up for the focused field.
    FieldAction action;
};

} // namespace ff
