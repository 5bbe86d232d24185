#include "Quellon/QtRunLoop.h"

#include <algorithm>
#include <cmath>

namespace quellon {

QtRunLoop::QtRunLoop(PosixRunLoop& runLoop) : runLoop_(runLoop), notifier_(runLoop.descriptor(), QSocketNotifier::Read)
{
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { turn(); });
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { turn(); });
    // Not before the toolkit's loop runs: until then it can't be told to end.
    timer_.start(0);
}

void QtRunLoop::turn()
{
    constexpr double longest = 3'600'000.0;
    runLoop_.turn();
    const auto next = runLoop_.nextDeadline();
    if (!next) {
        timer_.stop();
        return;
    }
    // Rounded up, so that the moment has come by then.
    timer_.start(static_cast<int>(std::min(std::ceil(next->count() * 1000.0), longest)));
}

} // namespace quellon
