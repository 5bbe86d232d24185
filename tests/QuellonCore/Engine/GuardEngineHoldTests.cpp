#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// The settings that the file holds now.
std::optional<GuardSettings> savedSettings(ActingWorld& world)
{
    CountedIdentifiers ids;
    return Persistence{world.host.host()}.load(Persistence::settingsFile,
                                               [&ids](const Json& json) { return GuardSettings::fromJson(json, ids); });
}

TEST(EngineHold, anyOfTheThreeHoldsTheRulesAndTheAsks)
{
    struct Case {
        const char* name;
        void (*hold)(GuardEngine&, Date now);
    };
    constexpr Case cases[] = {
        {"snooze", [](GuardEngine& engine, Date) { engine.snooze("Player", 15.0); }},
        {"mute", [](GuardEngine& engine, Date now) { engine.muteAsks("Player", now); }},
        {"allowance", [](GuardEngine& engine, Date now) { engine.allowUntilTransferEnds("Player", now); }},
    };
    for (const auto& c : cases) {
        for (const AppPolicy policy : {AppPolicy::global, AppPolicy::always}) {
            SCOPED_TRACE(c.name);
            ActingWorld world;
            world.settings.setPolicy(policy, "Player");
            world.begin();
            EXPECT_FALSE(world.engine->isHeldByUser("Player", world.host.now()));
            c.hold(*world.engine, world.host.now());
            EXPECT_TRUE(world.engine->isHeldByUser("Player", world.host.now()));
            EXPECT_FALSE(world.engine->isHeldByUser("Other", world.host.now()));
            static_cast<void>(world.trace.take());
            world.host.tool(ToolRole::netstat).prints(EngineWorld::counterText("en0", 50'000, 700));
            EXPECT_THAT(world.roundWith(501, 2 * mebibyte), IsEmpty()) << "without any trace";
            EXPECT_THAT(world.engine->cooldown(), IsEmpty());
            EXPECT_EQ(world.engine->totalBytes("Player", 60s, world.host.now()), 2 * mebibyte) << "the ledger goes on";
            EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 45'000U) << "the budget goes on";
        }
    }
}

TEST(EngineHold, isOverAtItsDate)
{
    ActingWorld world;
    world.begin();
    const Date now = world.host.now();
    world.engine->snooze("Player", 1.0);
    EXPECT_TRUE(world.engine->isHeldByUser("Player", now + 59s));
    EXPECT_FALSE(world.engine->isHeldByUser("Player", now + 60s));
    const Date midnight = world.engine->muteAsks("Player", now);
    EXPECT_TRUE(world.engine->isHeldByUser("Player", midnight - 1s));
    EXPECT_FALSE(world.engine->isHeldByUser("Player", midnight));
}

TEST(EngineHold, aSnoozeThatIsOverIsDroppedByTheNextRound)
{
    ActingWorld world;
    world.begin();
    world.engine->snooze("Player", 0.25); // 15 s
    static_cast<void>(world.trace.take());
    world.rounds(2);
    EXPECT_TRUE(world.engine->snoozedUntil().contains("Player"));
    EXPECT_THAT(world.round(), IsEmpty());
    EXPECT_THAT(world.engine->snoozedUntil(), IsEmpty());
}

TEST(EngineHold, anAllowanceIsWatchedAlsoWhileTheAppIsSnoozed)
{
    ActingWorld world;
    world.settings.setPolicy(AppPolicy::always, "Player");
    world.begin();
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    world.engine->snooze("Player", 60.0);
    static_cast<void>(world.trace.take());
    EXPECT_THAT(withoutCadence(world.rounds(25)),
                ElementsAre("info: Player finished its transfer — watching it again"));
}

TEST(EngineHold, anAllowanceReplacesAnOlderOne)
{
    ActingWorld world;
    world.settings.setPolicy(AppPolicy::always, "Player");
    world.begin();
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    world.rounds(24); // quiet for 115 s
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    EXPECT_THAT(withoutCadence(world.rounds(24)),
                ElementsAre("info: Player allowed until this transfer finishes")); // quiet anew
    EXPECT_THAT(withoutCadence(world.round()), ElementsAre("info: Player finished its transfer — watching it again"));
}

TEST(EngineHold, resumeWatching)
{
    ActingWorld world;
    world.begin();
    world.engine->resumeWatching("Player");
    EXPECT_THAT(world.trace.take(), IsEmpty()) << "no allowance, no word";
    world.engine->allowUntilTransferEnds("Player", world.host.now());
    world.engine->resumeWatching("Player");
    EXPECT_THAT(world.trace.take(), ElementsAre("info: Player allowed until this transfer finishes",
                                                "info: Player is being watched again"));
    EXPECT_FALSE(world.engine->transferWatcher().isAllowing("Player"));
}

TEST(EngineMute, untilTheComingMidnight)
{
    ActingWorld world;
    world.host.setZone("America/New_York");
    world.begin();
    const Date now = world.host.now(); // 06:00 there
    const Date midnight = world.engine->muteAsks("Player", now);
    EXPECT_EQ(midnight, now + 18h);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("save settings.json", "info: Player muted until midnight — its policy is unchanged"));
    EXPECT_EQ(world.engine->muteDeadline("Player", now), midnight);
    EXPECT_EQ(world.engine->muteDeadline("Player", midnight), std::nullopt);
    EXPECT_THAT(world.engine->settings().mutedAsksUntil, ElementsAre(Pair("Player", midnight)));
    EXPECT_EQ(savedSettings(world), world.engine->settings());
}

TEST(EngineMute, setAMinuteBeforeMidnightGoesWithTheNextRoundBehindIt)
{
    ActingWorld world;
    world.host.setClock(world.host.now() + 14h - 61s); // 23:58:59
    world.begin();
    world.host.advance(1s);
    world.engine->muteAsks("Player", world.host.now()); // its assignment restarts the timer
    static_cast<void>(world.trace.take());
    EXPECT_THAT(withoutCadence(world.rounds(11)), IsEmpty()) << "23:59:55";
    EXPECT_TRUE(world.engine->settings().mutedAsksUntil.contains("Player"));
    EXPECT_THAT(withoutCadence(world.round()), ElementsAre("save settings.json")) << "at midnight";
    EXPECT_THAT(world.engine->settings().mutedAsksUntil, IsEmpty());
    EXPECT_THAT(withoutCadence(world.rounds(3)), IsEmpty()) << "nothing to drop, nothing to save";
}

TEST(EngineMute, outlivesARestart)
{
    ActingWorld world;
    world.begin();
    const Date midnight = world.engine->muteAsks("Player", world.host.now());
    world.engine.reset();
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_EQ(world.engine->muteDeadline("Player", world.host.now()), midnight);
    EXPECT_TRUE(world.engine->isHeldByUser("Player", world.host.now()));
}

TEST(EngineMute, unmute)
{
    ActingWorld world;
    world.begin();
    world.engine->unmuteAsks("Player");
    EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json")) << "no word, but the settings are taken over";
    world.engine->muteAsks("Player", world.host.now());
    static_cast<void>(world.trace.take());
    world.engine->unmuteAsks("Player");
    EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json", "info: Player will be asked about again"));
    EXPECT_FALSE(world.engine->isHeldByUser("Player", world.host.now()));
}

TEST(EngineMute, aMuteThatIsOverIsAnEntryStill)
{
    ActingWorld world;
    world.begin();
    const Date midnight = world.engine->muteAsks("Player", world.host.now());
    EXPECT_EQ(world.engine->muteDeadline("Player", midnight + 1s), std::nullopt);
    EXPECT_TRUE(world.engine->settings().mutedAsksUntil.contains("Player")) << "a question removes nothing";
}

TEST(EngineSummary, ofAnAppThatNobodyHasSeen)
{
    ActingWorld world;
    world.begin();
    EXPECT_EQ(world.engine->actionSummary("Nobody", world.host.now()), AppActionSummary{});
}

TEST(EngineSummary, gathersWhatIsKnown)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    const Date frozen = world.host.now();
    world.engine->snooze("Player", 1.0);
    world.engine->allowUntilTransferEnds("Player", frozen);
    const Date midnight = world.engine->muteAsks("Player", frozen);
    AppActionSummary expected;
    expected.enforcementCount = 1;
    expected.wastedBytesFloor = 2 * mebibyte;
    expected.lastRecord = world.engine->enforcementHistory().records.back();
    expected.snoozedUntil = frozen + 60s;
    expected.isSuspended = true;
    expected.allowedUntilTransferEnds = true;
    expected.mutedUntil = midnight;
    EXPECT_EQ(world.engine->actionSummary("Player", frozen), expected);
    EXPECT_EQ(world.engine->actionSummary("Player", frozen + 90s).snoozedUntil, frozen + 60s)
        << "without a look at the date";
}

