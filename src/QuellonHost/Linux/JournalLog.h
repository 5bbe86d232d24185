#pragma once

#include "QuellonCore/Host/LogSink.h"

namespace quellon {

/// Writes to the systemd journal, as identifier "quellon", with the category in the field QUELLON_CATEGORY. Without a
/// journal nothing is written anywhere. `journalctl -t quellon QUELLON_CATEGORY=shell` reads one category.
class JournalLog final : public LogSink {
public:
    void write(std::string_view category, LogLevel level, std::string_view message) override;
};

} // namespace quellon
