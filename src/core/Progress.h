#pragma once
// How a long walk (search, sort, export, import, print) reports progress and learns that the user
// pressed stop. The engine calls it; the window's wait window implements it; headless callers pass
// nothing or a counter.

namespace ff {

class Progress {
public:
    virtual ~Progress() = default;
    // The percentage done so far, 0..100.
    virtual void setPercent(int percent) = 0;
    // Lets the event loop run (so that the stop button can be pressed) and tells whether it was.
    virtual bool cancelled() = 0;
};

} // namespace ff
