#include "QuellonCore/Notifications/NotificationGate.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(NotificationCapability, byItsFlags)
{
    using Text = std::optional<std::string_view>;
    constexpr Text reason = "Warnings can't reach you right now, so automatic action stays disabled.";
    constexpr Text note = "System notifications are off. Warnings still appear on screen.";
    struct Case {
        const char* name;
        NotificationCapability capability;
        bool isBlocked;
        bool isNoted;
    };
    constexpr Case cases[] = {
        {"everything", {true, true, true}, false, false},
        {"only the system's", {true, true, false}, false, false},
        {"alerts switched off", {true, false, true}, false, true},
        {"alerts switched off and no channel of its own", {true, false, false}, true, true},
        {"not authorized", {false, true, true}, false, true},
        {"not authorized and no channel of its own", {false, true, false}, true, true},
        {"only a channel of its own", {false, false, true}, false, true},
        {"nothing", {false, false, false}, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.capability.blockedReason(), c.isBlocked ? reason : std::nullopt);
        EXPECT_EQ(c.capability.systemNotificationNote(), c.isNoted ? note : std::nullopt);
        for (const auto& row : actionLevels.rows) {
            SCOPED_TRACE(row.raw);
            const bool isLowered = row.value == ActionLevel::enforce && c.isBlocked;
            EXPECT_EQ(NotificationGate::effectiveLevel(row.value, c.capability),
                      isLowered ? ActionLevel::ask : row.value);
        }
    }
}

TEST(NotificationCapability, isTrustedUntilItIsKnown)
{
    EXPECT_EQ(NotificationCapability{}, (NotificationCapability{true, true, true}));
}

} // namespace
} // namespace quellon
