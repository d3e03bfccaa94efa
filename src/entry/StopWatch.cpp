#include "entry/StopWatch.h"

#include <cmath>

namespace ff {

bool StopWatch::click(int field)
{
    if (running_) {
        running_ = false;
        return false;
    }
    field_ = field;
    start_ = clock_->steadySeconds();
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
    return elapsedText(clock_->steadySeconds() - start_);
}

long long StopWatch::elapsedSeconds() const
{
    const double seconds = running_ ? clock_->steadySeconds() - start_ : 0;
    return seconds > 0 ? static_cast<long long>(std::floor(seconds)) : 0;
}

} // namespace ff
