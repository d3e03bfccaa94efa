#pragma once
// What the record store needs from its host: the message box and a chance to let the event loop
// run. The window implements it with its own message box; the command line prints to stderr; tests
// record the calls.

#include <QString>

namespace ff {

class StoreHost {
public:
    virtual ~StoreHost() = default;
    // The program's message box: caption, text ("|" is a line break) and its colour.
    virtual void ShowMessage(const QString &caption, const QString &text, int color) = 0;
    // Long walks and each record write give the event loop a turn.
    virtual void YieldToEvents() {}
};

} // namespace ff
