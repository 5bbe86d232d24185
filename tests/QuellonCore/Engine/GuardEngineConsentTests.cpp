#include "EngineWorld.h"
#include "QuellonCore/Engine/OnlineContexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A guard that could use the network, for a program of version 1.2.0 on macOS 14.5.0.
struct OnlineWorld : EngineWorld {
    NetworkLog log;

    [[nodiscard]] GuardEngine::Options online(bool autoStart = false)
    {
        GuardEngine::Options options;
        options.autoStart = autoStart;
        options.updateCheck = OnlineContexts::updateCheckContext(host.host(), "1.2.0", "14.5.0", log);
        options.explain = OnlineContexts::explainContext(host.host(), "1.2.0", "14.5.0", log);
        return options;
    }
    void answers(int status, std::string body, Seconds takes = 0s)
    {
        host.http().reply = {HttpResponse{status, std::move(body)}, takes};
    }
    [[nodiscard]] std::size_t requests() { return host.http().requests.size(); }
    [[nodiscard]] Json savedSettings()
    {
        return parseJson(host.files().get(settingsFile).value_or("")).value_or(Json{});
    }
    [[nodiscard]] std::optional<ExplanationCache> savedExplanations()
    {
        return Persistence{host.host()}.load<ExplanationCache>(Persistence::explanationsFile);
    }
};

constexpr const char* manifest = R"({"latestVersion":"1.3","downloadURL":"https://quellon.example/download"})";
constexpr const char* known = R"({"recognized":true,"whatItIs":"A helper of a test."})";
const AvailableUpdate update{"1.3", "https://quellon.example/download"};

TEST(OnlineContexts, aProgramWithoutAVersionHasNone)
{
    OnlineWorld world;
    EXPECT_FALSE(OnlineContexts::updateCheckContext(world.host.host(), "", "14.5.0", world.log));
    EXPECT_FALSE(OnlineContexts::explainContext(world.host.host(), "", "14.5.0", world.log));
}

TEST(EngineUpdates, nobodyIsAskedWithoutConsent)
{
    OnlineWorld world;
    world.answers(200, manifest);
    GuardEngine engine{world.host, world.online(true)};
    world.host.advance(60s);
    EXPECT_EQ(world.requests(), 0U);
    EXPECT_FALSE(engine.answerUpdateCheckConsent(false));
    engine.stop();
    engine.start();
    world.host.advance(60s);
    EXPECT_EQ(world.requests(), 0U);
    EXPECT_EQ(engine.settings().updateLastCheckedAt, std::nullopt);
    EXPECT_EQ(engine.settings().updateCheckConsent, UpdateCheckConsent::denied);
}

TEST(EngineUpdates, aYesChecksInTheNextTurn)
{
    OnlineWorld world;
    world.answers(200, manifest, 2s);
    GuardEngine engine{world.host, world.online()};
    EXPECT_TRUE(engine.answerUpdateCheckConsent(true));
    EXPECT_EQ(world.requests(), 0U);
    const Date asked = world.host.now();
    world.host.advance(1s);
    EXPECT_EQ(world.requests(), 1U);
    EXPECT_EQ(engine.availableUpdate(), std::nullopt);
    EXPECT_EQ(engine.settings().updateLastCheckedAt, std::nullopt) << "noted when the reply has come";
    world.host.advance(1s);
    EXPECT_EQ(engine.availableUpdate(), update);
    EXPECT_EQ(engine.settings().updateLastCheckedAt, asked);
    EXPECT_THAT(messages(engine), ElementsAre("Update available: 1.3"));
    EXPECT_EQ(world.host.http().requests.front().url, "https://updates.quellon.example/quellon/appcast/1.2.0.json");
}

