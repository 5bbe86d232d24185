#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What an engine does at its start with this "suspended.json".
struct Recovery : ActingWorld {
    Lines lines;
    explicit Recovery(const std::vector<SuspendedApp>& left) : Recovery(dumpJson(toJson(left)).value()) {}
    explicit Recovery(std::string text)
    {
        host.process(501).stopped = true;
        host.process(502).stopped = true;
        host.files().set(file(Persistence::suspendedFile), std::move(text));
        settings.onboarded = true;
        Persistence{host.host()}.save(settings, Persistence::settingsFile);
        options.autoStart = false;
        static_cast<void>(trace.take());
        engine.emplace(host.host(), options);
        lines = trace.take();
    }
};

TEST(EngineRecovery, thawsWhoIsStillTheSame)
{
    Recovery world{{SuspendedApp{"Player", {502, 501}, {"start of 502", "start of 501"}, 1, {}}}};
    EXPECT_THAT(world.lines,
                ElementsAre("start time of 502", "start time of 501", "CONT 502", "CONT 501", "remove suspended.json",
                            "warning: Recovered from an unclean shutdown — resumed Player"));
    EXPECT_FALSE(world.isStopped(501));
    EXPECT_FALSE(world.isStopped(502));
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
}

TEST(EngineRecovery, aStrangerWithTheIDGetsNoSignalAndIsNotNamed)
{
    Recovery world{{SuspendedApp{"Player", {501}, {"another start"}, 1, {}},
                    SuspendedApp{"Helper", {502}, {"start of 502"}, 1, {}}}};
    EXPECT_THAT(world.lines, ElementsAre("start time of 501", "start time of 502", "CONT 502", "remove suspended.json",
                                         "warning: Recovered from an unclean shutdown — resumed Helper"));
}

TEST(EngineRecovery, onlyDeadProcessesLeaveNoLine)
{
    Recovery world{{SuspendedApp{"Player", {777, 778}, {"a", "b"}, 1, {}}}};
    EXPECT_THAT(world.lines, ElementsAre("remove suspended.json"));
}

TEST(EngineRecovery, namesAreJoined)
{
    Recovery world{{SuspendedApp{"Player", {501}, {}, 1, {}}, SuspendedApp{"Helper", {502}, {""}, 1, {}}}};
    EXPECT_THAT(world.lines, ElementsAre("CONT 501", "CONT 502", "remove suspended.json",
                                         "warning: Recovered from an unclean shutdown — resumed Player, Helper"))
        << "without a start time being alive is enough";
}

TEST(EngineRecovery, whoCanNotBeReachedIsNamedAllTheSame)
{
    ActingWorld world;
    world.host.process(501).denied = true;
    Persistence{world.host.host()}.save(std::vector{SuspendedApp{"Player", {501}, {}, 1, {}}},
                                        Persistence::suspendedFile);
    world.options.autoStart = false;
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_EQ(messages(*world.engine), ActingWorld::Lines{"Recovered from an unclean shutdown — resumed Player"});
}

TEST(EngineRecovery, aStartTimeThatCanNotBeReadNowIsARefusal)
{
    ActingWorld world;
    world.host.tool(ToolRole::startTime).fails();
    Persistence{world.host.host()}.save(std::vector{SuspendedApp{"Player", {501}, {"start of 501"}, 1, {}}},
                                        Persistence::suspendedFile);
    world.options.autoStart = false;
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_THAT(world.host.signals(), IsEmpty());
    EXPECT_FALSE(world.savedSuspended());
}

TEST(EngineRecovery, filesThatAreLeftAsTheyAre)
{
    for (const char* text : {"[]", "", "{", "{}", R"([{"app":"Player"}])", R"([{"pids":[501],"bytes":1,"at":1}])",
                             R"([{"app":"Player","pids":[99999999999],"bytes":1,"at":1}])"}) {
        SCOPED_TRACE(text);
        Recovery world{std::string{text}};
        EXPECT_THAT(world.lines, IsEmpty());
        EXPECT_EQ(world.host.files().get(world.file(Persistence::suspendedFile)), text);
    }
}

TEST(EngineRecovery, idsThatAreNoProcessGetNoSignal)
{
    Recovery world{{SuspendedApp{"Player", {0, -1, -501}, {}, 1, {}}}};
    EXPECT_THAT(world.lines, ElementsAre("remove suspended.json"));
}

TEST(EngineRecovery, comesBeforeTheStart)
{
    ActingWorld world;
    Persistence{world.host.host()}.save(std::vector{SuspendedApp{"Player", {501}, {}, 1, {}}},
                                        Persistence::suspendedFile);
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_EQ(messages(*world.engine).front(), "Recovered from an unclean shutdown — resumed Player");
    EXPECT_EQ(messages(*world.engine).back(), "Quellon Pro started · 2 rules");
}

} // namespace
} // namespace quellon
