#pragma once

#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Host/Platform.h"

#include <string>
#include <string_view>

/// A snapshot as a text that a user can read and send.
namespace quellon::DebugExport {

/// The text, in lines without a line end behind the last. `home` is the user's home folder, which is written "~";
/// `platform` has the system's words. Line ends and the like in the names of files are replaced, as `plainText` does.
[[nodiscard]] std::string text(const DebugSnapshot& snapshot, std::string_view home, const Platform& platform);

/// `path` with "~" in the place of the home folder, where it is that or lies below it. A slash at the end of `home`
/// makes no difference; an empty `home` changes nothing.
[[nodiscard]] std::string redactHome(std::string_view path, std::string_view home);

} // namespace quellon::DebugExport
