#pragma once

#include "QuellonCore/Measurement/AppEdition.h"

#include <optional>
#include <string>
#include <string_view>

/// Which build this is, and how its makers are reached.
namespace quellon::AboutInfo {

// Of a reserved domain, which never resolves, until the product has its own.
inline constexpr std::string_view website = "https://quellon.example";
inline constexpr std::string_view contactEmail = "support@quellon.example";

/// The version for people: "1.2.0 (7)", or without a build "1.2.0". "dev" without a version, whatever `build` says.
[[nodiscard]] std::string displayVersion(std::optional<std::string_view> shortVersion,
                                         std::optional<std::string_view> build);

/// A letter to the makers with this version in its subject, as a URL.
[[nodiscard]] std::string feedbackURL(std::string_view version);

/// Four lines for a letter to the makers. `systemName` is the word for the system, `os` its version.
[[nodiscard]] std::string diagnostics(AppEdition edition, std::string_view version, std::string_view systemName,
                                      std::string_view os, bool isMetered, bool isRunning);

} // namespace quellon::AboutInfo
