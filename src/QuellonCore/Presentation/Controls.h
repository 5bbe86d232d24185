#pragma once

#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/ControlsModel.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The user's hand on the guard: it keeps the notifications that are to be seen and the application that is selected,
/// and carries out what the user says. A view draws its model and hands on what is pressed. Main thread only.
class Controls {
public:
    /// How long a notification stays that goes by itself.
    static constexpr Seconds transientTime{6.0};
    /// How long a question that has taken another's place takes no answer: what the user presses in that moment was
    /// meant for the other one.
    static constexpr Seconds replacedTime{0.5};

    /// `changed` is called in a turn of the run loop after the model has changed other than by the engine.
    Controls(GuardEngine& engine, NotificationFeed& feed, std::function<void()> changed);
    Controls(const Controls&) = delete;
    Controls& operator=(const Controls&) = delete;

    /// What is to be seen now.
    [[nodiscard]] ControlsModel model(Date now);

    /// Does nothing for what the model does not offer.
    void perform(ControlCommand command);

    /// Presses a button of the question, 0 for the first; with that the question is answered. Does nothing when there
    /// is no such button, or the question has only just taken another's place.
    void answer(std::size_t button);

private:
    struct Shown {
        NotificationPlan plan;
        RunLoop::Handle end;
        RunLoop::Handle hold; ///< While it takes no answer.
    };
    using Place = std::optional<Shown> Controls::*;

    void show(const NotificationPlan& plan);
    void soon();
    /// Drops a question that nobody has to answer any more.
    void settle();
    /// The labels that can be selected, each once: what is paused, then what moves.
    [[nodiscard]] std::vector<std::string> selectable() const;
    /// The selected application: the user's choice while it is listed, otherwise the first that is paused.
    [[nodiscard]] std::optional<std::string> selected() const;
    [[nodiscard]] bool isPaused(const std::string& app) const;
    [[nodiscard]] std::vector<ControlsModel::Offer> offers() const;
    void select(int step);

    GuardEngine& engine_;
    std::function<void()> changed_;
    std::optional<std::string> choice_;
    std::optional<Shown> question_;
    std::optional<Shown> note_;
    RunLoop::Handle soon_;
    NotificationFeed::Subscription subscription_;
};

} // namespace quellon
