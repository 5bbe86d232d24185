#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::IsEmpty;

constexpr std::string_view stateFiles[] = {Persistence::settingsFile, Persistence::ledgerFile,
                                           Persistence::budgetFile,   Persistence::suspendedFile,
                                           Persistence::livenessFile, Persistence::enforcementHistoryFile};

/// A frozen application, and an engine that starts with one file of this content.
struct DamagedWorld : ActingWorld {
    DamagedWorld(std::string_view name, std::string content)
    {
        host.process(501).stopped = true;
        host.files().set(file(name), std::move(content));
        options.autoStart = false;
        engine.emplace(host.host(), options);
    }
    void expectDefaults(std::string_view name)
    {
        EXPECT_EQ(engine->settings().planGB(), 30.0) << name;
        EXPECT_FALSE(engine->settings().onboarded) << name;
        EXPECT_EQ(engine->budget(), BudgetStore{}) << name;
        EXPECT_EQ(engine->liveness(), LivenessStats{}) << name;
        EXPECT_EQ(engine->enforcementHistory(), EnforcementHistory{}) << name;
        EXPECT_THAT(engine->ledger().snapshot().buckets, IsEmpty()) << name;
        EXPECT_THAT(engine->events(), IsEmpty()) << name;
        EXPECT_THAT(host.signals(), IsEmpty()) << name;
        EXPECT_THAT(trace.take(), IsEmpty()) << name << " stays as it is";
    }
};

TEST(EngineStateFiles, nestedTooDeep)
{
    constexpr std::size_t levels = 100'000;
    for (const std::string_view name : stateFiles) {
        for (const std::string& text : {std::string(levels, '['), std::string(levels, '[') + std::string(levels, ']'),
                                        R"({"buckets":)" + std::string(levels, '[') + std::string(levels, ']') + "}"}) {
            DamagedWorld world{name, text};
            world.expectDefaults(name);
        }
    }
}

TEST(EngineStateFiles, tooLarge)
{
    struct Case {
        std::string_view name;
        const char* content; ///< Valid but for the blanks behind it.
    };
    constexpr Case cases[] = {
        {Persistence::settingsFile, R"({"planGB":7,"onboarded":true})"},
        {Persistence::budgetFile, R"({"planGB":7})"},
        {Persistence::livenessFile, R"({"triggerCount":7})"},
        {Persistence::enforcementHistoryFile, R"({"lastNoticeAt":{"a":1}})"},
        {Persistence::suspendedFile, R"([{"app":"Player","pids":[501],"bytes":1,"at":1}])"},
    };
    for (const auto& c : cases) {
        std::string text = c.content;
        text.resize(Persistence::largestFile + 1, ' ');
        DamagedWorld world{c.name, std::move(text)};
        world.expectDefaults(c.name);
    }
    DamagedWorld world{Persistence::ledgerFile, std::string(FileStore::largestFile + 1, ' ')};
    world.expectDefaults(Persistence::ledgerFile);
}

TEST(EngineStateFiles, atTheLimitTheyAreRead)
{
    std::string text = R"({"triggerCount":7})";
    text.resize(Persistence::largestFile, ' ');
    const DamagedWorld world{Persistence::livenessFile, text};
    EXPECT_EQ(world.engine->liveness().triggerCount, 7);
}

TEST(EngineStateFiles, theLedgerMayBeLargerThanTheOthers)
{
    ActingWorld world;
    const double at = (world.host.now() - Date{}).count() - 10;
    std::string text = fmt::format(R"({{"buckets":[{{"at":{},"usage":{{"Player":77}},"pids":{{}}}}]}})", at);
    text.resize(Persistence::largestFile + 1, ' ');
    const DamagedWorld next{Persistence::ledgerFile, std::move(text)};
    EXPECT_EQ(next.engine->ledger().snapshot().buckets.size(), 1U);
}

std::vector<SuspendedApp> suspendedList(std::size_t processes)
{
    // In two entries, all of them processes that run.
    SuspendedApp first{"Player", {}, {}, 1, {}};
    SuspendedApp second{"Studio", {}, {}, 1, {}};
    for (std::size_t i = 0; i < processes; ++i) (i % 2 == 0 ? first : second).pids.push_back(501);
    return {first, second};
}

TEST(EngineStateFiles, aSuspendedListOfMoreProcessesThanWereEverFrozenIsRefused)
{
    const DamagedWorld most{Persistence::suspendedFile, *dumpJson(toJson(suspendedList(GuardEngine::mostOrphans)))};
    EXPECT_EQ(most.host.signals().size(), GuardEngine::mostOrphans);
    const std::string text = *dumpJson(toJson(suspendedList(GuardEngine::mostOrphans + 1)));
    DamagedWorld more{Persistence::suspendedFile, text};
    more.expectDefaults(Persistence::suspendedFile);
    EXPECT_EQ(more.host.runs(ToolRole::startTime), 0U);
    EXPECT_EQ(more.host.files().get(more.file(Persistence::suspendedFile)), text);
}

TEST(EngineStateFiles, aSuspendedListOfOtherPeoplesProcessesSignalsNobody)
{
    ActingWorld world;
    SuspendedApp entry{"Player", {}, {}, 1, {}};
    for (std::int32_t pid = 1'000; pid < 2'000; ++pid) {
        world.host.process(pid, {.start = "somebody else's", .denied = pid % 2 == 0});
        entry.pids.push_back(pid);
        entry.starts.emplace_back("of another time");
    }
    Persistence{world.host.host()}.save(std::vector{entry}, Persistence::suspendedFile);
    world.options.autoStart = false;
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_THAT(world.host.signals(), IsEmpty());
    EXPECT_THAT(world.engine->events(), IsEmpty());
}

} // namespace
} // namespace quellon
