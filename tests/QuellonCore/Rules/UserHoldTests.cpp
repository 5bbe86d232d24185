#include "QuellonCore/Rules/UserHold.h"

#include <gtest/gtest.h>

#include <optional>

namespace quellon {
namespace {

constexpr Date start{Seconds{800'000'000.0}};

Date after(double seconds)
{
    return start + Seconds{seconds};
}

TEST(UserHold, isHeld)
{
    struct Case {
        const char* name;
        std::optional<Date> snoozedUntil;
        std::optional<Date> mutedUntil;
        bool allowed;
        bool held;
    };
    const Case cases[] = {
        {"nothing", {}, {}, false, false},
        {"allowed", {}, {}, true, true},
        {"snoozed", after(0.1), {}, false, true},
        {"a snooze that ends now", start, {}, false, false},
        {"a snooze that has ended", after(-1), {}, false, false},
        {"muted", {}, after(0.1), false, true},
        {"a mute that ends now", {}, start, false, false},
        {"a mute that has ended", {}, after(-1), false, false},
        {"a snooze that has ended, muted", after(-1), after(1), false, true},
        {"both have ended, allowed", after(-1), after(-1), true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(UserHold::isHeld(c.snoozedUntil, c.mutedUntil, c.allowed, start), c.held);
    }
}

} // namespace
} // namespace quellon
