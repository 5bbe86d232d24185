#pragma once

#include "QuellonCore/Enforcement/Enforcer.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// One freeze of one application.
struct SuspendedApp {
    std::string app;                 ///< Its label.
    std::vector<std::int32_t> pids;  ///< The processes that took the signal.
    std::vector<std::string> starts; ///< Start times beside `pids`; empty where one could not be read.
    std::uint64_t bytes = 0;         ///< The usage that caused the freeze.
    Date at;                         ///< When it was frozen.

    /// "{app}-{at}", with `at` as seconds since 1970 in the shortest text that reads back as the same number, and at
    /// least one digit behind the point.
    [[nodiscard]] std::string id() const;

    /// The start time beside the first occurrence of `pid`; absent when the lists have none.
    [[nodiscard]] std::optional<std::string> start(std::int32_t pid) const;

    /// Those of `pids` that are alive and have the start time of the record; where the record has none, being alive is
    /// enough. Blocks for each.
    [[nodiscard]] Enforcer::Processes verifiedLivePIDs(const Host& host) const;

    /// All keys but `starts` are required.
    [[nodiscard]] static std::optional<SuspendedApp> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const SuspendedApp&) const = default;
};

} // namespace quellon
