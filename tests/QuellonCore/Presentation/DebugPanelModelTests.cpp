#include "QuellonCore/Presentation/DebugPanelModel.h"

#include "../Engine/ActingWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace quellon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A guard on a hotspot, on isolated state unless told otherwise.
struct DebugWorld : EngineWorld {
    NotificationFeed feed;
    std::vector<NotificationPlan> plans;
    NotificationFeed::Subscription shown{feed, [this](const NotificationPlan& plan) { plans.push_back(plan); }};
    DebugPanelState state;
    std::vector<NetworkLogEntry> network;

    explicit DebugWorld(bool isolated = true)
    {
        if (isolated) host.environment("QUELLON_STATE_DIR", "/isolated");
    }

    [[nodiscard]] DebugSnapshot snapshot(const GuardEngine& engine)
    {
        return DebugSnapshot::capture(engine, "1.2.0", "6.1.0", host.now());
    }
    [[nodiscard]] DebugPanelModel model(const GuardEngine& engine)
    {
        return DebugPanelModel::of(engine, snapshot(engine), network, state);
    }
};

std::vector<std::string> titles(const std::vector<DebugPanelModel::Page>& pages)
{
    std::vector<std::string> result;
    for (const auto& page : pages) result.push_back(page.title);
    return result;
}

TEST(DebugPanelModel, pages)
{
    DebugWorld world;
    for (const char* name : {"ledger.json", "budget-1.json", "settings.json.tmp", "notifications.log", "other.json"})
        world.host.files().set(std::filesystem::path{"/isolated"} / name, "{}");
    const GuardEngine engine{world.host, world.stopped()};
    const auto model = world.model(engine);
    EXPECT_THAT(titles(model.pages),
                ElementsAre("Snapshot", "Sampling", "Network log", "budget-1.json", "ledger.json"));
    EXPECT_EQ(model.page, 0U);
    EXPECT_THAT(model.text, HasSubstr("# Quellon debug snapshot\n"));
    EXPECT_THAT(model.text, HasSubstr("[ISOLATED · explicitOverride]"));
    EXPECT_EQ(model.copy.title, "Copy");
    EXPECT_EQ(model.refresh.title, "Refresh");
    const auto snapshot = world.snapshot(engine);
    EXPECT_EQ(DebugPanelModel::file(snapshot, 2), std::nullopt);
    EXPECT_EQ(DebugPanelModel::file(snapshot, 3), "budget-1.json");
    EXPECT_EQ(DebugPanelModel::file(snapshot, 5), std::nullopt);
}

TEST(DebugPanelModel, aPageThatIsGoneGivesTheLast)
{
    DebugWorld world;
    world.state.page = 40;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(world.model(engine).page, 2U);
}

TEST(DebugPanelModel, aNameKeepsToItsLine)
{
    DebugWorld world;
    const std::string name = "budget-\n\x1B.json";
    world.host.files().set("/isolated/" + name, "{}");
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(world.model(engine).pages.at(3).title, "budget-\uFFFD\uFFFD.json");
    EXPECT_EQ(DebugPanelModel::file(world.snapshot(engine), 3), name);
}

TEST(DebugPanelModel, copied)
{
    DebugWorld world;
    world.state.copied = true;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(world.model(engine).copy.title, "Copied ✓");
}

TEST(DebugPanelModel, samplingTellsTheVerdict)
{
    DebugWorld world;
    world.state.page = 1;
    GuardEngine engine{world.host};
    EXPECT_THAT(world.model(engine).text, HasSubstr("verdict         Not known yet\n"));
    world.playTwoRounds();
    EXPECT_THAT(world.model(engine).text, HasSubstr("verdict         Healthy\n"));
    EXPECT_THAT(world.model(engine).text, HasSubstr("\ncompleted       2\n"));
    EXPECT_THAT(world.model(engine).text, testing::EndsWith("last failure    —"));
}

TEST(DebugPanelModel, networkLog)
{
    DebugWorld world;
    world.state.page = 2;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(world.model(engine).text, "Nothing has been sent in this run.");
    NetworkLogEntry answered;
    answered.at = world.host.now();
    answered.outcome.status = 304;
    answered.responseBytes = 512;
    answered.durationSeconds = Seconds{0.25};
    NetworkLogEntry failed;
    failed.at = world.host.now();
    failed.service = NetworkLogEntry::Service::explain;
    failed.action = NetworkLogEntry::Action::explain;
    world.network = {answered, failed};
    const std::string time = engine.host().clock.calendar().clockTime(world.host.now());
    EXPECT_EQ(world.model(engine).text, time + "  update · manifest  status 304  512 bytes  0.25s\n" + time +
                                            "  explain · explain  transport failure  0 bytes  0.00s");
}

