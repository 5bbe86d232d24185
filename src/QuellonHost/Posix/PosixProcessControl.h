#pragma once

#include "QuellonCore/Host/ProcessControl.h"

#include <functional>
#include <map>
#include <string>

namespace quellon {

/// What every POSIX system says of the program's own process; a system adds the rest.
class PosixProcessControl : public ProcessControl {
public:
    /// Remembers the environment of this moment.
    PosixProcessControl();

    [[nodiscard]] std::int32_t processID() const override;
    [[nodiscard]] std::optional<std::string> environment(std::string_view name) const override;
    /// Goes by the number alone: POSIX has no other way to name a process.
    [[nodiscard]] std::unique_ptr<ProcessReference> reference(std::int32_t pid) override;
    [[nodiscard]] bool spawnDetached(const Command& command) override;
    [[nodiscard]] std::unique_ptr<Lifeline> lifeline(const std::vector<std::int32_t>& pids) override;
    /// Flushes what is buffered for output and ends. Neither destructors nor `atexit` functions run, since background
    /// threads may still use what they would destroy.
    void exit(int status) override;

    /// The system's number of a signal.
    [[nodiscard]] static int systemNumber(ProcessSignal signal);

private:
    std::map<std::string, std::string, std::less<>> environment_;
};

} // namespace quellon
