#include "QuellonCore/Presentation/AppDetailModel.h"

#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* known =
    R"({"recognized":true,"whatItIs":"A helper of a test.","whyTraffic":"It helps.","category":"updater",)"
    R"("vendor":"Maker","limitAdvice":"avoid","limitNote":"Breaks."})";

class AppDetail : public testing::Test {
protected:
    SettingsWorld world;

    AppDetailModel model(const std::string& app = "helperd")
    {
        return AppDetailModel::of(world.engine, app, world.state.askingConsent == app, world.host.now());
    }
    void answers(int status, std::string body, Seconds takes = 0s)
    {
        world.host.http().reply = {HttpResponse{status, std::move(body)}, takes};
    }
};

TEST_F(AppDetail, unknownApplication)
{
    const auto shown = model("evil\x1B");
    EXPECT_EQ(shown.app, "evil�");
    EXPECT_EQ(shown.subtitle, std::nullopt);
    EXPECT_EQ(shown.policy.accessibilityLabel, "Policy for evil�");
    EXPECT_EQ(shown.policy.selected, 1U);
    EXPECT_EQ(shown.identity, std::nullopt);
    ASSERT_TRUE(shown.unknown);
    EXPECT_EQ(shown.unknown->text, "Not in the knowledge pack yet. The activity below is still tracked in full.");
    EXPECT_EQ(shown.unknown->lookingUp, std::nullopt);
    EXPECT_EQ(shown.unknown->consent, std::nullopt);
    EXPECT_EQ(shown.unknown->explain,
              (FormButton{"Explain online…", "Look up evil� online", ExplainOnline{"evil\x1B"}}));
    EXPECT_EQ(shown.unknown->failure, std::nullopt);
    EXPECT_EQ(AppDetailModel::usageHeading, "Usage");
    EXPECT_EQ(shown.lastHour, (FormStat{"Last hour", "0.0 MB"}));
    EXPECT_EQ(shown.chronic, std::nullopt);
    EXPECT_EQ(AppDetailModel::actionsHeading, "Guard actions");
    EXPECT_THAT(shown.actions, ElementsAre("No guard actions in the last 6 h."));
    EXPECT_THAT(shown.pauseControls, IsEmpty());
    EXPECT_EQ(shown.close, (FormButton{"Close", "Close", CloseDetails{}}));
}

TEST_F(AppDetail, anApplicationOfThePack)
{
    world.engine.answerExplainConsent(true);
    const auto shown = model("ollama");
    EXPECT_EQ(shown.unknown, std::nullopt) << "nothing to look up, whatever the consent";
    ASSERT_TRUE(shown.identity);
    const auto row = *world.engine.explanation("ollama");
    EXPECT_EQ(shown.identity->whatItIs, "Ollama, a local LLM runtime.");
    EXPECT_EQ(shown.identity->whyTraffic, row.whyTraffic);
    EXPECT_EQ(shown.identity->advice, AppExplanation::limitAdvices.label(row.limitAdvice));
    EXPECT_EQ(shown.identity->limitNote, row.limitNote);
    EXPECT_THAT(shown.identity->provenance, HasSubstr("From the built-in knowledge pack"));
}

