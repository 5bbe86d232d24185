#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/Tint.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// What the menu of the tray item does.
enum class TrayCommand { open, startOrStop, resumeAll, settings, quit };

/// What the tray item asks of the desktop. Each may be empty.
struct TrayDesktop {
    /// Brings the panel up.
    std::function<void()> openPanel;
    /// Opens the settings window, on the page that it stands on.
    std::function<void()> openSettings;
    /// Ends the program the ordinary way.
    std::function<void()> quit;
};

/// Carries out what was chosen. `startOrStop` starts a guard that is off and stops one that runs. Main thread only.
void perform(TrayCommand command, GuardEngine& engine, const TrayDesktop& desktop);

/// The item in the tray, in words: what draws it adds nothing. Names that other programs had a hand in are fit for a
/// line (`plainText`).
struct TrayModel {
    /// A line of the menu.
    struct Item {
        std::string title;                  ///< Empty for a separator.
        std::optional<TrayCommand> command; ///< Absent for what only tells or separates.
        bool enabled = true;
        bool separator = false;
        bool operator==(const Item&) const = default;
    };

    /// How many paused applications the tool tip names.
    static constexpr std::size_t mostNames = 3;

    MenuPresentation::MenuBar menuBar;
    Tint tint = Tint::secondary; ///< Of the symbol.
    /// What of the title is short enough to be drawn over the symbol: a number, with or without "%". Otherwise empty.
    std::string badge;
    bool needsAttention = false; ///< While a warning has the title.
    /// "Quellon: Guarding · 43% of the plan used": the item's name for a screen reader, and the first line of the tool
    /// tip.
    std::string accessibleText;
    std::string toolTip;     ///< What stands below that: lines, one for each thing to know. May be empty.
    std::vector<Item> items; ///< The first opens the panel: a host that opens the menu on a click has nothing else.

    /// The model of the engine's values at `now`.
    [[nodiscard]] static TrayModel of(const GuardEngine& engine, Date now);

    /// When the model changes although nothing happens: a warning's time in the title is over then. Absent when it
    /// stays as it is. Later than `now`.
    [[nodiscard]] static std::optional<Date> nextChange(const GuardEngine& engine, Date now);

    bool operator==(const TrayModel&) const = default;
};

} // namespace quellon
