#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::uint64_t floorBytes = 256 * 1024;

/// The user always blocks Player, and no rule says anything.
struct AskingWorld : ActingWorld {
    AskingWorld()
    {
        settings.rules()[0].enabled = false;
        settings.setPolicy(AppPolicy::always, "Player");
    }
};

TEST(EngineAsk, anAskDoesEverythingInItsOrder)
{
    AskingWorld world;
    world.begin();
    EXPECT_THAT(world.roundWith(501, mebibyte),
                ElementsAre("save enforcement-history.json",
                            "warning: Player reached for the hotspot (1.0 MB) — set to always block",
                            "notify: Player is reaching for the hotspot"))
        << "no rule is enabled, so there is nothing else";
    const GuardEngine& engine = *world.engine;
    const Date now = world.host.now();
    EXPECT_THAT(engine.cooldown(), ElementsAre(Pair("Player", now + 300s)));
    EXPECT_THAT(engine.enforcementHistory().records,
                ElementsAre(EnforcementHistory::Record{"Player", now, mebibyte, std::nullopt, std::nullopt,
                                                       std::nullopt, EnforcementHistory::Kind::asked}));
    EXPECT_EQ(Persistence{world.host.host()}.load<EnforcementHistory>(Persistence::enforcementHistoryFile),
              engine.enforcementHistory());
    EXPECT_EQ(engine.lastAlert(), (MenuPresentation::AlertBadge{"Player", mebibyte, now, true}));
    EXPECT_EQ(engine.liveness().triggerCount, 1);
    EXPECT_EQ(engine.liveness().lastTriggerAt, now);
    EXPECT_EQ(engine.totalBytes("Player", 60s, now), mebibyte) << "the ledger stays";
    EXPECT_THAT(world.host.signals(), IsEmpty());
    ASSERT_EQ(world.plans.size(), 1U);
    EXPECT_EQ(world.plans[0].style, NotificationStyle::persistent);
    EXPECT_EQ(world.plans[0].subtitle, "1.0 MB so far · you set this app to always block");
    EXPECT_EQ(world.plans[0].body, "0% of your plan used · 30.00 GB left");
    EXPECT_THAT(world.plans[0].actions, ElementsAre(NotificationAction::terminate, NotificationAction::allowOnce,
                                                    NotificationAction::muteToday, NotificationAction::view));
    EXPECT_THAT(world.plans[0].apps, ElementsAre("Player"));
}

TEST(EngineAsk, fromTheFloorOn)
{
    AskingWorld world;
    world.begin();
    EXPECT_THAT(world.roundWith(501, floorBytes - 1), IsEmpty()) << "262143 bytes";
    EXPECT_EQ(world.roundWith(501, 1).back(), "notify: Player is reaching for the hotspot") << "262144 bytes";
}

TEST(EngineAsk, theFloorIsOfTheLastMinute)
{
    AskingWorld world;
    world.settings.rules()[0].windowSeconds = 600s;
    world.begin();
    world.roundWith(501, floorBytes - 1);
    world.rounds(12); // the bytes leave the minute with the next round
    EXPECT_THAT(withoutCadence(world.roundWith(501, 1)), IsEmpty());
}

TEST(EngineAsk, aProtectedAppIsAskedAboutAllTheSame)
{
    AskingWorld world;
    world.process(601, 0, 601, "/usr/bin/ssh");
    world.settings.setPolicy(AppPolicy::always, "ssh");
    world.begin();
    EXPECT_EQ(world.roundWith(601, mebibyte).back(), "notify: ssh is reaching for the hotspot");
}

TEST(EngineAsk, aBuildThatMayNotStepInAsksWithTheSameButtons)
{
    AskingWorld world;
    world.options.capabilities = Capabilities{.canEnforce = false};
    world.begin();
    world.roundWith(501, mebibyte);
    EXPECT_THAT(world.plans.at(0).actions, testing::Contains(NotificationAction::terminate));
}

TEST(EngineAsk, anAllowanceThatEndsIsToldAndTheSameTurnMayAsk)
{
    AskingWorld world;
    world.begin();
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    EXPECT_THAT(world.trace.take(), ElementsAre("info: Player allowed until this transfer finishes"));
    EXPECT_THAT(world.roundWith(501, mebibyte), IsEmpty()) << "it is moving data, and allowed to";
    const auto setPolicy = [&world](AppPolicy policy) {
        GuardSettings settings = world.engine->settings();
        settings.setPolicy(policy, "Player");
        world.engine->setSettings(settings);
    };
    setPolicy(AppPolicy::global); // for more than two minutes nobody looks at the allowance
    world.rounds(25);
    setPolicy(AppPolicy::always);
    static_cast<void>(world.trace.take());
    EXPECT_THAT(withoutCadence(world.roundWith(501, mebibyte)),
                ElementsAre("info: Player finished its transfer — watching it again", "save enforcement-history.json",
                            "warning: Player reached for the hotspot (1.0 MB) — set to always block",
                            "notify: Player is reaching for the hotspot"));
    EXPECT_FALSE(world.engine->transferWatcher().isAllowing("Player"));
}

