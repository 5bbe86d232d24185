#pragma once

#include "QuellonCore/Host/LogSink.h"

#include <array>
#include <string>
#include <string_view>

namespace quellon {

/// Writes to the systemd journal, as identifier "quellon", with the program's subsystem in the field QUELLON_SUBSYSTEM
/// and the category in QUELLON_CATEGORY. Without a journal nothing is written anywhere. `journalctl -t quellon
/// QUELLON_CATEGORY=shell` reads one category.
class JournalLog final : public LogSink {
public:
    void write(std::string_view category, LogLevel level, std::string_view message) override;

    /// The fields of one line, each as NAME=value.
    [[nodiscard]] static std::array<std::string, 5> fields(std::string_view category, LogLevel level,
                                                           std::string_view message);
};

} // namespace quellon
