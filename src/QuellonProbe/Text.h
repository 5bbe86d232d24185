#pragma once

#include <string>
#include <string_view>

namespace quellon {

/// What a name may hold besides ordinary text.
enum class Commas { kept, replaced };

/// A name of unknown origin as it may stand in a row of text. What isn't UTF-8 becomes U+FFFD, one per broken sequence;
/// a control character (C0 with line feed and tab, DEL, C1) becomes "?"; with `Commas::replaced` a comma becomes ";",
/// for rows whose fields are set off by commas. Blanks stay.
[[nodiscard]] std::string cleanName(std::string_view name, Commas commas = Commas::kept);

/// `address` (4 or 16 bytes, network order) in numbers, IPv6 in its shortest form; the empty text for another length.
[[nodiscard]] std::string addressText(std::string_view address);

/// Writes "quellon-probe: ", the text and a line feed on standard error, in one piece. Never waits: nothing is
/// written where there is no room for it.
void complain(std::string_view text);

/// complain() with the system's words for the error number behind the text.
void complain(std::string_view text, int error);

} // namespace quellon
