#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// The page about the program.
struct AboutModel {
    /// Which program runs where.
    struct Build {
        std::optional<std::string> shortVersion; ///< Such as "1.2.0".
        std::optional<std::string> build;        ///< A number of the build.
        std::string systemVersion;               ///< "{major}.{minor}.{patch}".
        bool operator==(const Build&) const = default;
    };

    struct Link {
        std::string title;
        std::string url;
        bool operator==(const Link&) const = default;
    };

    /// How long "Copied ✓" stays.
    static constexpr Seconds copiedTime{2.0};
    static constexpr std::string_view startTitle = "Start at login"; ///< Beside the switch.

    std::string name; ///< The product's.
    std::string version;
    std::array<Link, 2> links;
    FormButton copy;         ///< Puts `diagnostics` on the clipboard.
    std::string diagnostics; ///< What is copied.
    std::string note;
    std::optional<FormSwitch> startAtLogin;  ///< Absent where nobody knows the session.
    std::optional<std::string> startRefusal; ///< Why the switch did not take, in a sentence.

    [[nodiscard]] static AboutModel of(const GuardEngine& engine, const Build& build, const SettingsState& state);

    bool operator==(const AboutModel&) const = default;
};

} // namespace quellon
