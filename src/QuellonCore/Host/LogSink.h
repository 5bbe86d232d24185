#pragma once

#include <string_view>

namespace quellon {

enum class LogLevel { info, error };

/// Seam: the system's log of diagnostics (the journal, the unified log). May be used from any thread.
class LogSink {
public:
    virtual ~LogSink() = default;

    /// Writes one line under a category, such as "sampling". Never fails and never waits for a reader.
    virtual void write(std::string_view category, LogLevel level, std::string_view message) = 0;
};

} // namespace quellon
