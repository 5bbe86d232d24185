#include "QuellonCore/Enforcement/Enforcer.h"

#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// 501 and 502 are the user's, 600 is somebody else's, 700 has ended.
class EnforcerTest : public ::testing::Test {
protected:
    ScriptedHost world;
    Host host = world.host();

    EnforcerTest()
    {
        world.process(501, {.start = "Sun Mar 15 09:00:00 2026"});
        world.process(502, {.start = "Sun Mar 15 09:00:01 2026"});
        world.process(600, {.start = "Sun Mar 15 08:00:00 2026", .denied = true});
        world.process(700, {.start = "Sun Mar 15 07:00:00 2026", .alive = false});
    }

    Enforcer::Processes processes(const std::vector<std::int32_t>& pids) const
    {
        Enforcer::Processes result;
        for (const std::int32_t pid : pids) result.push_back(host.processes.reference(pid));
        return result;
    }
};

TEST_F(EnforcerTest, eachActionSendsItsSignalInOrder)
{
    struct Case {
        EnforcementAction action;
        ProcessSignal signal;
    };
    constexpr Case cases[] = {
        {EnforcementAction::suspend, ProcessSignal::stop},
        {EnforcementAction::terminate, ProcessSignal::terminate},
        {EnforcementAction::kill, ProcessSignal::kill},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(enforcementActions.raw(c.action));
        world.process(501, {});
        world.process(502, {});
        world.clearSignals();
        EXPECT_THAT(Enforcer::pids(Enforcer::apply(host, c.action, {502, 501})), ElementsAre(502, 501));
        EXPECT_THAT(world.signals(), ElementsAre(SentSignal{502, c.signal, true}, SentSignal{501, c.signal, true}));
    }
}

TEST_F(EnforcerTest, warnSendsNothing)
{
    EXPECT_THAT(Enforcer::pids(Enforcer::apply(host, EnforcementAction::warn, {501, 502})), IsEmpty());
    EXPECT_THAT(world.signals(), IsEmpty());
}

TEST_F(EnforcerTest, whoCannotBeReachedIsLeftOutAndTheOthersGoOn)
{
    EXPECT_THAT(Enforcer::pids(Enforcer::apply(host, EnforcementAction::suspend, {501, 999, 700, 600, 502})),
                ElementsAre(501, 502));
    EXPECT_TRUE(world.process(501).stopped);
    EXPECT_FALSE(world.process(600).stopped);
    EXPECT_TRUE(world.process(502).stopped);
}

TEST_F(EnforcerTest, resumeAsksNobodyWhoTheyAre)
{
    EXPECT_THAT(Enforcer::resume(host, {502, 700, 501}), ElementsAre(502, 501));
    EXPECT_TRUE(world.runs().empty());
    EXPECT_EQ(world.signals().front(), (SentSignal{502, ProcessSignal::continue_, true}));
}

TEST_F(EnforcerTest, isAlive)
{
    struct Case {
        const char* name;
        std::int32_t pid;
        bool isAlive;
    };
    constexpr Case cases[] = {
        {"the user's own", 501, true}, {"another user's", 600, true}, {"ended", 700, false},
        {"never was", 999, false},     {"no process: 0", 0, false},   {"no process: a group", -501, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Enforcer::isAlive(host, c.pid), c.isAlive);
    }
    EXPECT_THAT(world.signals(), IsEmpty());
}

