#pragma once

#include <functional>
#include <string_view>

namespace quellon {

/// Ends the program with exit status 70 after writing "fatal: {what}" to standard error. For states that arithmetic
/// must never reach, such as a byte counter that overflows; never for what comes from outside. Does the work of every
/// `FatalCleanup` first.
[[noreturn]] void fatal(std::string_view what);

/// Work that `fatal` does before it ends the program, for as long as this lives: thawing what is frozen, giving the
/// terminal back. The oldest comes first. Each is begun once; one that fails in turn is given up, and the next one
/// follows. It runs on the thread that failed, in the middle of whatever that was doing.
class FatalCleanup {
public:
    explicit FatalCleanup(std::function<void()> work);
    ~FatalCleanup();
    FatalCleanup(const FatalCleanup&) = delete;
    FatalCleanup& operator=(const FatalCleanup&) = delete;

private:
    std::function<void()> work_;
};

} // namespace quellon
