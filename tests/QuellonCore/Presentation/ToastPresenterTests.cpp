#include "QuellonCore/Presentation/ToastPresenter.h"

#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Action = NotificationAction;
using Point = ToastLayout::Point;

class Toasts : public testing::Test {
protected:
    ScriptedHost world;
    Host host = world.host();
    std::vector<std::string> told;
    int changes = 0;
    std::optional<ToastPresenter> presenter;

    Toasts()
    {
        presenter.emplace(
            host.runLoop,
            [this](Action action, const std::vector<std::string>& apps) {
                std::string line{notificationActions.raw(action)};
                for (const auto& app : apps) line += " " + app;
                told.push_back(line);
            },
            [this] { ++changes; });
    }

    static NotificationPlan plan(std::string title, NotificationStyle style = NotificationStyle::persistent)
    {
        return {style, std::move(title), "", "", {Action::suspend, Action::snooze}, {"A", "B"}};
    }
    static NotificationPlan passing(std::string title) { return plan(std::move(title), NotificationStyle::transient); }
    void show(std::initializer_list<const char*> titles)
    {
        for (const char* title : titles) presenter->show(plan(title));
    }
    std::vector<std::string> titles()
    {
        std::vector<std::string> result;
        for (const auto& each : presenter->toasts()) result.push_back(each.notice.title);
        return result;
    }
    std::uint64_t id(std::size_t place) { return presenter->toasts().at(place).id; }
};

TEST_F(Toasts, withoutATitleThereIsNone)
{
    presenter->show(plan(""));
    EXPECT_EQ(presenter->visibleCount(), 0U);
    EXPECT_EQ(changes, 0);
}

TEST_F(Toasts, theThreeNewestStay)
{
    presenter->show(passing("one"));
    show({"two", "three"});
    EXPECT_THAT(titles(), ElementsAre("one", "two", "three"));
    show({"four"});
    EXPECT_THAT(titles(), ElementsAre("two", "three", "four"));
    const int before = changes;
    world.advance(10s);
    EXPECT_EQ(changes, before) << "the timer of the first one is cancelled";
    show({"five"});
    EXPECT_THAT(titles(), ElementsAre("three", "four", "five")) << "a persistent one is pushed out too";
}

TEST_F(Toasts, aTransientOneGoesAfterSixSeconds)
{
    show({"stays"});
    presenter->show(passing("goes"));
    world.advance(5.9s);
    EXPECT_THAT(titles(), ElementsAre("stays", "goes"));
    world.advance(0.1s);
    EXPECT_THAT(titles(), ElementsAre("stays"));
    world.advance(1h);
    EXPECT_THAT(titles(), ElementsAre("stays"));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Toasts, aPressTellsTheActionAndEndsTheToast)
{
    show({"one", "two"});
    presenter->press(id(0), 1);
    EXPECT_THAT(told, ElementsAre("snooze A B"));
    EXPECT_THAT(titles(), ElementsAre("two"));
    presenter->press(id(0), 2);
    EXPECT_THAT(told, ElementsAre("snooze A B")) << "there is no third button";
    presenter->press(99, 0);
    EXPECT_THAT(titles(), ElementsAre("two"));
}

TEST_F(Toasts, aDoubleClickAnswersOneToast)
{
    show({"one", "two", "three"});
    presenter->press(id(1), 1);
    presenter->press(id(1), 0);
    EXPECT_THAT(told, ElementsAre("snooze A B")) << "the third has come to the place of the second";
    EXPECT_THAT(titles(), ElementsAre("one", "three"));
    presenter->press(id(0), 1);
    EXPECT_THAT(told, ElementsAre("snooze A B", "snooze A B")) << "the first has not moved";
    world.advance(Notice::holdTime);
    presenter->press(id(0), 0);
    EXPECT_THAT(told, ElementsAre("snooze A B", "snooze A B", "suspend A B"));
}

TEST_F(Toasts, afterAToastWasClosedTheOthersCanBePressedAtOnce)
{
    show({"one", "two"});
    presenter->close(id(0));
    presenter->press(id(0), 0);
    EXPECT_THAT(told, ElementsAre("suspend A B")) << "the close button is not where the others are";
}

TEST_F(Toasts, theClosedOneHasNoAction)
{
    show({"one", "two", "three"});
    presenter->close(id(0));
    EXPECT_THAT(titles(), ElementsAre("two", "three"));
    EXPECT_THAT(told, IsEmpty());
    const int before = changes;
    presenter->close(99);
    EXPECT_EQ(changes, before);
}

