#pragma once

#include "QuellonCore/Host/LogSink.h"

#include <map>
#include <mutex>
#include <os/log.h>
#include <string>

namespace quellon {

/// Writes to the unified log under the program's subsystem. Not run: written for macOS, never tried there.
class UnifiedLog final : public LogSink {
public:
    void write(std::string_view category, LogLevel level, std::string_view message) override;

private:
    std::mutex lock_;
    std::map<std::string, os_log_t, std::less<>> logs_; ///< One for each category; the system never frees them.

    [[nodiscard]] os_log_t log(std::string_view category);
};

} // namespace quellon
