#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/BudgetPresentation.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/Notice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What a user can tell the guard at any time, beside the answers to a notification.
enum class ControlCommand {
    startOrStop,
    selectPrevious,
    selectNext,
    resume, ///< The selected application, without a snooze.
    snooze, ///< The selected application; a paused one is also resumed.
    resumeAll,
    dismiss, ///< The notification, unanswered.
};

/// What a view with controls shows beside the overview, in words; it draws that and adds nothing. Every text is fit
/// for a line (`plainText`), except for what is no text but an identity.
struct ControlsModel {
    /// A command that has an effect now, and what it does: "stops". Selecting is offered as `selectNext`, for both
    /// directions.
    struct Offer {
        ControlCommand command = ControlCommand::startOrStop;
        std::string_view effect;
        bool operator==(const Offer&) const = default;
    };

    /// An application that is held frozen.
    struct Paused {
        std::string app;
        std::string since; ///< "5 min ago".
        bool selected = false;
        std::string id{}; ///< The entry's own (`SuspendedApp::id`), never shown.
        bool operator==(const Paused&) const = default;
    };

    using Notice = quellon::Notice;

    static constexpr std::string_view pausedHeading = "paused";
    static constexpr std::string_view quitEffect = "quits";

    MenuPresentation::MenuBar menuBar;
    std::optional<BudgetPresentation::Row> budget;
    std::vector<Paused> paused;             ///< In the engine's order.
    std::optional<std::size_t> selectedRow; ///< Where the selected application stands among the engine's `usage`.
    std::optional<Notice> question;         ///< The oldest persistent notification that waits for an answer.
    std::string questionPlace;              ///< "1 of 3" while more of them wait.
    bool held = false;                      ///< The question is new: what is pressed now is not taken for an answer.
    std::optional<Notice> note;             ///< The latest transient one.
    std::vector<Offer> offers;              ///< In the order in which they are shown.

    bool operator==(const ControlsModel&) const = default;
};

} // namespace quellon
