#pragma once
// A clock that stands still until it is told to move: tests set the day and time they need and
// advance it by hand (the stop watch's seconds move with it).

#include "core/Clock.h"

namespace ff {

class FixedClock final : public Clock {
public:
    explicit FixedClock(QDateTime at) : at_(std::move(at)) {}

    QDateTime now() const override { return at_; }
    double steadySeconds() const override { return static_cast<double>(steadyMs_) / 1000.0; }

    void set(QDateTime at) { at_ = std::move(at); }
    void advance(qint64 milliseconds)
    {
        at_ = at_.addMSecs(milliseconds);
        steadyMs_ += milliseconds;
    }

private:
    QDateTime at_;
    qint64 steadyMs_ = 0;
};

} // namespace ff
