#pragma once

#include "QuellonCore/Presentation/Controls.h"

#include "QuellonCore/Engine/ActingWorld.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {

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
    ActingWorld::Lines perform(ControlCommand command)
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
        return perform(ControlCommand::dismiss);
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

} // namespace quellon
