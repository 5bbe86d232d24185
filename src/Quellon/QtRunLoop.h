#pragma once

#include "QuellonHost/Posix/PosixRunLoop.h"

#include <QSocketNotifier>
#include <QTimer>

namespace quellon {

/// Runs a run loop's work inside the toolkit's loop, for as long as it lives.
class QtRunLoop {
public:
    explicit QtRunLoop(PosixRunLoop& runLoop);
    QtRunLoop(const QtRunLoop&) = delete;
    QtRunLoop& operator=(const QtRunLoop&) = delete;

private:
    PosixRunLoop& runLoop_;
    QSocketNotifier notifier_;
    QTimer timer_;

    void turn();
};

} // namespace quellon
