#pragma once

#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Presentation/OverviewModel.h"
#include "QuellonCore/Support/UUID.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// The overview as lines that follow each other, for logs and pipes: each line of the activity log once, oldest first,
/// each notification, and the state with its table after each tick. Names stand at the end of their lines and are never
/// cut.
class PlainLines {
public:
    /// The lines to print now, each ended by a line feed; empty when there is nothing new. `clock` is the local time,
    /// `completedTicks` the engine's count of them.
    [[nodiscard]] std::string next(const OverviewModel& model, std::string_view clock, std::int64_t completedTicks);

    /// A notification is given out with the next lines, after those of the log: title, subtitle, body and buttons.
    void add(const NotificationPlan& plan, std::string_view clock);

private:
    std::optional<UUID> lastPrinted_; ///< The newest line of the log that was given out.
    std::int64_t ticksPrinted_ = 0;
    std::string notices_;
};

} // namespace quellon
