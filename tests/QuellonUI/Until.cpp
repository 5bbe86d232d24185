#include "Until.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace quellon::testing {

bool until(const std::function<bool()>& condition)
{
    constexpr int longEnough = 20'000; // milliseconds; what takes longer never comes
    constexpr int turn = 5;
    const QDeadlineTimer deadline{longEnough};
    QTimer look; // events of other threads wake the loop too, but a condition need not come with an event
    look.start(turn);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace quellon::testing
