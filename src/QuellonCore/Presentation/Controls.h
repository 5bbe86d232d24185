#pragma once

#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/ControlsModel.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The user's hand on the guard: it keeps the notifications that are to be seen and the application that is selected,
/// and carries out what the user says. A view draws its model and hands on what is pressed. Main thread only.
class Controls {
public:
    /// How long a transient notification stays.
    static constexpr Seconds transientTime = Notice::transientTime;
    /// How many persistent notifications wait for an answer.
    static constexpr std::size_t mostQuestions = Notice::mostWaiting;
    /// How long nothing can be answered or dismissed after another notification has come to its turn.
    static constexpr Seconds holdTime = Notice::holdTime;

    /// `changed` is called in a turn of the run loop after the model has changed other than by the engine.
    Controls(GuardEngine& engine, NotificationFeed& feed, std::function<void()> changed);
    Controls(const Controls&) = delete;
    Controls& operator=(const Controls&) = delete;

    /// What is to be seen now.
    [[nodiscard]] ControlsModel model(Date now);

    /// Does nothing for what the model does not offer.
    void perform(ControlCommand command);

    /// Resumes the paused application whose entry has this id in the model, without a snooze. Does nothing when there
    /// is none.
    void resume(const std::string& id);

    /// Presses a button of the question, 0 for the first; with that the question is answered, and the next one has its
    /// turn. Does nothing when there is no such button, or within `holdTime` of the question's turn.
    void answer(std::size_t button);

private:
    struct Notification {
        NotificationPlan plan;
        std::uint64_t serial; ///< They are numbered as they come.
    };

    void show(const NotificationPlan& plan);
    void soon();
    /// Lets `holdTime` begin; its end is a change of the model.
    void hold();
    /// Ends the turn of the question that is shown; there must be one.
    NotificationPlan takeQuestion();
    /// Drops the questions that nobody has to answer any more.
    void settle();
    /// Whether none of the answers would do anything: they only resume, and nothing of it is paused any more.
    [[nodiscard]] bool isMoot(const NotificationPlan& plan) const;
    /// The labels that can be selected, each once: what is paused, then what moves.
    [[nodiscard]] std::vector<std::string> selectable() const;
    /// The selected application: the user's choice while it is listed, otherwise the first that is paused.
    [[nodiscard]] std::optional<std::string> selected() const;
    [[nodiscard]] bool isPaused(const std::string& app) const;
    [[nodiscard]] std::vector<ControlsModel::Offer> offers() const;
    void select(int step);
    void dismiss();

    GuardEngine& engine_;
    std::function<void()> changed_;
    std::optional<std::string> choice_;
    std::uint64_t lastSerial_ = 0;
    std::deque<Notification> questions_; ///< The persistent ones, oldest first; the first is shown.
    std::optional<Notification> note_;   ///< The latest transient one.
    RunLoop::Handle noteEnd_;
    RunLoop::Handle hold_; ///< While it stands, nothing is answered or dismissed.
    RunLoop::Handle soon_;
    NotificationFeed::Subscription subscription_;
};

} // namespace quellon