TEST(EngineUpdates, everyStartChecksButOnceADay)
{
    OnlineWorld world;
    world.storeSettings(R"({"onboarded":true,"updateCheckConsent":"granted"})");
    world.answers(404, "", 2s);
    {
        const Date asked = world.host.now();
        GuardEngine engine{world.host, world.online(true)};
        world.host.advance(5s);
        EXPECT_EQ(world.requests(), 1U);
        EXPECT_EQ(engine.settings().updateLastCheckedAt, asked) << "when it was asked, not when the reply came";
        EXPECT_EQ(world.savedSettings()["updateLastCheckedAt"], asked.time_since_epoch().count());
        engine.stop();
        engine.start();
        world.host.advance(1s);
        EXPECT_EQ(world.requests(), 1U) << "the day is used up, although the check failed";
    }
    world.host.advance(86'400s);
    GuardEngine engine{world.host, world.online(true)};
    world.host.advance(1s);
    EXPECT_EQ(world.requests(), 2U);
    EXPECT_EQ(engine.availableUpdate(), std::nullopt);
}

TEST(EngineUpdates, aNoticeStaysUntilItIsDismissed)
{
    OnlineWorld world;
    world.storeSettings(R"({"onboarded":true,"updateCheckConsent":"granted"})");
    world.answers(200, manifest);
    GuardEngine engine{world.host, world.online(true)};
    world.host.advance(1s);
    ASSERT_EQ(engine.availableUpdate(), update);
    Date clock = world.host.now();
    for (const char* reply : {R"({"latestVersion":"1.2","downloadURL":"https://quellon.example/"})", "<html>"}) {
        const auto before = world.requests();
        world.answers(200, reply);
        clock = clock - 1000s; // it was set back, so that the host is asked
        engine.checkForUpdatesIfAllowed(clock);
        world.host.advance(1s);
        EXPECT_EQ(world.requests(), before + 1);
        EXPECT_EQ(engine.availableUpdate(), update);
    }
    engine.dismissAvailableUpdate();
    EXPECT_EQ(engine.availableUpdate(), std::nullopt);
    world.answers(200, manifest);
    engine.checkForUpdatesIfAllowed(world.host.now() + 10 * 86'400s);
    world.host.advance(1s);
    EXPECT_EQ(engine.availableUpdate(), update) << "it comes back with the next check that finds it";
    EXPECT_EQ(std::ranges::count(messages(engine), "Update available: 1.3"), 2) << "a line for each find";
}

TEST(EngineUpdates, aVersionThatCanNotBeReadAsksForTheCommonManifestAndIsUpToDate)
{
    OnlineWorld world;
    world.storeSettings(R"({"onboarded":true,"updateCheckConsent":"granted"})");
    world.answers(200, manifest);
    auto options = world.online();
    options.updateCheck = OnlineContexts::updateCheckContext(world.host.host(), "dev", "14.5.0", world.log);
    GuardEngine engine{world.host, options};
    engine.checkForUpdatesIfAllowed(world.host.now());
    world.host.advance(1s);
    ASSERT_EQ(world.requests(), 1U);
    EXPECT_EQ(world.host.http().requests.front().url, "https://updates.quellon.example/quellon/appcast.json");
    EXPECT_EQ(engine.availableUpdate(), std::nullopt);
    EXPECT_TRUE(engine.settings().updateLastCheckedAt);
}

TEST(EngineUpdates, theQuestionIsForTheFullEditionAndBeforeItIsAnswered)
{
    OnlineWorld world;
    auto options = world.online();
    GuardEngine engine{world.host, options};
    EXPECT_TRUE(engine.showsUpdateConsentPrompt());
    engine.answerUpdateCheckConsent(false);
    EXPECT_FALSE(engine.showsUpdateConsentPrompt());

    world.storeSettings(R"({"onboarded":true})");
    options.capabilities = Capabilities::detect(AppEdition::appStore, world.host.host().processes);
    EXPECT_FALSE((GuardEngine{world.host, options}).showsUpdateConsentPrompt());
    EXPECT_FALSE((GuardEngine{world.host, world.stopped()}).showsUpdateConsentPrompt()) << "no way to check";
}

TEST(EngineUpdates, withoutAWayToCheckNothingHappens)
{
    OnlineWorld world;
    world.storeSettings(R"({"onboarded":true,"updateCheckConsent":"granted"})");
    GuardEngine engine{world.host, world.stopped()};
    engine.checkForUpdatesIfAllowed(world.host.now());
    world.host.advance(20s);
    EXPECT_EQ(world.requests(), 0U);
    EXPECT_EQ(engine.settings().updateLastCheckedAt, std::nullopt);
}

TEST(EngineUpdates, aReplyAfterTheEngineIsGoneReachesNobody)
{
    OnlineWorld world;
    world.answers(200, manifest, 5s);
    {
        GuardEngine engine{world.host, world.online()};
        engine.answerUpdateCheckConsent(true);
        world.host.advance(1s);
    }
    const auto writes = world.host.files().writes();
    world.host.advance(20s);
    EXPECT_EQ(world.requests(), 1U);
    EXPECT_EQ(world.host.files().writes(), writes);
}

TEST(EngineLookups, nobodyIsAskedWithoutConsent)
{
    OnlineWorld world;
    world.answers(200, known);
    GuardEngine engine{world.host, world.online()};
    EXPECT_TRUE(engine.canRequestExplanation("helperd")) << "the button stands before the answer";
    EXPECT_TRUE(engine.showsExplainConsentPrompt());
    EXPECT_FALSE(engine.requestExplanation("helperd"));
    engine.answerExplainConsent(false);
    EXPECT_FALSE(engine.showsExplainConsentPrompt());
    EXPECT_FALSE(engine.requestExplanation("helperd"));
    EXPECT_TRUE(engine.canRequestExplanation("helperd"));
    world.host.advance(20s);
    EXPECT_EQ(world.requests(), 0U);
}

TEST(EngineLookups, theAnswerSavesTheSettingsAndStartsNothing)
{
    OnlineWorld world;
    GuardEngine engine{world.host, world.online()};
    const auto writes = world.host.files().writes();
    engine.answerExplainConsent(true);
    EXPECT_EQ(world.host.files().writes(), writes + 2) << "by the settings' own path, then once more";
    EXPECT_EQ(world.savedSettings()["explainConsent"], "granted");
    world.host.advance(20s);
    EXPECT_EQ(engine.settings().explainConsent, UpdateCheckConsent::granted);
    EXPECT_EQ(world.requests(), 0U);
}

TEST(EngineLookups, anAnswerIsKeptAndSaved)
{
    OnlineWorld world;
    world.answers(200, known, 3s);
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    EXPECT_TRUE(engine.requestExplanation("helperd"));
    EXPECT_THAT(engine.explainInFlight(), ElementsAre("helperd"));
    EXPECT_EQ(world.requests(), 0U) << "it goes out in the next turn";
    world.host.advance(1s);
    ASSERT_EQ(world.requests(), 1U);
    EXPECT_EQ(world.host.http().requests.front().body, R"({"label":"helperd"})");
    world.host.advance(2s);
    EXPECT_THAT(engine.explainInFlight(), IsEmpty());
    ASSERT_TRUE(engine.explanation("helperd"));
    EXPECT_EQ(engine.explanation("helperd")->whatItIs, "A helper of a test.");
    EXPECT_EQ(engine.explanation("Helperd"), std::nullopt) << "online answers match by the exact name";
    EXPECT_EQ(engine.cloudExplanations().entries.at("helperd").fetchedAt, world.host.now());
    EXPECT_EQ(world.savedExplanations(), engine.cloudExplanations());
    EXPECT_FALSE(engine.canRequestExplanation("helperd"));
    EXPECT_FALSE(engine.requestExplanation("helperd"));

    const GuardEngine next{world.host, world.online()};
    EXPECT_EQ(next.explanation("helperd"), engine.explanation("helperd"));
}

TEST(EngineLookups, oneRequestForTwoPresses)
{
    OnlineWorld world;
    world.answers(200, known, 3s);
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    EXPECT_TRUE(engine.requestExplanation("helperd"));
    EXPECT_FALSE(engine.requestExplanation("helperd"));
    EXPECT_TRUE(engine.requestExplanation("otherd")) << "different names may be asked about at once";
    world.host.advance(20s);
    EXPECT_EQ(world.requests(), 2U);
}

TEST(EngineLookups, aFailureIsToldUntilTheNextPress)
{
    struct Case {
        const char* name;
        ScriptedReply reply;
        const char* message;
    };
    const Case cases[] = {
        {"busy", {HttpResponse{503, ""}, 0s}, "Lookup service is busy — try again later."},
        {"asked too often", {HttpResponse{429, ""}, 0s}, "Lookup service is busy — try again later."},
        {"broken", {HttpResponse{500, ""}, 0s}, "Couldn't look this up right now."},
        {"no reply", {std::nullopt, 0s}, "Couldn't look this up right now."},
        {"not JSON", {HttpResponse{200, "x"}, 0s}, "Couldn't look this up right now."},
        {"not recognized",
         {HttpResponse{200, R"({"recognized":false,"whatItIs":"x"})"}, 0s},
         "The lookup service didn't recognize this name."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        OnlineWorld world;
        GuardEngine engine{world.host, world.online()};
        engine.answerExplainConsent(true);
        world.host.http().reply = c.reply;
        engine.requestExplanation("helperd");
        world.host.advance(1s);
        EXPECT_EQ(engine.explainFailures().at("helperd"), c.message);
        EXPECT_THAT(engine.explainInFlight(), IsEmpty());
        EXPECT_EQ(world.savedExplanations(), std::nullopt) << "a failure changes nothing on disk";
        EXPECT_TRUE(engine.canRequestExplanation("helperd"));
        world.answers(200, known);
        EXPECT_TRUE(engine.requestExplanation("helperd"));
        EXPECT_THAT(engine.explainFailures(), IsEmpty());
        world.host.advance(1s);
        EXPECT_TRUE(engine.explanation("helperd"));
    }
}

TEST(EngineLookups, aFailureOfOneNameLeavesTheMessageOfAnother)
{
    OnlineWorld world;
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    world.answers(503, "");
    engine.requestExplanation("helperd");
    world.host.advance(1s);
    world.answers(500, "");
    engine.requestExplanation("otherd");
    world.host.advance(1s);
    EXPECT_EQ(engine.explainFailures().at("helperd"), "Lookup service is busy — try again later.");
    EXPECT_EQ(engine.explainFailures().at("otherd"), "Couldn't look this up right now.");
}

TEST(EngineLookups, anAnswerThatCanNotBeSavedIsKeptForThisRun)
{
    OnlineWorld world;
    world.answers(200, known);
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    world.host.files().failWrites();
    engine.requestExplanation("helperd");
    world.host.advance(1s);
    EXPECT_TRUE(engine.explanation("helperd"));
    EXPECT_EQ(world.savedExplanations(), std::nullopt);
}

TEST(EngineLookups, aReplyAfterTheEngineIsGoneReachesNobody)
{
    OnlineWorld world;
    world.answers(200, known, 5s);
    {
        GuardEngine engine{world.host, world.online()};
        engine.answerExplainConsent(true);
        engine.requestExplanation("helperd");
        world.host.advance(1s);
        ASSERT_EQ(world.requests(), 1U);
        engine.requestExplanation("otherd"); // whose turn never comes
    }
    world.host.advance(20s);
    EXPECT_EQ(world.requests(), 1U);
    EXPECT_EQ(world.savedExplanations(), std::nullopt);
}

TEST(EngineLookups, thePackAlwaysWins)
{
    OnlineWorld world;
    world.host.files().set(world.stateFolder / Persistence::explanationsFile,
                           R"({"entries":{"ollama":{"explanation":{"whatItIs":"x"},"fetchedAt":5}}})");
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    EXPECT_EQ(engine.explanation("ollama")->whatItIs, "Ollama, a local LLM runtime.");
    EXPECT_EQ(engine.explanation("OLLAMA")->whatItIs, "Ollama, a local LLM runtime.");
    EXPECT_FALSE(engine.canRequestExplanation("ollama"));
    EXPECT_FALSE(engine.requestExplanation("ollama"));
    world.host.advance(1s);
    EXPECT_EQ(world.requests(), 0U);
}

TEST(EngineLookups, theButtonIsForTheFullEdition)
{
    OnlineWorld world;
    auto options = world.online();
    options.capabilities = Capabilities::detect(AppEdition::appStore, world.host.host().processes);
    EXPECT_FALSE((GuardEngine{world.host, options}).canRequestExplanation("helperd"));
    EXPECT_FALSE((GuardEngine{world.host, world.stopped()}).canRequestExplanation("helperd")) << "no way to ask";
}

TEST(EngineLookups, aFileThatCanNotBeReadIsAnEmptyCache)
{
    for (const char* text : {"", "[]", R"({"entries":{"x":{}}})"}) {
        OnlineWorld world;
        world.host.files().set(world.stateFolder / Persistence::explanationsFile, text);
        const GuardEngine engine{world.host, world.online()};
        EXPECT_EQ(engine.cloudExplanations(), ExplanationCache{});
    }
}

TEST(EngineLookups, theAgentTextNamesTheSystem)
{
    OnlineWorld world;
    world.host.platform(Platform::linux());
    GuardEngine engine{world.host, world.online()};
    engine.answerExplainConsent(true);
    engine.requestExplanation("helperd");
    world.host.advance(1s);
    EXPECT_EQ(world.host.http().requests.front().headers.front(),
              (std::pair<std::string, std::string>{"User-Agent", "Quellon/1.2.0 (Linux 14.5.0)"}));
}

} // namespace
} // namespace quellon
