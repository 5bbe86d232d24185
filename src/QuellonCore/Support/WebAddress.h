#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// The parts of a URL that decide whether it is one to open.
struct WebAddress {
    std::string scheme; ///< In lower case.
    std::string host;   ///< As written, without user, port and the brackets of an IPv6 address; may be empty.

    /// Reads an absolute URL by RFC 3986. Absent for a text that is none: without a scheme, with a blank, a control
    /// character or anything else that must be escaped where it stands, a "%" without two hexadecimal digits, a port
    /// that is no number, brackets around anything but an IPv6 address.
    [[nodiscard]] static std::optional<WebAddress> parse(std::string_view text);

    bool operator==(const WebAddress&) const = default;
};

} // namespace quellon
