#include "core/Clock.h"

#include <QElapsedTimer>

namespace ff {

namespace {

class SystemClock final : public Clock {
public:
    SystemClock() { steady_.start(); }
    QDateTime now() const override { return QDateTime::currentDateTime(); }
    double steadySeconds() const override { return static_cast<double>(steady_.nsecsElapsed()) / 1e9; }

private:
    QElapsedTimer steady_;
};

} // namespace

const Clock &Clock::system()
{
    static const SystemClock clock;
    return clock;
}

} // namespace ff