TEST(EngineAsk, aQuietAllowanceEndsAfterTwoMinutes)
{
    AskingWorld world;
    world.begin();
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    static_cast<void>(world.trace.take());
    EXPECT_THAT(withoutCadence(world.rounds(24)), IsEmpty()) << "quiet since the first of them";
    EXPECT_THAT(withoutCadence(world.round()), ElementsAre("info: Player finished its transfer — watching it again"));
    world.moves(501, mebibyte);
    EXPECT_EQ(withoutCadence(world.round()).back(), "notify: Player is reaching for the hotspot");
}

TEST(EngineAsk, theCoolDownKeepsARuleFromTheSameBreach)
{
    AskingWorld world;
    world.settings.rules()[0].enabled = true;
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("save enforcement-history.json",
                            "warning: Player reached for the hotspot (2.0 MB) — set to always block",
                            "notify: Player is reaching for the hotspot"));
    EXPECT_THAT(world.host.signals(), IsEmpty());
}

TEST(EngineAsk, anotherInterfaceMakesTheAppQuiet)
{
    AskingWorld world;
    world.begin();
    world.roundWith(501, floorBytes - 1);
    world.joinHotspot("en5");
    EXPECT_THAT(withoutCadence(world.roundWith(501, mebibyte)),
                ElementsAre("info: 📶 en5 · gateway 172.20.10.1 (hotspot range)"));
}

TEST(EngineAsk, atMostOncePerFiveMinutes)
{
    AskingWorld world;
    world.begin();
    world.roundWith(501, mebibyte);
    for (int i = 0; i < 59; ++i) EXPECT_THAT(withoutCadence(world.roundWith(501, mebibyte)), IsEmpty());
    EXPECT_EQ(withoutCadence(world.roundWith(501, mebibyte)).back(), "notify: Player is reaching for the hotspot");
}

TEST(EngineAsk, theFourthAskWithinAnHourTakesTheStrongerWords)
{
    AskingWorld world;
    world.begin();
    for (int ask = 0; ask < 4; ++ask) {
        world.roundWith(501, mebibyte);
        world.rounds(59);
    }
    ASSERT_EQ(world.plans.size(), 4U);
    EXPECT_EQ(world.plans[2].title, "Player is reaching for the hotspot");
    EXPECT_EQ(world.plans[3].title, "Player keeps reaching for the hotspot");
    EXPECT_EQ(world.plans[3].subtitle, "Asked 4 times in the last hour · 1.0 MB in the last minute");
    EXPECT_THAT(world.plans[3].actions, ElementsAre(NotificationAction::allowOnce, NotificationAction::muteToday,
                                                    NotificationAction::terminate, NotificationAction::view));
}

TEST(EngineAsk, asksOfMoreThanAnHourAgoDoNotCount)
{
    AskingWorld world;
    const Date ask = world.host.now() + 5s;
    EnforcementHistory history;
    for (const Seconds age : {Seconds{3'600.5}, Seconds{100}, Seconds{50}}) {
        history.records.push_back(
            {"Player", ask - age, 1, std::nullopt, std::nullopt, std::nullopt, EnforcementHistory::Kind::asked});
    }
    Persistence{world.host.host()}.save(history, Persistence::enforcementHistoryFile);
    world.begin();
    world.roundWith(501, mebibyte);
    EXPECT_EQ(world.plans.at(0).title, "Player is reaching for the hotspot") << "the third one";
}

TEST(EngineAsk, thePresetsAreNamedAsTheReason)
{
    AskingWorld world;
    world.app("Docker", {601});
    world.settings.addDevToolPresets();
    ASSERT_TRUE(world.settings.wasSeededByPreset("Docker"));
    world.begin();
    world.roundWith(601, mebibyte);
    EXPECT_EQ(world.plans.at(0).subtitle, "1.0 MB so far · from the dev tools preset you added");
}

TEST(EngineAsk, withoutNotifyingOnlyTheNotificationIsMissing)
{
    for (const bool hasNotifier : {true, false}) {
        AskingWorld world;
        world.settings.notify = !hasNotifier;
        if (!hasNotifier) world.options.notifier = nullptr;
        world.begin();
        EXPECT_THAT(world.roundWith(501, mebibyte),
                    ElementsAre("save enforcement-history.json",
                                "warning: Player reached for the hotspot (1.0 MB) — set to always block"));
        EXPECT_EQ(world.engine->lastAlert()->app, "Player");
        EXPECT_EQ(world.engine->enforcementHistory().askCount("Player", world.host.now()), 1U);
    }
}

TEST(EngineAsk, appsGoByTheirLabelsAndAreNeverMerged)
{
    AskingWorld world;
    world.app("Archive", {601});
    world.settings.setPolicy(AppPolicy::always, "Archive");
    world.settings.setPolicy(AppPolicy::never, "Other");
    world.begin();
    world.moves(501, mebibyte);
    EXPECT_THAT(world.roundWith(601, mebibyte),
                ElementsAre("save enforcement-history.json",
                            "warning: Archive reached for the hotspot (1.0 MB) — set to always block",
                            "notify: Archive is reaching for the hotspot", "save enforcement-history.json",
                            "warning: Player reached for the hotspot (1.0 MB) — set to always block",
                            "notify: Player is reaching for the hotspot"));
}

TEST(EngineAsk, aHeldAppIsNotAskedAbout)
{
    AskingWorld world;
    world.begin();
    world.engine->snooze("Player", 1.0);
    static_cast<void>(world.trace.take());
    EXPECT_THAT(world.roundWith(501, mebibyte), IsEmpty());
}

} // namespace
} // namespace quellon
