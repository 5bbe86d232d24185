#include "ActingWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;

TEST(GuardEngineConsents, areWrittenToTheSettingsAndNowhereElse)
{
    for (const bool granted : {true, false}) {
        SCOPED_TRACE(granted);
        const auto consent = granted ? UpdateCheckConsent::granted : UpdateCheckConsent::denied;
        ActingWorld world;
        world.begin();
        GuardSettings expected = world.engine->settings();
        static_cast<void>(world.trace.take());

        world.engine->answerUpdateCheckConsent(granted);
        expected.updateCheckConsent = consent;
        EXPECT_EQ(world.engine->settings(), expected);
        EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json"));

        world.engine->answerExplainConsent(granted);
        expected.explainConsent = consent;
        EXPECT_EQ(world.engine->settings(), expected);
        EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json", "save settings.json"));
    }
}

TEST(GuardEngineConsents, canBeAnsweredAnew)
{
    ActingWorld world;
    world.begin();
    for (const bool granted : {true, false, true}) {
        world.engine->answerUpdateCheckConsent(granted);
        world.engine->answerExplainConsent(!granted);
    }
    EXPECT_EQ(world.engine->settings().updateCheckConsent, UpdateCheckConsent::granted);
    EXPECT_EQ(world.engine->settings().explainConsent, UpdateCheckConsent::denied);
}

} // namespace
} // namespace quellon
