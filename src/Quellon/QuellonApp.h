#pragma once

#include "Quellon/ProgramOptions.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Support/Calendar.h"
#include "QuellonHost/SystemHost.h"

#include <functional>

namespace quellon {

/// The program: the real host, the one engine, and a view on it. Making it starts the guard.
class QuellonApp {
public:
    QuellonApp();
    QuellonApp(const QuellonApp&) = delete;
    QuellonApp& operator=(const QuellonApp&) = delete;

    /// Shows the terminal view until the end and gives the exit status; lines, after a message, on a terminal that
    /// can't be drawn on.
    [[nodiscard]] int runTerminal(const ProgramOptions& options);
    /// Prints lines until the end and gives the exit status.
    [[nodiscard]] int runPlain(const ProgramOptions& options);

    [[nodiscard]] PosixRunLoop& runLoop() { return host_.runLoop(); }
    [[nodiscard]] GuardEngine& engine() { return engine_; }
    [[nodiscard]] const Calendar& calendar() const { return calendar_; }

private:
    SystemHost host_;
    Calendar calendar_;
    GuardEngine engine_;

    /// The run loop's life, from the launch to the ordinary end; `cleanup` is the delegate's for as long.
    void run(const ProgramOptions& options, std::function<void()> cleanup);
};

} // namespace quellon
