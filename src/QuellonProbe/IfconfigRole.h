#pragma once

#include "QuellonProbe/KernelNetwork.h"
#include "QuellonProbe/LinkKind.h"
#include "QuellonProbe/NetworkManager.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Why an interface may cost money, in the words of the role's text.
struct LinkCost {
    bool constrained = false; ///< the user marked the connection as metered
    bool expensive = false;   ///< NetworkManager guesses that it is metered, or the link under a tunnel is
    bool cellular = false;    ///< it is a modem

    friend bool operator==(const LinkCost&, const LinkCost&) = default;
};

/// The role `ifconfig`: one interface with its addresses, and whether it is metered. Not thread-safe.
class IfconfigRole {
public:
    /// The objects referred to outlive this one.
    IfconfigRole(KernelNetwork& network, const DeviceFolder& devices, NetworkManager& manager)
        : network_{network}, devices_{devices}, manager_{manager}
    {
    }

    /// The text() of the interface; the empty text when there is none of this name. Waits no more than a second for
    /// NetworkManager; without its answer the interface is described without it. Absent, after a complaint, when the
    /// kernel refuses to tell.
    [[nodiscard]] std::optional<std::string> answer(std::string_view interface);

    /// A line of name, flags and MTU; then, each behind a tab, "ether" with a hardware address of 6 bytes, "inet" and
    /// "inet6" with the addresses, the words "constrained", "expensive" and "cellular" as they apply, and "status".
    /// Unless they are part of the interface's name, which is its owner's own affair, those words stand nowhere else.
    [[nodiscard]] static std::string text(const Link& link, const std::vector<LinkAddress>& addresses,
                                          const LinkCost& cost);

    /// What a device's own description says: NetworkManager's word, if there is one, and the kind of link. An explicit
    /// "not metered" of the user leaves nothing.
    [[nodiscard]] static LinkCost ownCost(LinkKind kind, const std::optional<ManagedDevice>& device);

private:
    LinkCost cost(const Link& link, MessageBus::Deadline deadline);
    bool underlayIsMetered(MessageBus::Deadline deadline);

    KernelNetwork& network_;
    const DeviceFolder& devices_;
    NetworkManager& manager_;
};

} // namespace quellon