TEST_F(EnforcerTest, startTimeIsTrimmed)
{
    struct Case {
        const char* name;
        std::optional<std::string> output;
        std::optional<std::string> expected;
    };
    const Case cases[] = {
        {"a text", " \t Sun Mar 15 09:00:00 2026 \n", "Sun Mar 15 09:00:00 2026"},
        {"nothing printed", "", std::nullopt},
        {"white space only", " \r\n\t ", std::nullopt},
        {"the tool fails", std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.tool(ToolRole::startTime).answers([&](const auto&) { return c.output; });
        EXPECT_EQ(Enforcer::startTime(host, 501), c.expected);
    }
    world.tool(ToolRole::startTime).prints("late").takes(4s);
    EXPECT_EQ(Enforcer::startTime(host, 501), "late");
    world.tool(ToolRole::startTime).takes(4.001s);
    EXPECT_EQ(Enforcer::startTime(host, 501), std::nullopt);
}

TEST_F(EnforcerTest, startTimeAsksThePlatformsTool)
{
    (void)Enforcer::startTime(host, 501);
    EXPECT_EQ(world.runs().back().command, (Command{"/bin/ps", {"-o", "lstart=", "-p", "501"}}));
    world.platform(Platform::linux());
    (void)Enforcer::startTime(world.host(), 501);
    EXPECT_EQ(world.runs().back().command, (Command{"quellon-probe", {"start", "501"}}));
}

TEST_F(EnforcerTest, identitiesStandBesideTheProcesses)
{
    EXPECT_THAT(Enforcer::identities(host, {502, 999, 501}),
                ElementsAre("Sun Mar 15 09:00:01 2026", "", "Sun Mar 15 09:00:00 2026"));
}

TEST_F(EnforcerTest, matchesIdentity)
{
    struct Case {
        const char* name;
        std::int32_t pid;
        std::optional<std::string> expected;
        bool matches;
        std::size_t runs;
    };
    const Case cases[] = {
        {"nothing expected, of a dead process", 700, std::nullopt, true, 0},
        {"an empty text expected, of a dead process", 700, "", true, 0},
        {"the same", 501, "Sun Mar 15 09:00:00 2026", true, 1},
        {"another start", 501, "Sun Mar 15 09:00:01 2026", false, 1},
        {"the process is gone", 700, "Sun Mar 15 07:00:00 2026", false, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.clearRuns();
        EXPECT_EQ(Enforcer::matchesIdentity(host, c.pid, c.expected), c.matches);
        EXPECT_EQ(world.runs().size(), c.runs);
    }
}

TEST_F(EnforcerTest, escalationTargets)
{
    struct Case {
        const char* name;
        std::vector<std::int32_t> pids;
        std::vector<std::string> identities;
        std::vector<std::int32_t> expected;
    };
    const Case cases[] = {
        {"still the same", {501, 502}, {"Sun Mar 15 09:00:00 2026", "Sun Mar 15 09:00:01 2026"}, {501, 502}},
        {"another process has the id now", {501}, {"Sat Mar 14 09:00:00 2026"}, {}},
        {"it has ended", {700, 502}, {"Sun Mar 15 07:00:00 2026", "Sun Mar 15 09:00:01 2026"}, {502}},
        {"more processes than identities", {501, 502}, {"Sun Mar 15 09:00:00 2026"}, {501}},
        {"more identities than processes", {501}, {"", ""}, {501}},
        {"an identity that was never captured, of a live process", {501}, {""}, {501}},
        {"an identity that was never captured, of a dead process", {700}, {""}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Enforcer::pids(Enforcer::escalationTargets(host, processes(c.pids), c.identities)), c.expected);
    }
    world.tool(ToolRole::startTime).fails();
    EXPECT_THAT(Enforcer::escalationTargets(host, processes({501}), {"Sun Mar 15 09:00:00 2026"}), IsEmpty());
}

TEST_F(EnforcerTest, escalationEndsAfterTheGraceThoseThatDidNotObey)
{
    world.process(501).obeysTerminate = false;
    auto acted = Enforcer::apply(host, EnforcementAction::terminate, {501, 502});
    Enforcer::scheduleTerminateEscalation(host, std::move(acted),
                                          {"Sun Mar 15 09:00:00 2026", "Sun Mar 15 09:00:01 2026"});
    world.clearSignals();
    world.advance(4.999s);
    EXPECT_TRUE(world.process(501).alive);
    EXPECT_THAT(world.signals(), IsEmpty());
    world.advance(0.001s);
    EXPECT_THAT(world.signals(), ElementsAre(SentSignal{501, ProcessSignal::kill, true}));
    EXPECT_FALSE(world.process(501).alive);
}

TEST_F(EnforcerTest, escalationSparesAStrangerWithTheSameID)
{
    Enforcer::scheduleTerminateEscalation(host, processes({501}), {"Sun Mar 15 09:00:00 2026"});
    world.process(501, {.start = "Sun Mar 15 10:00:02 2026"});
    world.advance(10s);
    EXPECT_THAT(world.signals(), IsEmpty());
}

TEST_F(EnforcerTest, escalationSparesAStrangerAlsoWhereNoStartTimeCouldBeRead)
{
    world.holdReferences();
    auto acted = Enforcer::apply(host, EnforcementAction::terminate, {501});
    Enforcer::scheduleTerminateEscalation(host, std::move(acted), {""});
    world.process(501, {.start = "Sun Mar 15 10:00:02 2026"});
    world.clearSignals();
    world.advance(10s);
    EXPECT_THAT(world.signals(), IsEmpty());
    EXPECT_TRUE(world.process(501).alive);
}

TEST_F(EnforcerTest, aLifelineIsForAFreezeAlone)
{
    std::vector<std::vector<std::int32_t>> asked;
    world.lifelines([&](const std::vector<std::int32_t>& pids) {
        asked.push_back(pids);
        return nullptr;
    });
    for (const auto action : {EnforcementAction::warn, EnforcementAction::terminate, EnforcementAction::kill}) {
        EXPECT_EQ(Enforcer::lifeline(host, action, {501}), nullptr);
    }
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_EQ(Enforcer::lifeline(host, EnforcementAction::suspend, {502, 501}), nullptr);
    EXPECT_THAT(asked, ElementsAre(ElementsAre(502, 501)));
}

TEST_F(EnforcerTest, escalationGoesThroughTheGivenScheduler)
{
    std::vector<Seconds> delays;
    RunLoop::Work work;
    const auto keep = [&](Seconds delay, RunLoop::Work given) {
        delays.push_back(delay);
        work = std::move(given);
    };
    Enforcer::scheduleTerminateEscalation(host, {}, {}, 5s, keep);
    EXPECT_THAT(delays, IsEmpty());
    Enforcer::scheduleTerminateEscalation(host, processes({501}), {""}, 2.5s, keep);
    EXPECT_THAT(delays, ElementsAre(2.5s));
    work();
    EXPECT_THAT(world.signals(), ElementsAre(SentSignal{501, ProcessSignal::kill, true}));
}

TEST_F(EnforcerTest, autoResumeStartsOneShell)
{
    EXPECT_TRUE(Enforcer::scheduleAutoResume(host, {501, 502}));
    EXPECT_THAT(
        world.spawned(),
        ElementsAre(Command{"/bin/sh", {"-c", "sleep 1800; kill -CONT 501 2>/dev/null; kill -CONT 502 2>/dev/null"}}));
    EXPECT_TRUE(Enforcer::scheduleAutoResume(host, {501}, 10));
    EXPECT_EQ(world.spawned().back().arguments.back(), "sleep 10; kill -CONT 501 2>/dev/null");
}

TEST_F(EnforcerTest, autoResumeOfNobodyOrWithoutAShell)
{
    EXPECT_FALSE(Enforcer::scheduleAutoResume(host, {}));
    EXPECT_THAT(world.spawned(), IsEmpty());
    world.canSpawn(false);
    EXPECT_FALSE(Enforcer::scheduleAutoResume(host, {501}));
}

TEST_F(EnforcerTest, selfPIDChain)
{
    EXPECT_THAT(Enforcer::selfPIDChain(host), ElementsAre(850, 900));
    EXPECT_EQ(world.runs().front().command, (Command{"/bin/ps", {"-o", "ppid=", "-p", "900"}}));
    EXPECT_EQ(world.runs(ToolRole::parent), 2U);

    world.parents({1});
    EXPECT_THAT(Enforcer::selfPIDChain(host), ElementsAre(900));

    std::vector<std::int32_t> many;
    for (std::int32_t pid = 899; pid > 870; --pid) many.push_back(pid);
    world.parents(many);
    EXPECT_EQ(Enforcer::selfPIDChain(host).size(), 12U);
    EXPECT_TRUE(Enforcer::selfPIDChain(host).contains(889));
    EXPECT_FALSE(Enforcer::selfPIDChain(host).contains(888));
}

TEST_F(EnforcerTest, selfPIDChainEndsAtAnAnswerThatIsNoNumber)
{
    struct Case {
        const char* name;
        std::optional<std::string> answer;
        std::set<std::int32_t> chain;
    };
    const Case cases[] = {
        {"nothing", std::nullopt, {900}}, {"an empty line", "\n", {900}},       {"no number", "parent\n", {900}},
        {"two numbers", "1 2\n", {900}},  {"too large", "2147483648\n", {900}}, {"blanks around it", "  1 \n", {900}},
        {"itself", "900\n", {900}},       {"negative", "-5\n", {900}},          {"another", "850\n", {850, 900}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.tool(ToolRole::parent).answers([&](const auto&) { return c.answer; });
        EXPECT_EQ(Enforcer::selfPIDChain(host), c.chain);
    }
}

} // namespace
} // namespace quellon
