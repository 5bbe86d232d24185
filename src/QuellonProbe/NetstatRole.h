#pragma once

#include "QuellonProbe/KernelNetwork.h"

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// The role `netstat`: the counters of a whole interface.
namespace NetstatRole {

/// The text() of the interface; the empty text when there is none of this name. Absent, after a complaint, when the
/// kernel refuses to tell.
[[nodiscard]] std::optional<std::string> answer(KernelNetwork& network, std::string_view interface);

/// A header and one row, "Name Mtu Network Address Ipkts Ierrs Ibytes Opkts Oerrs Obytes Coll", blanks between. The
/// name is never cut, and followed by "*" when the interface is down; the network is "<Link#INDEX>"; the address is
/// left out unless it has 6 bytes. The empty text for a link without counters.
[[nodiscard]] std::string text(const Link& link);

} // namespace NetstatRole

} // namespace quellon
