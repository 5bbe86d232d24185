#pragma once

#include "QuellonCore/Rules/RuleBreach.h"
#include "QuellonCore/Support/Time.h"

#include <optional>
#include <vector>

namespace quellon {

/// Holds breaches back for a few seconds, so that applications which cross their rules within a few ticks of one
/// another give one notice. Owned by the engine; main thread only.
class NotificationBatcher {
public:
    /// A batcher that holds each batch for `window` from its first breach on.
    explicit NotificationBatcher(Seconds window) : window_{window} {}

    /// Adds to the open batch, or opens one, and returns the batch when its time is up. A breach takes the place of one
    /// of the same application with a lower level, and is dropped beside one with an equal or higher level. A batch is
    /// only ever closed by a call, so quiet ticks call with nothing.
    [[nodiscard]] std::optional<std::vector<RuleBreach>> offer(std::vector<RuleBreach> breaches, Date now);

    /// What is pending, without regard to the time. Empties the batcher.
    [[nodiscard]] std::vector<RuleBreach> flush();

    [[nodiscard]] Seconds window() const { return window_; }
    [[nodiscard]] bool isEmpty() const { return pending_.empty(); }
    /// At most one breach an application, in order of first arrival.
    [[nodiscard]] const std::vector<RuleBreach>& pending() const { return pending_; }
    /// When the present batch began; absent when there is none.
    [[nodiscard]] std::optional<Date> firstSeenAt() const { return firstSeenAt_; }

private:
    void add(RuleBreach&& breach);

    Seconds window_;
    std::vector<RuleBreach> pending_;
    std::optional<Date> firstSeenAt_;
};

} // namespace quellon
