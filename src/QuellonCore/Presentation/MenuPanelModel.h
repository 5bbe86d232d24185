#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/BudgetPresentation.h"
#include "QuellonCore/Presentation/DateTexts.h"
#include "QuellonCore/Presentation/LivenessRowModel.h"
#include "QuellonCore/Presentation/PanelAction.h"
#include "QuellonCore/Presentation/PanelSymbols.h"
#include "QuellonCore/Presentation/Tint.h"
#include "QuellonCore/Presentation/UsageListModel.h"
#include "QuellonCore/Support/EnumTable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The panel under the menu-bar item, in words: the view draws it and adds nothing. Names and messages that other
/// programs had a hand in are fit for a line (`plainText`).
struct MenuPanelModel {
    /// What stands one below the other, each but the first under a divider.
    enum class Section {
        header,
        tetherHint,
        updateConsent,
        updateAvailable,
        budget,
        usage,
        paused,
        liveness,
        footer,
    };
    /// In their order.
    static constexpr EnumTable<Section, 9> sectionTable{{{
        {Section::header, "header", "Status"},
        {Section::tetherHint, "tetherHint", "Idle phone"},
        {Section::updateConsent, "updateConsent", "Update checks"},
        {Section::updateAvailable, "updateAvailable", "Update"},
        {Section::budget, "budget", "Plan"},
        {Section::usage, "usage", "Usage"},
        {Section::paused, "paused", "Paused"},
        {Section::liveness, "liveness", "Activity"},
        {Section::footer, "footer", "Actions"},
    }}};

    struct Header {
        Tint tint = Tint::secondary; ///< Of the dot before the title.
        std::string_view title;
        std::string detail;
        bool isOn = false;
        PanelButton toggle; ///< A switch without a title.
        bool operator==(const Header&) const = default;
    };

    /// Something to know or to decide.
    struct NoticeRow {
        std::string_view symbol;
        Tint symbolTint = Tint::primary;
        std::string title;
        std::string text;
        std::optional<std::string> steps; ///< Several lines.
        std::vector<PanelButton> buttons;
        bool operator==(const NoticeRow&) const = default;
    };

    /// A menu: the name between two symbols.
    struct ProfileSwitcher {
        struct Item {
            PanelButton button;
            std::string_view symbol; ///< A tick for the active profile, otherwise empty.
            bool operator==(const Item&) const = default;
        };
        std::string_view accessibilityLabel;
        std::string_view symbol;
        std::string name; ///< The active profile's.
        std::string_view menuSymbol;
        std::vector<Item> items; ///< In the order of the settings.
        bool operator==(const ProfileSwitcher&) const = default;
    };

    /// An application that is held frozen.
    struct Paused {
        std::string name;
        PanelButton resume;
        bool operator==(const Paused&) const = default;
    };

    /// Of the window that it is, for those who don't see it.
    static constexpr std::string_view windowTitle = "Quellon";
    /// Of what matters less: the header's detail, the switcher, the limit, what the plan still holds, and what an
    /// application is.
    static constexpr Tint quietTint = Tint::secondary;
    static constexpr std::string_view pausedTitle = "Paused";
    /// Of each paused application.
    static constexpr std::string_view pausedSymbol = PanelSymbols::paused;
    static constexpr Tint pausedTint = Tint::orange;
    /// Of the warning in the place of the usage.
    static constexpr std::string_view warningSymbol = PanelSymbols::warning;
    static constexpr Tint warningTint = Tint::orange;

    Header header;
    std::optional<NoticeRow> tetherHint;
    std::optional<NoticeRow> updateConsent;
    std::optional<NoticeRow> updateAvailable; ///< Never beside the former.
    std::optional<ProfileSwitcher> profiles;  ///< Above the budget, and not without it.
    std::optional<BudgetPresentation::Row> budget;
    UsageListModel usage;
    PanelButton resumeAll;      ///< Beside the title of the paused.
    std::vector<Paused> paused; ///< In the engine's order.
    LivenessRowModel liveness;
    std::vector<PanelButton> footer; ///< The first at the left, the last at the right.

    /// The switcher above a plan's budget; absent without a budget, and when there is only one plan to choose.
    [[nodiscard]] static std::optional<ProfileSwitcher> profileSwitcher(const GuardSettings& settings,
                                                                        const std::optional<BudgetStatus>& budget);

    /// What of the table is shown.
    [[nodiscard]] std::vector<Section> sections() const;

    /// The model of the engine's values at `now`. `dates` is how the user's language writes dates; times and days are
    /// those of the engine's clock.
    [[nodiscard]] static MenuPanelModel of(const GuardEngine& engine, Date now, const PanelState& state = {},
                                           const DateTexts& dates = {});

    bool operator==(const MenuPanelModel&) const = default;
};

} // namespace quellon