TEST_F(AppDetail, explanations)
{
    struct Case {
        const char* name;
        const char* json;
        const char* subtitle;
        Tint tint;
        const char* advice;
        std::optional<std::string> note;
        const char* provenance;
    };
    constexpr const char* online = "Looked up online · AI-written, not human-reviewed.";
    const Case cases[] = {
        {"online",
         R"({"source":"cloud","vendor":"Maker","category":"vpn-proxy","limitAdvice":"safe"})",
         "VPN / proxy · Maker",
         Tint::green,
         "Safe to limit",
         {},
         online},
        {"online and reviewed", R"({"source":"cloud","confidence":"reviewed","limitAdvice":"caution","limitNote":"n"})",
         "Other", Tint::yellow, "Limiting pauses sync or notifications", "n", online},
        {"neither a maker nor a note",
         R"({"source":"cloud","vendor":"","limitNote":""})",
         "Other",
         Tint::yellow,
         "Limiting pauses sync or notifications",
         {},
         online},
        {"of the pack, generated",
         R"({"source":"pack","confidence":"generated","limitAdvice":"avoid"})",
         "Other",
         Tint::red,
         "Avoid limiting",
         {},
         "From the built-in knowledge pack · AI-written, not yet human-reviewed."},
        {"of the pack, reviewed",
         R"({"source":"pack","confidence":"reviewed","vendor":"A\nB","category":"game"})",
         "Games · A�B",
         Tint::yellow,
         "Limiting pauses sync or notifications",
         {},
         "From the built-in knowledge pack."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EngineWorld each;
        each.host.files().set(each.stateFolder / Persistence::explanationsFile,
                              fmt::format(R"({{"entries":{{"helperd":{{"explanation":{},"fetchedAt":5}}}}}})", c.json));
        const GuardEngine engine{each.host, each.stopped()};
        const auto shown = AppDetailModel::of(engine, "helperd", false, each.host.now());
        ASSERT_TRUE(shown.identity);
        EXPECT_EQ(shown.subtitle, c.subtitle);
        EXPECT_EQ(shown.identity->adviceTint, c.tint);
        EXPECT_EQ(shown.identity->advice, c.advice);
        EXPECT_EQ(shown.identity->limitNote, c.note);
        EXPECT_EQ(shown.identity->provenance, c.provenance);
    }
}

TEST_F(AppDetail, theFirstLookupAsksForConsent)
{
    answers(200, known, 2s);
    world.does(model().unknown->explain->action);
    ASSERT_TRUE(model().unknown->consent);
    EXPECT_EQ(model().unknown->explain, std::nullopt);
    const auto row = *model().unknown->consent;
    EXPECT_EQ(row.title, "Look up unknown apps online?");
    EXPECT_EQ(row.text,
              "When you click Explain, this app sends just that one process name (like \"GoogleUpdater\") to Quellon's "
              "lookup service and gets back a short description. Nothing is ever sent automatically, and no account or "
              "usage data is involved. Answers are saved on this Mac, so each name is looked up at most once.");
    EXPECT_EQ(row.allow,
              (FormButton{"Allow lookups", "Allow online app lookups", AnswerExplainConsent{"helperd", true}}));
    EXPECT_EQ(row.decline,
              (FormButton{"No thanks", "Decline online app lookups", AnswerExplainConsent{"helperd", false}}));
    world.does(row.allow.action);
    EXPECT_EQ(world.settings().explainConsent, UpdateCheckConsent::granted);
    EXPECT_EQ(model().unknown->lookingUp, "Looking it up…");
    EXPECT_EQ(model().unknown->consent, std::nullopt);
    EXPECT_EQ(model().unknown->explain, std::nullopt);
    world.host.advance(2s);
    ASSERT_TRUE(model().identity);
    EXPECT_EQ(model().subtitle, "Updater · Maker");
    EXPECT_EQ(model().identity->provenance, "Looked up online · AI-written, not human-reviewed.");
}

TEST_F(AppDetail, aNoCanBeTakenBack)
{
    world.does(ExplainOnline{"helperd"});
    world.does(model().unknown->consent->decline.action);
    EXPECT_EQ(world.settings().explainConsent, UpdateCheckConsent::denied);
    EXPECT_EQ(model().unknown->consent, std::nullopt);
    ASSERT_TRUE(model().unknown->explain) << "the button stays";
    world.does(model().unknown->explain->action);
    EXPECT_TRUE(model().unknown->consent) << "it shows the question again";
    EXPECT_THAT(world.host.http().requests, IsEmpty());
}

TEST_F(AppDetail, withConsentTheButtonLooksUpAtOnce)
{
    answers(503, "");
    world.engine.answerExplainConsent(true);
    world.does(model().unknown->explain->action);
    EXPECT_TRUE(model().unknown->lookingUp);
    world.host.advance(1s);
    EXPECT_EQ(model().unknown->lookingUp, std::nullopt);
    EXPECT_TRUE(model().unknown->explain) << "to try again";
    EXPECT_EQ(model().unknown->failure, world.engine.explainFailures().at("helperd"));
    EXPECT_EQ(model("otherd").unknown->failure, std::nullopt);
}

TEST_F(AppDetail, aLookupGoesOnWhileTheDetailsAreClosed)
{
    answers(200, known, 5s);
    world.engine.answerExplainConsent(true);
    world.does(OpenDetails{"helperd"});
    world.does(ExplainOnline{"helperd"});
    world.does(CloseDetails{});
    world.does(OpenDetails{"helperd"});
    EXPECT_TRUE(model().unknown->lookingUp);
}

TEST_F(AppDetail, closingForgetsTheQuestion)
{
    world.does(OpenDetails{"helperd"});
    world.does(ExplainOnline{"helperd"});
    EXPECT_EQ(model("otherd").unknown->consent, std::nullopt);
    world.does(CloseDetails{});
    EXPECT_EQ(world.engine.detailApp(), std::nullopt);
    world.does(OpenDetails{"helperd"});
    EXPECT_EQ(model().unknown->consent, std::nullopt);
}

TEST_F(AppDetail, theSmallEditionLooksNothingUp)
{
    SettingsWorld store{Platform::macOS(), Capabilities{.edition = AppEdition::appStore}};
    const auto shown = AppDetailModel::of(store.engine, "helperd", true, store.host.now());
    ASSERT_TRUE(shown.unknown);
    EXPECT_EQ(shown.unknown->explain, std::nullopt);
    EXPECT_EQ(shown.unknown->consent, std::nullopt);
}

TEST_F(AppDetail, linuxIsNoMac)
{
    SettingsWorld linux{Platform::linux()};
    const auto shown = AppDetailModel::of(linux.engine, "helperd", true, linux.host.now());
    ASSERT_TRUE(shown.unknown->consent);
    EXPECT_THAT(shown.unknown->consent->text, HasSubstr("Answers are saved on this computer, so"));
}

TEST_F(AppDetail, usage)
{
    world.change([](GuardSettings& settings) {
        settings.rules()[0].thresholdBytes = 20 * mega;
        settings.rules()[1].thresholdBytes = 6 * mega;
        settings.rules()[1].level = ActionLevel::highlight;
    });
    world.move({{"helperd", 3 * mega}});
    EXPECT_EQ(model().lastHour.value, "3.0 MB");
    EXPECT_EQ(model().chronic, "🐌 slow but steady");
    world.move({{"helperd", 5 * mega}});
    EXPECT_EQ(model().lastHour.value, "5.0 MB");
    EXPECT_EQ(model().chronic, std::nullopt) << "too much in a minute for a slow one";
    EXPECT_EQ(AppDetailModel::of(world.engine, "helperd", false, world.host.now() + 3'601s).lastHour.value, "0.0 MB");
}

TEST_F(AppDetail, policy)
{
    world.does(model().policy.options[2].action);
    EXPECT_EQ(world.settings().appPolicies.policy("helperd"), AppPolicy::always);
    EXPECT_EQ(model().policy.selected, 2U);
    EXPECT_THAT(model().actions, ElementsAre("Your policy for this app: Always block on hotspot."));
}

TEST_F(AppDetail, pauseControls)
{
    const Date midnight = world.engine.muteAsks("helperd", world.host.now());
    world.engine.allowUntilTransferEnds("helperd", world.host.now());
    auto shown = model();
    ASSERT_THAT(shown.pauseControls, SizeIs(2));
    EXPECT_EQ(shown.pauseControls[0], (FormButton{"Ask me again", "Stop muting helperd", UnmuteAsks{"helperd"}}));
    EXPECT_EQ(shown.pauseControls[1], (FormButton{"Stop allowing", "Watch helperd again", ResumeWatching{"helperd"}}));
    EXPECT_THAT(AppDetailModel::of(world.engine, "helperd", false, midnight).pauseControls, SizeIs(1))
        << "a mute that has run out";
    world.does(shown.pauseControls[1].action);
    ASSERT_THAT(model().pauseControls, SizeIs(1));
    world.does(shown.pauseControls[0].action);
    EXPECT_THAT(model().pauseControls, IsEmpty());
}

} // namespace
} // namespace quellon
