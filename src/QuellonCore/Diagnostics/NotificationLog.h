#pragma once

#include "QuellonCore/Host/Host.h"

#include <filesystem>
#include <string_view>

namespace quellon {

/// What the system's notification service told about itself, as lines of "notifications.log" in the state folder: for
/// the user who wonders why no notification came. A few lines for each start; nothing is ever taken out. Main thread
/// only.
class NotificationLog {
public:
    static constexpr std::string_view file = "notifications.log";

    explicit NotificationLog(const Host& host);

    /// Adds "[2026-01-31 09:15:00 +0000] text" and a line end, with the time of this moment in UTC. No failure shows.
    void diag(std::string_view text) const;

private:
    FileStore& files_;
    const Clock& clock_;
    std::filesystem::path directory_;
};

} // namespace quellon
