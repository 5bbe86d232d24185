#include "QuellonCore/Presentation/ControlsTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using Command = ControlCommand;

TEST_F(ControlsTest, atTheBeginning)
{
    const auto shown = model();
    EXPECT_EQ(shown.menuBar, (MenuPresentation::MenuBar{"0%", "shield.lefthalf.filled"}));
    ASSERT_TRUE(shown.budget);
    EXPECT_EQ(shown.budget->amounts, "0.0 MB / 30.00 GB");
    EXPECT_TRUE(shown.budget->today);
    EXPECT_THAT(shown.paused, IsEmpty());
    EXPECT_EQ(shown.selectedRow, std::nullopt);
    EXPECT_EQ(shown.question, std::nullopt);
    EXPECT_EQ(shown.note, std::nullopt);
    EXPECT_THAT(effects(), ElementsAre("stops"));
}

TEST_F(ControlsTest, aFrozenApplication)
{
    freeze(501);
    const auto shown = model();
    EXPECT_EQ(shown.menuBar.title, "1");
    EXPECT_THAT(shown.paused,
                ElementsAre(ControlsModel::Paused{"Player", "just now", true, world.engine->suspended().at(0).id()}));
    ASSERT_TRUE(shown.question);
    EXPECT_EQ(*shown.question,
              (ControlsModel::Notice{
                  NotificationStyle::persistent,
                  "Player was paused",
                  {"2.0 MB in 1min", "It is frozen, not closed — resume and it picks up where it left off."},
                  {{"Resume", false}, {"Resume + snooze", false}},
                  1}));
    EXPECT_THAT(effects(), ElementsAre("stops", "resumes", "resumes all", "snoozes", "select", "dismisses"));
    static_cast<void>(world.rounds(36));
    EXPECT_EQ(model().paused.at(0).since, "3 min ago");
    EXPECT_TRUE(model().question) << "it stays until it is answered";
}

