#include "entry/StopWatch.h"

#include <QElapsedTimer>

#include <cmath>

namespace ff {

namespace {

double monotonicSeconds()
{
    static QElapsedTimer timer = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

} // namespace

StopWatch::StopWatch(Clock clock) : clock_(clock ? std::move(clock) : Clock(monotonicSeconds)) {}

bool StopWatch::click(int field)
{
    if (running_) {
        running_ = false;
        return false;
    }
    field_ = field;
    start_ = clock_();
    running_ = true;
    return true;
}

QString StopWatch::elapsedText(double seconds)
{
    const long long total = seconds > 0 ? static_cast<long long>(std::floor(seconds)) : 0;
    const auto two = [](long long v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
    return two(total / 3600) + QLatin1Char(':') + two(total / 60 % 60) + QLatin1Char(':') + two(total % 60);
}

QString StopWatch::tick() const
{
    if (!running_)
        return QString();
    return elapsedText(clock_() - start_);
}

long long StopWatch::elapsedSeconds() const
{
    const double seconds = running_ ? clock_() - start_ : 0;
    return seconds > 0 ? static_cast<long long>(std::floor(seconds)) : 0;
}

} // namespace ff
