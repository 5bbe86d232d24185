#pragma once

#include "QuellonProbe/KernelNetwork.h"
#include "QuellonProbe/LinkKind.h"

#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The role `networksetup`: names for the interfaces that a person can tell apart.
namespace NetworksetupRole {

/// One interface under the name of its kind.
struct Port {
    LinkKind kind = LinkKind::other;
    std::string device;
    std::string hardwareAddress; ///< bytes; may be empty

    friend bool operator==(const Port&, const Port&) = default;
};

/// The text() of all interfaces, ascending by index. Absent, after a complaint, when the kernel refuses to tell.
[[nodiscard]] std::optional<std::string> answer(KernelNetwork& network, const DeviceFolder& devices);

/// Per port an empty line and the lines "Hardware Port", "Device" and "Ethernet Address" ("N/A" without one). The
/// loopback is left out. The second port of the same name is called "NAME 2", and so on.
[[nodiscard]] std::string text(const std::vector<Port>& ports);

} // namespace NetworksetupRole

} // namespace quellon
