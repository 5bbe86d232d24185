#include "QuellonCore/Engine/NotificationActionRouter.h"

#include "ActingWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Apps = std::vector<std::string>;

/// Player with two processes, and Mailer with one; snoozes take 20 minutes.
struct RoutingWorld : ActingWorld {
    RoutingWorld()
    {
        app("Mailer", {601});
        settings.snoozeMinutes = 20;
        begin();
    }

    Lines answer(NotificationAction action, const Apps& apps)
    {
        NotificationActionRouter::perform(action, apps, *engine, [this](SettingsTab tab) { opened.push_back(tab); });
        return trace.take();
    }

    std::vector<SettingsTab> opened;
};

TEST(NotificationActionRouter, everyActionCallsTheEngine)
{
    struct Case {
        const char* name;
        NotificationAction action;
        ActingWorld::Lines effects;
    };
    const ActingWorld::Lines snoozes{"info: Mailer snoozed for 20min", "info: Player snoozed for 20min"};
    const Case cases[] = {
        {"snooze", NotificationAction::snooze, snoozes},
        {"snoozeAll", NotificationAction::snoozeAll, snoozes},
        {"suspend",
         NotificationAction::suspend,
         {"STOP 601", "start time of 601", "spawn sleep 1800; kill -CONT 601 2>/dev/null", "save suspended.json",
          "enforced: Mailer → 暂停（可恢复） (from notification)", "STOP 501", "STOP 502", "start time of 501",
          "start time of 502", "spawn sleep 1800; kill -CONT 501 2>/dev/null; kill -CONT 502 2>/dev/null",
          "save suspended.json", "enforced: Player → 暂停（可恢复） (from notification)"}},
        {"terminate",
         NotificationAction::terminate,
         {"TERM 601", "start time of 601", "enforced: Mailer → 退出 (from notification)", "TERM 501", "TERM 502",
          "start time of 501", "start time of 502", "enforced: Player → 退出 (from notification)"}},
        {"allowlist", NotificationAction::allowlist, {"save settings.json", "save settings.json"}},
        {"view", NotificationAction::view, {}},
        {"allowOnce",
         NotificationAction::allowOnce,
         {"info: Mailer allowed until this transfer finishes", "info: Player allowed until this transfer finishes"}},
        {"muteToday",
         NotificationAction::muteToday,
         {"save settings.json", "info: Mailer muted until midnight — its policy is unchanged", "save settings.json",
          "info: Player muted until midnight — its policy is unchanged"}},
        {"resume, with nothing paused", NotificationAction::resume, {}},
        {"resumeAndSnooze, with nothing paused", NotificationAction::resumeAndSnooze, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RoutingWorld world;
        EXPECT_THAT(world.answer(c.action, {"Mailer", "Player"}), ElementsAreArray(c.effects));
        EXPECT_EQ(world.opened.size(), c.action == NotificationAction::view ? 1U : 0U);
    }
}

TEST(NotificationActionRouter, snoozesAreThoseOfTheSettings)
{
    RoutingWorld world;
    static_cast<void>(world.answer(NotificationAction::snooze, {"Player"}));
    EXPECT_EQ(world.engine->snoozedUntil().at("Player"), world.host.now() + 20min);
}

TEST(NotificationActionRouter, resumeDoesNotSnooze)
{
    RoutingWorld world;
    static_cast<void>(world.answer(NotificationAction::suspend, {"Player"}));
    EXPECT_THAT(world.answer(NotificationAction::resume, {"Player"}),
                ElementsAre("CONT 501", "CONT 502", "save suspended.json", "info: Resumed Player"));
    EXPECT_THAT(world.engine->snoozedUntil(), IsEmpty());
}

TEST(NotificationActionRouter, resumeAndSnooze)
{
    RoutingWorld world;
    static_cast<void>(world.answer(NotificationAction::suspend, {"Player", "Mailer"}));
    EXPECT_THAT(world.answer(NotificationAction::resumeAndSnooze, {"Player"}),
                ElementsAre("CONT 501", "CONT 502", "save suspended.json", "info: Resumed Player · snoozed 20min"));
    EXPECT_EQ(world.engine->snoozedUntil().at("Player"), world.host.now() + 20min);
    EXPECT_TRUE(world.isStopped(601)) << "nobody asked for Mailer";
}

TEST(NotificationActionRouter, holdsAndPolicies)
{
    RoutingWorld world;
    static_cast<void>(world.answer(NotificationAction::allowlist, {"Player"}));
    EXPECT_EQ(world.engine->settings().appPolicies.policy("Player"), AppPolicy::never);
    EXPECT_EQ(world.engine->settings().appPolicies.policy("Mailer"), AppPolicy::global);
    static_cast<void>(world.answer(NotificationAction::allowOnce, {"Player"}));
    EXPECT_TRUE(world.engine->transferWatcher().isAllowing("Player"));
    static_cast<void>(world.answer(NotificationAction::muteToday, {"Player"}));
    EXPECT_EQ(world.engine->muteDeadline("Player", world.host.now()), world.host.now() + 14h);
}

TEST(NotificationActionRouter, whoIsOnTheListOfTheAllowedIsNotTouchedAnyMore)
{
    RoutingWorld world;
    static_cast<void>(world.answer(NotificationAction::allowlist, {"Player"}));
    EXPECT_THAT(world.answer(NotificationAction::terminate, {"Player"}), IsEmpty());
}

TEST(NotificationActionRouter, view)
{
    struct Case {
        const char* name;
        Apps apps;
        std::optional<std::string> detailApp;
        SettingsTab tab;
    };
    const Case cases[] = {
        {"one application: its details", {"Player"}, "Player", SettingsTab::apps},
        {"several: the log, and nobody's details any more", {"Player", "Mailer"}, std::nullopt, SettingsTab::log},
        {"another one", {"Mailer"}, "Mailer", SettingsTab::apps},
        {"none: the log", {}, std::nullopt, SettingsTab::log},
    };
    RoutingWorld world;
    EXPECT_EQ(world.engine->detailApp(), std::nullopt);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.opened.clear();
        EXPECT_THAT(world.answer(NotificationAction::view, c.apps), IsEmpty());
        EXPECT_EQ(world.engine->detailApp(), c.detailApp);
        EXPECT_THAT(world.opened, ElementsAre(c.tab));
    }
    NotificationActionRouter::perform(NotificationAction::view, {"Player"}, *world.engine, nullptr);
    EXPECT_EQ(world.engine->detailApp(), "Player") << "without anybody who could open a window";
}

TEST(NotificationActionRouter, nobodyIsMeant)
{
    for (const auto& row : notificationActions.rows) {
        SCOPED_TRACE(row.raw);
        RoutingWorld world;
        static_cast<void>(world.answer(NotificationAction::suspend, {"Player"}));
        EXPECT_THAT(world.answer(row.value, {}), IsEmpty());
        EXPECT_THAT(
            world.answer(row.value == NotificationAction::view ? row.value : NotificationAction::resume, {"Nobody"}),
            IsEmpty());
    }
}

} // namespace
} // namespace quellon
