#pragma once

#include <string_view>

/// The two hosts that the program ever talks to, each only with the user's consent. A reserved domain, which never
/// resolves, until the product has its own.
namespace quellon::Endpoints {

/// Where an application's name is looked up.
inline constexpr std::string_view lookup = "https://api.quellon.example";
/// Where the newest version is told.
inline constexpr std::string_view updates = "https://updates.quellon.example";

} // namespace quellon::Endpoints
