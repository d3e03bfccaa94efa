#pragma once
// The stop watch of a time field: a click on the action button starts it for the focused field, a
// second click stops it. While it runs, each tick puts the time since the start into that field as
// "hh:nn:ss". It reads the steady seconds of the clock it is given, so that tests can drive it.

#include "core/Clock.h"

#include <QString>

namespace ff {

class StopWatch {
public:
    explicit StopWatch(const Clock &clock = Clock::system()) : clock_(&clock) {}

    // A click: starts the watch for `field` when it is stopped, stops it when it runs.
    // Returns whether it runs now (the window enables or disables its tick timer by it).
    bool click(int field);
    void stop() { running_ = false; }
    bool running() const { return running_; }
    int field() const { return field_; }

    // The text for the field at this tick: whole seconds since the start, two digits for each part
    // (hours grow past 99 as they must). Empty when the watch is stopped.
    QString tick() const;
    // Whole seconds since the start; 0 when the watch is stopped.
    long long elapsedSeconds() const;
    static QString elapsedText(double seconds);

private:
    const Clock *clock_;
    bool running_ = false;
    int field_ = 0;
    double start_ = 0;
};

} // namespace ff
