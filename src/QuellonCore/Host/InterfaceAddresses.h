#pragma once

#include <string>
#include <vector>

namespace quellon {

/// One IPv4 address of one network interface.
struct InterfaceAddress {
    std::string name; ///< The device, such as "wlan0".
    std::string ipv4; ///< The address in dotted decimal.
    bool operator==(const InterfaceAddress&) const = default;
};

/// Seam: the machine's addresses. May be asked from any thread.
class InterfaceAddresses {
public:
    virtual ~InterfaceAddresses() = default;

    /// Every IPv4 address of every interface, up or down, in the system's order; empty when the system refuses. An
    /// address that can't be turned into text is left out.
    [[nodiscard]] virtual std::vector<InterfaceAddress> ipv4Addresses() const = 0;
};

} // namespace quellon
