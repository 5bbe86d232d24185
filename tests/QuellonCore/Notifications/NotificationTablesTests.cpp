#include "QuellonCore/Notifications/NotificationAction.h"
#include "QuellonCore/Notifications/NotificationStyle.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string_view>

namespace quellon {
namespace {

TEST(NotificationAction, table)
{
    struct Case {
        NotificationAction action;
        std::string_view raw;
        std::string_view title;
        bool isDestructive;
    };
    constexpr Case cases[] = {
        {NotificationAction::snooze, "snooze", "Snooze 15 min", false},
        {NotificationAction::suspend, "suspend", "Pause", true},
        {NotificationAction::allowlist, "allowlist", "Never limit", false},
        {NotificationAction::view, "view", "Show details", false},
        {NotificationAction::terminate, "terminate", "Stop it", true},
        {NotificationAction::allowOnce, "allowOnce", "Allow until done", false},
        {NotificationAction::muteToday, "muteToday", "Stop asking today", false},
        {NotificationAction::resume, "resume", "Resume", false},
        {NotificationAction::resumeAndSnooze, "resumeAndSnooze", "Resume + snooze", false},
        {NotificationAction::snoozeAll, "snoozeAll", "Snooze all", false},
    };
    const auto& rows = enumTable(NotificationAction{}).rows;
    ASSERT_EQ(rows.size(), std::size(cases));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(cases[i].raw);
        EXPECT_EQ(rows[i].value, cases[i].action);
        EXPECT_EQ(notificationActions.raw(cases[i].action), cases[i].raw);
        EXPECT_EQ(notificationActions.label(cases[i].action), cases[i].title);
        EXPECT_EQ(notificationActions.parse(cases[i].raw), cases[i].action);
        EXPECT_EQ(isDestructive(cases[i].action), cases[i].isDestructive);
    }
    EXPECT_EQ(notificationActions.parse("Snooze"), std::nullopt);
}

TEST(NotificationStyle, table)
{
    const auto& rows = enumTable(NotificationStyle{}).rows;
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].value, NotificationStyle::transient);
    EXPECT_EQ(rows[0].raw, "transient");
    EXPECT_EQ(rows[1].value, NotificationStyle::persistent);
    EXPECT_EQ(rows[1].raw, "persistent");
    for (const auto& row : rows) EXPECT_EQ(notificationStyles.parse(row.raw), row.value);
    EXPECT_EQ(notificationStyles.parse(""), std::nullopt);
}

} // namespace
} // namespace quellon
