#include "QuellonCore/Presentation/Controls.h"

#include "QuellonCore/Engine/ActingWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using Command = ControlCommand;

/// A guard with controls on a hotspot; Player has two processes, Mailer one. Snoozes take 20 minutes.
class ControlsTest : public testing::Test {
protected:
    ActingWorld world;
    NotificationFeed feed;
    int changes = 0;
    std::optional<Controls> controls;

    ControlsTest()
    {
        world.app("Mailer", {601});
        world.settings.snoozeMinutes = 20;
        world.options.notifier = [this](const NotificationPlan& plan) { feed.deliver(plan); };
        world.begin();
        controls.emplace(*world.engine, feed, [this] { ++changes; });
    }

    ControlsModel model() { return controls->model(world.host.now()); }
    /// The next round, in which the application has received more than its rule allows.
    void freeze(std::int32_t pid) { static_cast<void>(world.roundWith(pid, 2 * mebibyte)); }
    ActingWorld::Lines perform(Command command)
    {
        static_cast<void>(world.trace.take());
        controls->perform(command);
        return world.trace.take();
    }
    /// Presses once the question has been there for a while.
    ActingWorld::Lines answer(std::size_t button)
    {
        world.host.advance(Controls::holdTime);
        return answerAtOnce(button);
    }
    ActingWorld::Lines answerAtOnce(std::size_t button)
    {
        static_cast<void>(world.trace.take());
        controls->answer(button);
        return world.trace.take();
    }
    ActingWorld::Lines dismiss()
    {
        world.host.advance(Controls::holdTime);
        return perform(Command::dismiss);
    }
    /// The title of the question that is shown, and its place among those that wait; "none" without one.
    std::string shownQuestion()
    {
        const auto shown = model();
        if (!shown.question) return "none";
        return shown.questionPlace.empty() ? shown.question->title
                                           : fmt::format("{}, {}", shown.question->title, shown.questionPlace);
    }
    std::vector<std::string> effects()
    {
        std::vector<std::string> result;
        for (const auto& offer : model().offers) result.emplace_back(offer.effect);
        return result;
    }

    static NotificationPlan plan(std::string title, NotificationStyle style, std::vector<NotificationAction> actions,
                                 std::vector<std::string> apps = {"Player"})
    {
        return {style, std::move(title), "", "", std::move(actions), std::move(apps)};
    }
    static NotificationPlan question(std::string title)
    {
        return plan(std::move(title), NotificationStyle::persistent, {NotificationAction::snooze});
    }
};

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
    EXPECT_THAT(shown.paused, ElementsAre(ControlsModel::Paused{"Player", "just now", true}));
    ASSERT_TRUE(shown.question);
    EXPECT_EQ(*shown.question,
              (ControlsModel::Notice{
                  NotificationStyle::persistent,
                  "Player was paused",
                  {"2.0 MB in 1min", "It is frozen, not closed — resume and it picks up where it left off."},
                  {{"Resume", false}, {"Resume + snooze", false}}}));
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

