#pragma once

#include "QuellonProbe/InetSocket.h"
#include "QuellonProbe/Netlink.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace quellon {

/// The machine's own addresses and the interfaces that carry them. Not thread-safe.
class LocalAddresses {
public:
    struct Entry {
        InetAddress address;
        std::uint32_t interface = 0; ///< index

        friend auto operator<=>(const Entry&, const Entry&) = default;
    };

    /// Asks the kernel anew through a NETLINK_ROUTE socket. 0 or the error number, the old table then stays.
    int refresh(NetlinkSocket& route);
    /// Replaces the table.
    void set(std::vector<Entry> entries);

    [[nodiscard]] bool contains(const InetAddress& address) const;
    /// Index of the interface that carries `address`; `preferred`, when it is one of several. 0 when none does.
    [[nodiscard]] std::uint32_t interface(const InetAddress& address, std::uint32_t preferred = 0) const;

    /// False for a connection that never leaves the machine: one end is a loopback address, or the remote end is one of
    /// the machine's own.
    [[nodiscard]] bool isExternal(const Endpoints& ends) const;

    /// Name of an interface, clean for a row; "?" for 0, and the last name known for one that is gone.
    [[nodiscard]] const std::string& name(std::uint32_t interface);

private:
    struct Name {
        std::string text;
        bool isFresh = false; ///< asked for since the last refresh
    };

    std::vector<Entry> entries_; ///< ascending
    std::map<std::uint32_t, Name> names_;
};

} // namespace quellon
