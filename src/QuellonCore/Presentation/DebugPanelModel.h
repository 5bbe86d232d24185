#pragma once

#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Presentation/ActionButton.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quellon {

/// What the debug panel's buttons do to the guard, on isolated state and nowhere else.
enum class DebugCommand {
    // A notification of each kind, about applications that don't exist.
    warn,
    warnOfSeveral,
    tellOfPause,
    tellOfQuit,
    tellOfLoop,
    askAboutBlocked,
    failNextSample,    ///< The next traffic sample counts as failed.
    shortenAutoResume, ///< What is frozen from now on is thawed by its watchdog after `shortAutoResume` seconds.
};

/// What the debug panel's controls do.
namespace DebugActions {

struct SelectPage {
    std::size_t index = 0;
    bool operator==(const SelectPage&) const = default;
};
/// Everything is read anew.
struct Refresh {
    bool operator==(const Refresh&) const = default;
};
/// The view has put the page's text on the clipboard, or a moment has passed since.
struct ShowCopied {
    bool copied = true;
    bool operator==(const ShowCopied&) const = default;
};
struct Run {
    DebugCommand command = DebugCommand::warn;
    bool operator==(const Run&) const = default;
};

} // namespace DebugActions

using DebugAction =
    std::variant<DebugActions::SelectPage, DebugActions::Refresh, DebugActions::ShowCopied, DebugActions::Run>;

/// What the debug panel remembers between two models.
struct DebugPanelState {
    std::size_t page = 0;
    bool copied = false;
    /// The outlines of the state files that were read so far, by the files' names.
    std::map<std::string, std::string, std::less<>> outlines;
    bool operator==(const DebugPanelState&) const = default;
};

/// A window for support: the guard's condition and the shape of its files, as texts to read and to copy. Nothing in it
/// tells of an application, an address or what was moved.
struct DebugPanelModel {
    using Button = ActionButton<DebugAction>;

    struct Page {
        std::string title;
        bool operator==(const Page&) const = default;
    };

    static constexpr std::string_view windowTitle = "Quellon Debug";
    static constexpr std::string_view pagesLabel = "Pages"; ///< What a screen reader calls the list of pages.
    /// In the place of a file's outline before it was read.
    static constexpr std::string_view readingText = "Reading…";
    /// How many lines of an outline are shown.
    static constexpr std::size_t mostLines = 5'000;
    /// The largest file whose outline is made: it takes fifteen times as much memory, which a guard does not get back.
    static constexpr std::size_t largestFile = std::size_t{4} * 1024 * 1024;
    /// The seconds of `shortenAutoResume`.
    static constexpr int shortAutoResume = 10;

    std::vector<Page> pages;
    std::size_t page = 0; ///< The one whose text is shown.
    std::string text;
    std::string note; ///< What may be done here, and what not.
    Button copy;      ///< Puts `text` on the clipboard.
    Button refresh;
    std::vector<Button> commands; ///< None on the user's real state.

    /// The model for what `snapshot` found of `engine` and `network` holds.
    [[nodiscard]] static DebugPanelModel of(const GuardEngine& engine, const DebugSnapshot& snapshot,
                                            const std::vector<NetworkLogEntry>& network, const DebugPanelState& state);

    /// The name of the state file that a page of this number shows; absent for the other pages.
    [[nodiscard]] static std::optional<std::string> file(const DebugSnapshot& snapshot, std::size_t page);

    /// In the place of the outline of a file that is larger than `largestFile`, which need not be read then.
    [[nodiscard]] static std::string tooLargeText();

    /// The outline of a state file with this content, cut behind `mostLines`, or why there is none. Takes a while for a
    /// large one; any thread.
    [[nodiscard]] static std::string outline(const std::optional<std::string>& content);

    bool operator==(const DebugPanelModel&) const = default;
};

/// Does what a button of the debug panel says, by `engine` or by `feed`; nothing on the user's real state.
void perform(DebugCommand command, GuardEngine& engine, NotificationFeed& feed);

} // namespace quellon
