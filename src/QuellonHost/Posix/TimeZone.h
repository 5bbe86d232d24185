#pragma once

#include "QuellonCore/Host/ProcessControl.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Which time zone the user lives in.
namespace quellon::TimeZone {

/// The IANA name of the user's zone: that of the variable TZ, otherwise that of the zone which /etc/localtime links to.
/// "UTC" where neither tells one. A TZ that holds a rule instead of a name is given as it is.
[[nodiscard]] std::string current(const ProcessControl& processes);

/// The same from the value of TZ and from where the link leads.
[[nodiscard]] std::string name(const std::optional<std::string>& variable, const std::filesystem::path& link);

} // namespace quellon::TimeZone