TEST(EngineSummary, asksAndTheLoop)
{
    ActingWorld world;
    world.settings.setPolicy(AppPolicy::always, "Player");
    const Date now = world.host.now();
    EnforcementHistory history;
    const auto add = [&](std::uint64_t bytes, EnforcementHistory::Kind kind) {
        history.records.push_back({"Player", now, bytes, std::nullopt, std::nullopt, std::nullopt, kind});
    };
    add(1, EnforcementHistory::Kind::enforced);
    add(10, EnforcementHistory::Kind::asked);
    add(100, EnforcementHistory::Kind::enforced);
    add(1'000, EnforcementHistory::Kind::asked);
    Persistence{world.host.host()}.save(history, Persistence::enforcementHistoryFile);
    world.begin();
    const auto summary = world.engine->actionSummary("Player", now);
    EXPECT_EQ(summary.policy, AppPolicy::always);
    EXPECT_EQ(summary.enforcementCount, 2U);
    EXPECT_EQ(summary.wastedBytesFloor, 101U);
    EXPECT_EQ(summary.askCount, 2U);
    EXPECT_EQ(summary.askedBytesFloor, 1'010U);
    EXPECT_EQ(summary.lastRecord->bytes, 100U);
    EXPECT_TRUE(summary.loopBreakerActive);
}

TEST(EngineSummary, theReasonOfASilentRecord)
{
    ActingWorld world;
    world.settings.setPolicy(AppPolicy::never, "Player");
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    const auto summary = world.engine->actionSummary("Player", world.host.now());
    EXPECT_EQ(summary.protectedReason, "set to never limit");
    EXPECT_EQ(summary.policy, AppPolicy::never);
}

TEST(EngineSummary, recentlySeenApps)
{
    ActingWorld world;
    world.settings.rules()[0].enabled = false;
    world.app("Studio", {601});
    world.begin();
    world.moves(601, 2'000);
    world.roundWith(501, 1'000);
    world.rounds(60); // beyond every rule, within the retention
    const auto seen = world.engine->recentlySeenApps(9);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].app, "Studio");
    EXPECT_EQ(seen[1], (AppUsage{"Player", 1'000, {501}}));
    EXPECT_EQ(world.engine->recentlySeenApps(1).size(), 1U);
    EXPECT_THAT(world.engine->recentlySeenApps(0), IsEmpty());
}

} // namespace
} // namespace quellon
