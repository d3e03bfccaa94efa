#pragma once
// The one source of the present moment: the "today" and "now" of formulas and field defaults, the
// stamps a store writes, the calendar's start day, the window's clock and the stop watch. The
// program runs on the system clock; a test installs a FixedClock and so gets the same day on
// every run, also across midnight.
//
// The clock travels with the objects that already carry the program-wide state: the formula
// context, the database and its record store, the field entry and the window that owns them.

#include <QDate>
#include <QDateTime>

namespace ff {

class Clock {
public:
    virtual ~Clock() = default;

    // Local date and time of day.
    virtual QDateTime now() const = 0;
    // Seconds on a clock that never goes back (a change of the system time does not disturb a
    // running stop watch); the start is arbitrary, only differences count.
    virtual double steadySeconds() const = 0;

    QDate today() const { return now().date(); }

    // The system's clock, shared by everything that is given no other.
    static const Clock &system();
};

} // namespace ff