TEST_F(ControlsTest, resumeByTheNameThatIsShown)
{
    world.app("ev\x1Bil", {801});
    world.engine->enforceNow({"Player", "ev\x1Bil"}, EnforcementAction::suspend);
    static_cast<void>(world.trace.take());
    controls->resume("nobody");
    EXPECT_THAT(world.trace.take(), IsEmpty());
    controls->resume("ev�il");
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 801", "save suspended.json", "info: Resumed ev\x1Bil"));
    controls->resume("ev�il");
    EXPECT_THAT(world.trace.take(), IsEmpty()) << "it is not paused any more";
    EXPECT_THAT(model().paused, ElementsAre(Field(&ControlsModel::Paused::app, "Player")));
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

TEST_F(ControlsTest, answers)
{
    freeze(501);
    EXPECT_THAT(answer(2), IsEmpty()) << "there are two buttons";
    ASSERT_TRUE(model().question);
    EXPECT_THAT(answer(1), ElementsAre("CONT 501", "save suspended.json", "info: Resumed Player · snoozed 20min"));
    EXPECT_EQ(model().question, std::nullopt);
    EXPECT_THAT(answer(0), IsEmpty()) << "an answer counts once";
}

TEST_F(ControlsTest, everyButtonDoesWhatItSays)
{
    feed.deliver(plan("Player is reaching for the hotspot", NotificationStyle::persistent,
                      {NotificationAction::terminate, NotificationAction::allowOnce, NotificationAction::muteToday,
                       NotificationAction::view}));
    EXPECT_THAT(model().question->buttons,
                ElementsAre(ControlsModel::Button{"Stop it", true}, ControlsModel::Button{"Allow until done", false},
                            ControlsModel::Button{"Stop asking today", false},
                            ControlsModel::Button{"Show details", false}));
    EXPECT_THAT(answer(1), ElementsAre("info: Player allowed until this transfer finishes"));
    EXPECT_EQ(model().question, std::nullopt);
}

TEST_F(ControlsTest, showDetailsSelects)
{
    world.app("Radio", {701});
    world.moves(601, 100);
    static_cast<void>(world.roundWith(701, 1000));
    feed.deliver(plan("t", NotificationStyle::persistent, {NotificationAction::view}, {"Mailer", "Radio"}));
    EXPECT_THAT(answer(0), IsEmpty());
    EXPECT_EQ(model().selectedRow, 1U);
    feed.deliver(plan("t", NotificationStyle::persistent, {NotificationAction::view}, {}));
    EXPECT_THAT(answer(0), IsEmpty());
    EXPECT_EQ(model().selectedRow, 1U);
}

TEST_F(ControlsTest, questionsHaveTheirTurnsOldestFirst)
{
    feed.deliver(question("first"));
    world.host.advance(60min);
    EXPECT_EQ(shownQuestion(), "first") << "it stays until it is answered";
    feed.deliver(question("second"));
    EXPECT_EQ(shownQuestion(), "first, 1 of 2");
    feed.deliver(question("third"));
    EXPECT_EQ(shownQuestion(), "first, 1 of 3");
    EXPECT_THAT(answer(0), ElementsAre("info: Player snoozed for 20min"));
    EXPECT_EQ(shownQuestion(), "second, 1 of 2");
    EXPECT_THAT(dismiss(), IsEmpty());
    EXPECT_EQ(shownQuestion(), "third");
    EXPECT_THAT(answer(0), ElementsAre("info: Player snoozed for 20min"));
    EXPECT_EQ(shownQuestion(), "none");
}

TEST_F(ControlsTest, theFourthQuestionPushesTheOldestOut)
{
    for (const char* title : {"first", "second", "third", "fourth"}) feed.deliver(question(title));
    EXPECT_EQ(shownQuestion(), "second, 1 of 3");
    feed.deliver(question("fifth"));
    EXPECT_EQ(shownQuestion(), "third, 1 of 3");
}

TEST_F(ControlsTest, aTransientOneTakesNoQuestionsPlace)
{
    for (const char* title : {"first", "second", "third"}) feed.deliver(question(title));
    feed.deliver(plan("passing", NotificationStyle::transient, {}));
    feed.deliver(plan("with a button", NotificationStyle::transient, {NotificationAction::snooze}));
    EXPECT_EQ(shownQuestion(), "first, 1 of 3");
    EXPECT_EQ(model().note->title, "with a button");
    EXPECT_THAT(answer(0), ElementsAre("info: Player snoozed for 20min"));
    EXPECT_EQ(shownQuestion(), "second, 1 of 2");
}

TEST_F(ControlsTest, aQuestionWithoutButtonsIsDismissed)
{
    feed.deliver(plan("persistent", NotificationStyle::persistent, {}));
    EXPECT_EQ(shownQuestion(), "persistent");
    EXPECT_THAT(answer(0), IsEmpty());
    EXPECT_EQ(shownQuestion(), "persistent");
    EXPECT_THAT(dismiss(), IsEmpty());
    EXPECT_EQ(shownQuestion(), "none");
}

/// The ways by which another notification comes to its turn, each pressed before and after `holdTime`.
TEST_F(ControlsTest, whatIsPressedAsTheTurnChangesWasMeantForTheFormerOne)
{
    struct Case {
        const char* name;
        int questions; ///< That wait before.
        std::function<void()> change;
        const char* then; ///< What is shown then.
    };
    const Case cases[] = {
        {"the first one comes", 0, [this] { feed.deliver(question("new")); }, "new"},
        {"answered", 2, [this] { static_cast<void>(answer(0)); }, "question 2"},
        {"dismissed", 3, [this] { static_cast<void>(dismiss()); }, "question 2, 1 of 2"},
        {"pushed out", 3, [this] { feed.deliver(question("new")); }, "question 2, 1 of 3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        controls.emplace(*world.engine, feed, [] {});
        for (int i = 1; i <= c.questions; ++i) feed.deliver(question(fmt::format("question {}", i)));
        world.host.advance(1s);
        c.change();
        EXPECT_EQ(shownQuestion(), c.then);
        world.host.advance(0.4s);
        EXPECT_THAT(answerAtOnce(0), IsEmpty());
        EXPECT_THAT(perform(Command::dismiss), IsEmpty());
        EXPECT_EQ(shownQuestion(), c.then);
        world.host.advance(0.1s);
        EXPECT_THAT(answerAtOnce(0), ElementsAre("info: Player snoozed for 20min"));
        EXPECT_NE(shownQuestion(), c.then);
    }
}

TEST_F(ControlsTest, aQuestionBehindTheShownOneHoldsNothingUp)
{
    feed.deliver(question("first"));
    world.host.advance(1s);
    feed.deliver(question("second"));
    EXPECT_THAT(answerAtOnce(0), ElementsAre("info: Player snoozed for 20min"));
    EXPECT_EQ(shownQuestion(), "second");
}

TEST_F(ControlsTest, whatIsPressedAsAQuestionIsSettledWasMeantForIt)
{
    freeze(501);
    feed.deliver(plan("second", NotificationStyle::persistent, {NotificationAction::terminate}, {"Mailer"}));
    world.host.advance(1s);
    world.engine->resumeAll(true);
    EXPECT_THAT(answerAtOnce(0), IsEmpty()) << "nobody has seen the second one yet";
    EXPECT_EQ(shownQuestion(), "second");
    EXPECT_THAT(answer(0), ElementsAre("TERM 601", "start time of 601", "enforced: Mailer → 退出 (from notification)"));
}

TEST_F(ControlsTest, aSecondPressDoesNotDismissTheNoteBehindTheQuestion)
{
    feed.deliver(plan("note", NotificationStyle::transient, {}));
    feed.deliver(question("question"));
    EXPECT_THAT(dismiss(), IsEmpty());
    EXPECT_THAT(perform(Command::dismiss), IsEmpty());
    EXPECT_TRUE(model().note);
    EXPECT_THAT(dismiss(), IsEmpty());
    EXPECT_EQ(model().note, std::nullopt);
    EXPECT_THAT(dismiss(), IsEmpty()) << "nothing is there";
}

TEST_F(ControlsTest, transientOnesGoAfterSixSeconds)
{
    world.engine->stop();
    feed.deliver(plan("passing", NotificationStyle::transient, {}));
    world.host.advance(5.9s);
    EXPECT_EQ(model().note->title, "passing");
    changes = 0;
    world.host.advance(0.1s);
    EXPECT_EQ(model().note, std::nullopt);
    EXPECT_EQ(changes, 1);
}

TEST_F(ControlsTest, theTimeOfAFormerNoteDoesNotEndTheNext)
{
    feed.deliver(plan("first", NotificationStyle::transient, {}));
    world.host.advance(4s);
    feed.deliver(plan("second", NotificationStyle::transient, {}));
    world.host.advance(4s);
    EXPECT_EQ(model().note->title, "second");
    static_cast<void>(dismiss());
    feed.deliver(plan("third", NotificationStyle::transient, {}));
    world.host.advance(5.9s);
    EXPECT_EQ(model().note->title, "third") << "a dismissed one's time is over, too";
    world.host.advance(0.1s);
    EXPECT_EQ(model().note, std::nullopt);
}

TEST_F(ControlsTest, aSettledQuestionDoesNotComeBack)
{
    freeze(501);
    world.engine->resumeAll(true);
    EXPECT_EQ(shownQuestion(), "none");
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_EQ(shownQuestion(), "none");
}

TEST_F(ControlsTest, onlyWhatAsksForNothingButAResumeIsSettledByIt)
{
    using Action = NotificationAction;
    struct Case {
        const char* name;
        std::vector<NotificationAction> actions;
        std::vector<std::string> apps;
        bool stays;
    };
    const Case cases[] = {
        {"a pause", {Action::resume, Action::resumeAndSnooze}, {"Player"}, false},
        {"a pause of two, both resumed", {Action::resume}, {"Player", "Mailer"}, false},
        {"a loop", {Action::resumeAndSnooze, Action::allowlist, Action::view}, {"Player"}, true},
        {"an ask", {Action::snooze, Action::suspend, Action::allowlist, Action::view}, {"Player"}, true},
        {"nothing to press", {}, {"Player"}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        controls.emplace(*world.engine, feed, [] {});
        world.engine->enforceNow({"Player", "Mailer"}, EnforcementAction::suspend);
        feed.deliver(plan("asked", NotificationStyle::persistent, c.actions, c.apps));
        static_cast<void>(perform(Command::resume));
        EXPECT_EQ(shownQuestion(), c.stays || c.apps.size() == 2 ? "asked" : "none");
        static_cast<void>(perform(Command::resumeAll));
        EXPECT_EQ(shownQuestion(), c.stays ? "asked" : "none");
    }
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
    world.host.advance(Controls::holdTime);
    static_cast<void>(perform(Command::dismiss));
    world.host.advance(0s);
    EXPECT_EQ(changes, 2);
    feed.deliver(question("second"));
    controls.reset();
    world.host.advance(0s);
    EXPECT_EQ(changes, 2);
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