TEST(DebugPanelModel, outlines)
{
    DebugWorld world;
    world.host.files().set("/isolated/settings.json", "{}");
    world.state.page = 3;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(world.model(engine).text, "Reading…");
    world.state.outlines["settings.json"] = "an outline";
    EXPECT_EQ(world.model(engine).text, "an outline");

    EXPECT_EQ(DebugPanelModel::outline({}), "The file can't be read, or is too large.");
    EXPECT_EQ(DebugPanelModel::outline("{"), "The file is not a JSON text.");
    EXPECT_EQ(DebugPanelModel::outline(R"({"profiles":[{"name":"Home"}]})"),
              "1 field\n  profiles: 1 item\n    [0]: 1 field\n      name: ‹other, 4 characters›");
}

TEST(DebugPanelModel, aLargeFileHasNoOutline)
{
    constexpr std::size_t most = DebugPanelModel::largestFile;
    EXPECT_EQ(DebugPanelModel::outline(std::string(most - 1, ' ') + "1"), "1");
    EXPECT_EQ(DebugPanelModel::outline(std::string(most, ' ') + "1"),
              "The file is larger than 4.0 MB. “Quellon --redact FILE” shows its shape.");
}

TEST(DebugPanelModel, aLongOutlineIsCut)
{
    const auto list = [](std::size_t items) {
        std::string text = "[1";
        for (std::size_t i = 1; i < items; ++i) text += ",1";
        return text + "]";
    };
    const auto lines = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n') + 1; };
    const std::string whole = DebugPanelModel::outline(list(DebugPanelModel::mostLines - 1));
    EXPECT_EQ(lines(whole), DebugPanelModel::mostLines);
    EXPECT_THAT(whole, testing::EndsWith("[4998]: 1"));
    const std::string cut = DebugPanelModel::outline(list(DebugPanelModel::mostLines + 2));
    EXPECT_EQ(lines(cut), DebugPanelModel::mostLines + 1);
    EXPECT_THAT(cut, testing::EndsWith("[4998]: 1\n… and 3 more lines"));
}

TEST(DebugPanelModel, commandsRaiseEachKindOfNotification)
{
    struct Case {
        const char* title;
        const char* words;
    };
    constexpr Case cases[] = {
        {"Test: warning", "Quellon Test"}, {"Test: several at once", "Quellon Test 2"},
        {"Test: paused", "Quellon Test"},  {"Test: quit", "Quellon Test"},
        {"Test: keeps coming back", "3"},  {"Test: blocked app", "Quellon Test"},
    };
    DebugWorld world;
    GuardEngine engine{world.host, world.stopped()};
    const auto model = world.model(engine);
    ASSERT_EQ(model.commands.size(), std::size(cases) + 2);
    std::vector<std::string> told;
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].title);
        EXPECT_EQ(model.commands[i].title, cases[i].title);
        perform(std::get<DebugActions::Run>(model.commands[i].action).command, engine, world.feed);
        ASSERT_EQ(world.plans.size(), i + 1);
        const NotificationPlan& plan = world.plans.back();
        const std::string words = plan.title + plan.subtitle + plan.body;
        EXPECT_THAT(words, HasSubstr(cases[i].words));
        EXPECT_EQ(std::count(told.begin(), told.end(), words), 0) << "of a kind of its own";
        told.push_back(words);
    }
}

TEST(DebugPanelModel, theNextSampleFailsAndNoOther)
{
    DebugWorld world;
    GuardEngine engine{world.host};
    world.playTwoRounds();
    EXPECT_EQ(engine.lastSampleFailureAt(), std::nullopt);
    perform(DebugCommand::failNextSample, engine, world.feed);
    world.host.advance(5s);
    const auto failure = engine.lastSampleFailureAt();
    EXPECT_EQ(failure, world.host.now());
    world.host.advance(5s);
    EXPECT_EQ(engine.lastSampleFailureAt(), failure);
    EXPECT_THAT(world.plans, IsEmpty());
}

TEST(DebugPanelModel, autoResumeIsShortened)
{
    ActingWorld world;
    world.host.environment("QUELLON_STATE_DIR", "/isolated");
    world.begin();
    NotificationFeed feed;
    perform(DebugCommand::shortenAutoResume, *world.engine, feed);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    const auto trace = world.trace.take();
    EXPECT_THAT(trace, Contains(HasSubstr("spawn sleep 10; kill -CONT 501")));
    EXPECT_THAT(trace, Not(Contains(HasSubstr("sleep 1800"))));
}

TEST(DebugPanelModel, theUsersOwnStateIsOnlyLookedAt)
{
    DebugWorld world{false};
    GuardEngine engine{world.host};
    const auto model = world.model(engine);
    EXPECT_THAT(model.commands, IsEmpty());
    EXPECT_EQ(model.note, "This is your real state: it can be looked at here, not changed.");
    for (const DebugCommand command : {DebugCommand::warn, DebugCommand::failNextSample}) {
        perform(command, engine, world.feed);
    }
    world.playTwoRounds();
    EXPECT_THAT(world.plans, IsEmpty());
    EXPECT_EQ(engine.lastSampleFailureAt(), std::nullopt);
}

} // namespace
} // namespace quellon
