#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <array>
#include <optional>
#include <string>

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

    std::string name; ///< The product's.
    std::string version;
    std::array<Link, 2> links;
    FormButton copy;         ///< Puts `diagnostics` on the clipboard.
    std::string diagnostics; ///< What is copied.
    std::string note;

    [[nodiscard]] static AboutModel of(const GuardEngine& engine, const Build& build, bool copied);

    bool operator==(const AboutModel&) const = default;
};

} // namespace quellon
