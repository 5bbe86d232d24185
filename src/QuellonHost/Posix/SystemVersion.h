#pragma once

#include <string>
#include <string_view>

/// Which release of the system this is.
namespace quellon::SystemVersion {

/// The first three numbers of a release's name, in the form "6.1.0"; missing ones are 0. Nothing of what distinguishes
/// one build or machine from another is in it.
[[nodiscard]] std::string numbers(std::string_view release);

/// The `numbers` of the release of the kernel that runs.
[[nodiscard]] std::string kernel();

} // namespace quellon::SystemVersion
