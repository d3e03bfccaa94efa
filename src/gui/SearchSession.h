#pragma once
// What the results windows and the find-and-replace window of one main window share: one stop for
// the search under way (a stop in any of them stops it), the number of records between two looks
// at that stop, and how many results windows have been made, so that each new one stands a step
// further along. The main window owns it and hands it to each of those windows.

namespace ff::gui {

class SearchSession {
public:
    void requestStop() { stopRequested_ = true; }
    void clearStop() { stopRequested_ = false; }
    bool stopRequested() const { return stopRequested_; }

    // Records between two looks at the stop buttons.
    int progressStep() const { return progressStep_; }
    void setProgressStep(int records) { progressStep_ = records > 0 ? records : 1; }

    // Counts a new results window; returns its place in the run, from 0.
    int windowMade() { return windowCount_++; }
    int windowCount() const { return windowCount_; }

private:
    bool stopRequested_ = false;
    int progressStep_ = 2048;
    int windowCount_ = 0;
};

} // namespace ff::gui