TEST_F(ControlsTest, resume)
{
    freeze(501);
    EXPECT_THAT(perform(Command::resume), ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player"));
    EXPECT_THAT(model().paused, IsEmpty());
    EXPECT_EQ(model().question, std::nullopt) << "nothing is left to answer";
    EXPECT_THAT(perform(Command::resume), IsEmpty());
    EXPECT_THAT(world.engine->snoozedUntil(), IsEmpty());
}

TEST_F(ControlsTest, resumeAndSnooze)
{
    freeze(501);
    EXPECT_THAT(perform(Command::snooze),
                ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player · snoozed 20min"));
}

TEST_F(ControlsTest, resumeAll)
{
    EXPECT_THAT(perform(Command::resumeAll), IsEmpty()) << "nothing is paused";
    freeze(501);
    freeze(601);
    EXPECT_THAT(model().paused, ElementsAre(Field(&ControlsModel::Paused::app, "Player"),
                                            Field(&ControlsModel::Paused::app, "Mailer")));
    EXPECT_THAT(perform(Command::resumeAll),
                ElementsAre("CONT 501", "CONT 601", "save suspended.json", "info: Resumed all (2)"));
    EXPECT_EQ(model().question, std::nullopt);
}

TEST_F(ControlsTest, theSelectedOneIsResumed)
{
    freeze(501);
    freeze(601);
    static_cast<void>(world.round()); // by which the tables have lost what was frozen
    EXPECT_THAT(perform(Command::selectNext), IsEmpty());
    EXPECT_FALSE(model().paused.at(0).selected);
    EXPECT_TRUE(model().paused.at(1).selected);
    EXPECT_THAT(perform(Command::resume), ElementsAre("CONT 601", "save suspended.json", "info: Resumed Mailer"));
    EXPECT_TRUE(model().paused.at(0).selected) << "the choice has left the list";
}

TEST_F(ControlsTest, selectingWalksOverWhatIsPausedAndWhatMoves)
{
    world.app("Radio", {701});
    world.moves(701, 1000);
    freeze(501);
    static_cast<void>(world.round()); // by which the tables have lost what was frozen
    ASSERT_THAT(world.engine->usage(), ElementsAre(Field(&AppUsage::app, "Radio")));
    EXPECT_EQ(model().selectedRow, std::nullopt);
    static_cast<void>(perform(Command::selectNext));
    EXPECT_EQ(model().selectedRow, 0U);
    EXPECT_FALSE(model().paused.at(0).selected);
    EXPECT_THAT(perform(Command::resume), IsEmpty()) << "Radio is not paused";
    EXPECT_THAT(effects(), ElementsAre("stops", "resumes all", "snoozes", "select", "dismisses"));
    static_cast<void>(perform(Command::selectNext));
    EXPECT_EQ(model().selectedRow, 0U) << "the end of the list";
    EXPECT_THAT(perform(Command::snooze), ElementsAre("info: Radio snoozed for 20min"));
    static_cast<void>(perform(Command::selectPrevious));
    static_cast<void>(perform(Command::selectPrevious));
    EXPECT_EQ(model().selectedRow, std::nullopt);
    EXPECT_TRUE(model().paused.at(0).selected);
}

TEST_F(ControlsTest, nothingIsSelectedAmongWhatMovesUntilTheUserDoes)
{
    EXPECT_THAT(perform(Command::selectNext), IsEmpty()) << "nothing to select";
    world.app("Radio", {701});
    static_cast<void>(world.roundWith(701, 1000));
    static_cast<void>(world.roundWith(601, 900));
    EXPECT_EQ(model().selectedRow, std::nullopt);
    EXPECT_THAT(perform(Command::snooze), IsEmpty());
    static_cast<void>(perform(Command::selectPrevious));
    EXPECT_EQ(model().selectedRow, world.engine->usage().size() - 1) << "upwards begins at the end";
}

TEST_F(ControlsTest, anEntryIsResumedWhateverItsNameLooksLike)
{
    world.app("ev\x01il", {801});
    world.app("ev\x02il", {802});
    world.engine->enforceNow({"ev\x01il", "ev\x02il"}, EnforcementAction::suspend);
    static_cast<void>(world.trace.take());
    const auto paused = model().paused;
    ASSERT_THAT(paused,
                ElementsAre(Field(&ControlsModel::Paused::app, "ev�il"), Field(&ControlsModel::Paused::app, "ev�il")));
    EXPECT_EQ(paused[1].id, world.engine->suspended().at(1).id());
    for (const char* none : {"", "nobody", "ev�il", "ev\x02il"}) {
        controls->resume(none);
        EXPECT_THAT(world.trace.take(), IsEmpty()) << none;
    }
    controls->resume(paused[1].id);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 802", "save suspended.json", "info: Resumed ev\x02il"));
    controls->resume(paused[1].id);
    EXPECT_THAT(world.trace.take(), IsEmpty()) << "it is not paused any more";
    EXPECT_THAT(model().paused, ElementsAre(Field(&ControlsModel::Paused::id, paused[0].id)));
}

TEST_F(ControlsTest, anEntryOfAFormerFreezeResumesNothing)
{
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    const auto former = model().paused.at(0).id;
    world.engine->resumeAll(true);
    world.host.advance(1s);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    static_cast<void>(world.trace.take());
    controls->resume(former);
    EXPECT_THAT(world.trace.take(), IsEmpty());
    EXPECT_NE(model().paused.at(0).id, former);
}

TEST_F(ControlsTest, stopAndStart)
{
    freeze(501);
    EXPECT_THAT(withoutCadence(perform(Command::startOrStop)),
                ElementsAre("CONT 501", "save suspended.json", "info: Guard stopped"));
    EXPECT_EQ(model().menuBar.title, "Off");
    EXPECT_THAT(effects(), ElementsAre("starts"));
    EXPECT_THAT(perform(Command::startOrStop), ElementsAre("info: Quellon Pro started · 1 rules"));
    EXPECT_THAT(effects(), ElementsAre("stops"));
}

TEST_F(ControlsTest, changesAreTold)
{
    world.engine->stop();
    world.host.advance(0s);
    changes = 0;
    feed.deliver(question("first"));
    EXPECT_EQ(changes, 0) << "in a later turn";
    world.host.advance(0s);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(model().held);
    world.host.advance(Controls::holdTime);
    EXPECT_EQ(changes, 2) << "it can be answered now";
    EXPECT_FALSE(model().held);
    static_cast<void>(perform(Command::dismiss));
    world.host.advance(0s);
    EXPECT_EQ(changes, 3);
    feed.deliver(question("second"));
    controls.reset();
    world.host.advance(1s);
    EXPECT_EQ(changes, 3);
    feed.deliver(question("nobody is there"));
}

TEST_F(ControlsTest, textsAreFitForALine)
{
    NotificationPlan hostile = question("a\x1B[2J");
    hostile.subtitle = "one\ttwo";
    hostile.body = "\nthree\n\nfour\xFF\n";
    feed.deliver(hostile);
    EXPECT_EQ(model().question->title, "a�[2J");
    EXPECT_THAT(model().question->text, ElementsAre("one�two", "three", "four�"));
    world.app("ev\x1Bil", {801});
    world.engine->enforceNow({"ev\x1Bil"}, EnforcementAction::suspend);
    EXPECT_EQ(model().paused.at(0).app, "ev�il");
    world.engine->resumeAll(true);
    static_cast<void>(world.roundWith(801, 2 * mebibyte));
    world.engine->resumeAll(true);
    EXPECT_EQ(model().menuBar.title, "ev�il 2.0 MB");
}

} // namespace
} // namespace quellon
