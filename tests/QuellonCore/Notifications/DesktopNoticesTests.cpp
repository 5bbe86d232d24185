#include "QuellonCore/Notifications/DesktopNotices.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(DesktopNotices, noTray)
{
    const auto plan = DesktopNotices::noTray();
    EXPECT_EQ(plan.style, NotificationStyle::transient);
    EXPECT_EQ(plan.title, "Quellon is running");
    EXPECT_EQ(plan.subtitle, "");
    EXPECT_EQ(plan.body, "This desktop shows no tray icons. To open Quellon's panel, start Quellon again.");
    EXPECT_TRUE(plan.actions.empty());
    EXPECT_TRUE(plan.apps.empty());
}

TEST(DesktopNotices, noNetworkSettings)
{
    const auto plan = DesktopNotices::noNetworkSettings();
    EXPECT_EQ(plan.style, NotificationStyle::transient);
    EXPECT_EQ(plan.title, "No network settings found");
    EXPECT_EQ(plan.body, "Quellon knows no program for network settings on this desktop. Open the desktop's own and "
                         "follow the steps in Quellon's panel.");
    EXPECT_TRUE(plan.actions.empty());
    EXPECT_TRUE(plan.apps.empty());
}

} // namespace
} // namespace quellon
