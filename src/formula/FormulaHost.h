#pragma once
// What a formula needs of the desktop: the program's own message box. The window implements it
// with a dialog, the command line prints to standard error, tests record the calls.

#include <QString>

namespace ff {

// The colour formulas show their messages in.
constexpr int kFormulaMessageColour = 16744576;

class FormulaHost {
public:
    virtual ~FormulaHost() = default;
    // A "|" in the message is a line break. Modal: the recalculation waits until it is closed.
    virtual void ShowMessage(const QString &caption, const QString &message, int colour) = 0;
};

} // namespace ff
