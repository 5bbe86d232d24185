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
    /// Flushes what is buffered for output and ends. Neither destructors nor `atexit` functions run, since background
    /// threads may still use what they would destroy.
    void exit(int status) override;

private:
    std::map<std::string, std::string, std::less<>> environment_;
};

} // namespace quellon
