#include "EngineWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;

constexpr std::string_view twoPlans = R"({"onboarded":true,"profiles":[)"
                                      R"({"id":"10000000-0000-0000-0000-000000000000","name":"Phone"},)"
                                      R"({"id":"20000000-0000-0000-0000-000000000000","name":"Travel"}],)"
                                      R"("activeProfileID":"20000000-0000-0000-0000-000000000000",)"
                                      R"("direction":"incoming","sampleInterval":2.5})";

/// What settings.json holds, as a next start would read it.
std::optional<GuardSettings> savedSettings(EngineWorld& world)
{
    CountedIdentifiers ids;
    return Persistence{world.host.host()}.load(Persistence::settingsFile,
                                               [&ids](const Json& json) { return GuardSettings::fromJson(json, ids); });
}

TEST(EngineSettings, withoutAFileTheyAreDefaultsAndNothingIsWritten)
{
    EngineWorld world;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(engine.settings().profiles.size(), 1U);
    EXPECT_FALSE(engine.settings().onboarded) << "the first-run flow runs";
    EXPECT_EQ(world.host.files().writes(), 0U);
}

TEST(EngineSettings, aFileThatCanNotBeReadGivesDefaultsAndStays)
{
    for (const char* text : {"", "{", "[]", R"({"direction":"sideways"})", R"({"planGB":1e300})"}) {
        SCOPED_TRACE(text);
        EngineWorld world;
        world.storeSettings(text);
        const GuardEngine engine{world.host, world.stopped()};
        EXPECT_EQ(engine.settings().planGB(), 30.0);
        EXPECT_FALSE(engine.settings().onboarded);
        EXPECT_EQ(world.host.files().get(world.settingsFile), text);
    }
}

TEST(EngineSettings, aFileIsTakenOver)
{
    EngineWorld world;
    world.storeSettings(std::string{twoPlans});
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(engine.settings().activeProfile().name, "Travel");
    EXPECT_EQ(engine.ledger().direction, CountDirection::incoming);
    EXPECT_TRUE(engine.settings().onboarded);
    EXPECT_EQ(world.host.files().writes(), 0U) << "nothing to promote or to migrate";
}

TEST(EngineSettings, whoHasAFileIsPastTheFirstRun)
{
    EngineWorld world;
    world.storeSettings(R"({"profiles":[{"id":"10000000-0000-0000-0000-000000000000"}],"notify":false})");
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_TRUE(engine.settings().onboarded);
    EXPECT_EQ(savedSettings(world), engine.settings()) << "written back";
    EXPECT_EQ(world.host.files().writes(), 1U);
}

TEST(EngineSettings, anEmptyObjectIsMigratedAndPromoted)
{
    EngineWorld world;
    world.storeSettings("{}");
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_TRUE(engine.settings().onboarded);
    EXPECT_FALSE(engine.settings().migratedFromLegacyPlan);
    EXPECT_EQ(engine.settings().activeProfile().budgetFile, "budget.json");
    EXPECT_EQ(savedSettings(world), engine.settings());
}

TEST(EngineSettings, aSinglePlanIsWrittenAnewAtTheFirstStartOnly)
{
    EngineWorld world;
    world.storeSettings(R"({"planGB":10,"billingCycleStartDay":15,"profile":"light","onboarded":true})");
    GuardSettings first;
    {
        const GuardEngine engine{world.host, world.stopped()};
        first = engine.settings();
    }
    EXPECT_FALSE(first.migratedFromLegacyPlan);
    EXPECT_EQ(first.planGB(), 10.0);
    EXPECT_EQ(world.host.files().writes(), 2U) << "the settings are replaced, and then saved";
    const GuardEngine next{world.host, world.stopped()};
    EXPECT_EQ(next.settings(), first) << "the same plan, by its identifier too";
    EXPECT_EQ(world.host.files().writes(), 2U);
}

TEST(EngineSettings, aMigrationThatCanNotBeWrittenHarmsNothing)
{
    EngineWorld world;
    world.storeSettings("{}");
    world.host.files().readOnly();
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_TRUE(engine.settings().onboarded);
    EXPECT_FALSE(engine.settings().migratedFromLegacyPlan);
    EXPECT_EQ(world.host.files().get(world.settingsFile), "{}");
}

TEST(EngineSettings, everyAssignmentIsSaved)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    GuardSettings settings = engine.settings();
    settings.direction = CountDirection::outgoing;
    settings.setPolicy(AppPolicy::never, "Player");
    engine.setSettings(settings);
    EXPECT_EQ(savedSettings(world), settings);
    EXPECT_EQ(engine.ledger().direction, CountDirection::outgoing);
    const auto writes = world.host.files().writes();
    engine.setSettings(settings);
    EXPECT_EQ(world.host.files().writes(), writes + 1) << "an equal value too";
}

TEST(EngineSettings, theLedgerKeepsTheLongestWindowOfTheFile)
{
    const auto bucketsLeft = [](std::string_view rules) {
        EngineWorld world;
        const Date now = world.host.now();
        const UsageLedger::Snapshot saved{{{now - 5'000s, {{"a", 1}}, {}}, {now - 1'000s, {{"a", 1}}, {}}}};
        Persistence{world.host.host()}.save(saved, Persistence::ledgerFile);
        world.storeSettings(fmt::format(R"({{"profiles":[{{"rules":[{}]}}]}})", rules));
        const GuardEngine engine{world.host, world.stopped()};
        return engine.ledger().totals(Seconds{1e6}, now).at(0).bytes;
    };
    EXPECT_EQ(bucketsLeft(""), 1U) << "an hour";
    EXPECT_EQ(bucketsLeft(R"({"id":"10000000-0000-0000-0000-000000000000","windowSeconds":7200,)"
                          R"("thresholdBytes":1,"level":"notify","enabled":true})"),
              2U);
}

TEST(EngineSettings, theStartTellsHowManyRulesAreEnabled)
{
    EngineWorld world;
    GuardSettings settings;
    {
        GuardEngine engine{world.host, world.stopped()};
        settings = engine.settings();
        settings.rules().push_back(settings.rules().front());
        settings.rules()[0].enabled = false;
        settings.rules()[1].enabled = false;
        engine.setSettings(settings);
    }
    const GuardEngine engine{world.host};
    EXPECT_THAT(messages(engine), ElementsAre("Quellon Pro started · 1 rules"));
}

TEST(EngineSettings, noSampleIntervalSetsTheTimerSpinning)
{
    struct Case {
        const char* interval;
        std::int64_t ticks; ///< In ten seconds behind the first one.
    };
    constexpr Case cases[] = {{"0", 100}, {"-5", 100}, {"1e-9", 100}, {"0.5", 20}, {"2.5", 4}, {"1e300", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.interval);
        EngineWorld world;
        world.storeSettings(fmt::format(R"({{"sampleInterval":{}}})", c.interval));
        const GuardEngine engine{world.host};
        world.host.advance(0s);
        EXPECT_EQ(engine.sampling().completedTicks, 1);
        world.host.advance(10s);
        EXPECT_EQ(engine.sampling().completedTicks, 1 + c.ticks);
        EXPECT_EQ(engine.sampling().skippedTicks, 0);
    }
}

} // namespace
} // namespace quellon
