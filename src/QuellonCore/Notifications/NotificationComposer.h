#pragma once

#include "QuellonCore/Budget/BudgetStatus.h"
#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Rules/RuleBreach.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The words and buttons for what the guard has decided. A plan's texts name applications fit for a line (`plainText`),
/// its `apps` hold their labels as they are. Without a budget the texts are shorter by the line about it.
namespace quellon::NotificationComposer {

/// From how many asks within an hour on a blocked application is said to keep coming.
inline constexpr std::size_t repeatedAskThreshold = 4;

/// For one breach, by the level of its rule; without words for `highlight`.
[[nodiscard]] NotificationPlan plan(const RuleBreach& breach, const std::optional<BudgetStatus>& budget);

/// For several breaches at once: the body names the first four, `apps` holds all, and the window is that of the first.
/// Ends the program when the sum of the bytes does not fit a counter.
[[nodiscard]] NotificationPlan mergedPlan(const std::vector<RuleBreach>& breaches,
                                          const std::optional<BudgetStatus>& budget);

/// After the guard has stepped in. `window` is the label of the crossed rule's window.
[[nodiscard]] NotificationPlan enforcedPlan(std::string_view app, std::uint64_t bytes, std::string_view window,
                                            EnforcementAction action);

/// When an application that was quit `count` times and came back is paused instead.
[[nodiscard]] NotificationPlan loopBreakerPlan(std::string_view app, std::size_t count, std::uint64_t wastedBytes,
                                               const std::optional<BudgetStatus>& budget);

/// For an application that is to be blocked always. `seededByPreset` tells that it came onto that list with the
/// developers' preset.
[[nodiscard]] NotificationPlan blockedAppPlan(std::string_view app, std::uint64_t bytes,
                                              const std::optional<BudgetStatus>& budget, bool seededByPreset,
                                              std::size_t asksInLastHour);

} // namespace quellon::NotificationComposer
