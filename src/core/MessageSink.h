#pragma once
// Where the store, the formulas, the search and the entry rules send a message for the user. The
// window shows it in the program's message box, the command line prints it to standard error,
// tests record it. The host interfaces of those subsystems build on this one and add only their
// own calls.

#include <QString>

namespace ff {

// The colour of the program's own messages (formulas, entry, search): a light blue.
constexpr int kMessageColour = 16744576;

class MessageSink {
public:
    virtual ~MessageSink() = default;
    // `caption` empty: the program's caption (the main window's title). A "|" in `text` is a
    // line break. Modal where there is a window: the caller goes on when it is closed.
    virtual void ShowMessage(const QString &caption, const QString &text, int colour) = 0;
};

} // namespace ff