TEST_F(Toasts, aPressJustAfterAMoveIsNotTaken)
{
    presenter->show(passing("goes"));
    show({"moves"});
    world.advance(6s);
    presenter->press(id(0), 0);
    EXPECT_THAT(told, IsEmpty()) << "it was meant for what stood there before";
    world.advance(Notice::holdTime);
    presenter->press(id(0), 0);
    EXPECT_THAT(told, ElementsAre("suspend A B"));

    show({"one", "two", "three", "four"});
    presenter->press(id(0), 0);
    EXPECT_THAT(titles(), ElementsAre("two", "three", "four"));
    presenter->close(id(0));
    EXPECT_THAT(titles(), ElementsAre("three", "four")) << "closing does no harm";
}

TEST_F(Toasts, whatDoesNotMoveCanBePressedAtOnce)
{
    show({"stays"});
    presenter->show(passing("goes"));
    world.advance(6s);
    presenter->press(id(0), 0);
    EXPECT_THAT(told, ElementsAre("suspend A B"));
}

TEST_F(Toasts, dismissAll)
{
    presenter->show(passing("one"));
    show({"two"});
    presenter->dismissAll();
    EXPECT_EQ(presenter->visibleCount(), 0U);
    const int before = changes;
    world.advance(10s);
    presenter->dismissAll();
    EXPECT_EQ(changes, before);
}

TEST_F(Toasts, anActionMayShowTheNextOne)
{
    presenter.emplace(
        host.runLoop,
        [this](Action /*action*/, const std::vector<std::string>& /*apps*/) {
            show({"a", "b", "c"}); // which pushes out the one that was pressed
        },
        nullptr);
    show({"first"});
    presenter->press(id(0), 0);
    EXPECT_THAT(titles(), ElementsAre("a", "b", "c"));
}

TEST_F(Toasts, theEndOfThePresenterEndsItsTimers)
{
    presenter->show(passing("one"));
    presenter.reset();
    const int before = changes;
    world.advance(10s);
    EXPECT_EQ(changes, before);
}

TEST(ToastModel, content)
{
    const NotificationPlan plan{NotificationStyle::persistent,
                                "A\x1B was paused",
                                "2.0 MB in 1min",
                                "One\n\nTwo",
                                {Action::terminate, Action::resume},
                                {"A"}};
    const auto toast = ToastModel::of(plan, 7);
    EXPECT_EQ(toast.id, 7U);
    EXPECT_EQ(toast.symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(toast.tint, Tint::orange);
    EXPECT_EQ(toast.notice.title, "A� was paused");
    EXPECT_THAT(toast.notice.text, ElementsAre("2.0 MB in 1min", "One", "Two"));
    EXPECT_THAT(toast.notice.buttons, ElementsAre(Notice::Button{"Stop it", true}, Notice::Button{"Resume", false}));
    EXPECT_THAT(toast.buttonStyles, ElementsAre(ToastButtonStyle{true, true}, ToastButtonStyle{false, false}));
    EXPECT_EQ(ToastModel::closeSymbol, "xmark");
    EXPECT_EQ(ToastModel::closeAccessibilityLabel, "Dismiss");
    EXPECT_EQ(ToastModel::width, 340);
    EXPECT_EQ(ToastModel::padding, 12);

    const auto passing = ToastModel::of({NotificationStyle::transient, "T", "", "", {}, {}}, 8);
    EXPECT_EQ(passing.symbol, "info.circle.fill");
    EXPECT_EQ(passing.tint, Tint::secondary);
    EXPECT_THAT(passing.notice.text, IsEmpty());
    EXPECT_THAT(passing.buttonStyles, IsEmpty());
}

TEST(ToastButtonStyle, colours)
{
    struct Case {
        const char* name;
        ToastButtonStyle style;
        ToastButtonStyle::Text text;
        ToastButtonStyle::Ground ground;
        double opacity;
    };
    using Text = ToastButtonStyle::Text;
    using Ground = ToastButtonStyle::Ground;
    constexpr Case cases[] = {
        {"ordinary", {false, false}, Text::primary, Ground::grey, 0.18},
        {"primary", {true, false}, Text::white, Ground::accent, 1.0},
        {"destructive", {false, true}, Text::red, Ground::red, 0.15},
        {"primary and destructive", {true, true}, Text::red, Ground::red, 0.15},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.style.text(), c.text);
        EXPECT_EQ(c.style.ground(), c.ground);
        EXPECT_EQ(c.style.groundOpacity(), c.opacity);
    }
}

TEST(ToastLayout, corners)
{
    using ToastLayout::corners;
    EXPECT_THAT(corners({0, 0, 1'920, 1'080}, {}), IsEmpty());
    EXPECT_THAT(corners({0, 25, 1'920, 1'055}, {{340, 80}, {340, 120}, {300, 60}}),
                ElementsAre(Point{1'568, 33}, Point{1'568, 125}, Point{1'608, 257}));
    EXPECT_THAT(corners({-1'280, -200, 1'280, 800}, {{340, 80}}), ElementsAre(Point{-352, -192}))
        << "a screen to the left of the first";
}

} // namespace
} // namespace quellon
