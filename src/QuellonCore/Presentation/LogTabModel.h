#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/OverviewModel.h"

#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The settings window's page with the activity log.
struct LogTabModel {
    static constexpr std::string_view emptyText = "Nothing yet"; ///< In the place of the rows when there are none.

    std::vector<OverviewModel::LogLine> rows; ///< Newest first.

    [[nodiscard]] static LogTabModel of(const GuardEngine& engine);

    /// The symbol before a line of this kind.
    [[nodiscard]] static std::string_view symbol(GuardEvent::Kind kind);

    /// A row in words alone, for a screen reader and for the clipboard: "10:00:00 warning: nettop timed out".
    [[nodiscard]] static std::string line(const OverviewModel::LogLine& row);

    bool operator==(const LogTabModel&) const = default;
};

} // namespace quellon
