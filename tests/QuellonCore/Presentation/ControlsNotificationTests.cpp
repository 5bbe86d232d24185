#include "QuellonCore/Presentation/ControlsTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Command = ControlCommand;

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
                ElementsAre(Notice::Button{"Stop it", true}, Notice::Button{"Allow until done", false},
                            Notice::Button{"Stop asking today", false}, Notice::Button{"Show details", false}));
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

TEST_F(ControlsTest, anEqualQuestionIsAnotherOne)
{
    feed.deliver(question("again"));
    feed.deliver(question("again"));
    world.host.advance(1s);
    const auto first = model();
    EXPECT_FALSE(first.held);
    EXPECT_THAT(answerAtOnce(0), ElementsAre("info: Player snoozed for 20min"));
    const auto second = model();
    ASSERT_TRUE(first.question && second.question);
    EXPECT_EQ(first.question->title, second.question->title);
    EXPECT_NE(first.question->serial, second.question->serial);
    EXPECT_TRUE(second.held);
    EXPECT_EQ(model(), second) << "it stays the same one while it waits";
    static_cast<void>(answer(0));
    EXPECT_FALSE(model().held) << "no question, although nothing can be dismissed yet";
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
        EXPECT_TRUE(model().held);
        EXPECT_THAT(answerAtOnce(0), IsEmpty());
        EXPECT_THAT(perform(Command::dismiss), IsEmpty());
        EXPECT_EQ(shownQuestion(), c.then);
        world.host.advance(0.1s);
        EXPECT_FALSE(model().held);
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

} // namespace
} // namespace quellon
