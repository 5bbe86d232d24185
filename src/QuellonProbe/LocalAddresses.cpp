#include "QuellonProbe/LocalAddresses.h"

#include "QuellonProbe/KernelNetwork.h"
#include "QuellonProbe/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

namespace quellon {

namespace {

// Interfaces come and go (containers); what is remembered of those that are gone is thrown away beyond this many.
constexpr std::size_t mostNames = 256;

} // namespace

int LocalAddresses::refresh(NetlinkSocket& route)
{
    NetlinkRequest request{RTM_GETADDR};
    request.add(ifaddrmsg{});
    std::vector<Entry> entries;
    const int error = route.dump(
        request, [&] { entries.clear(); },
        [&](const NetlinkMessage& message) {
            if (message.type != RTM_NEWADDR) return;
            const auto found = KernelMessage::address(message.body);
            if (!found) return;
            const auto address = InetAddress::from(std::as_bytes(std::span{found->local}));
            if (address) entries.push_back({*address, static_cast<std::uint32_t>(found->index)});
        });
    if (error != 0 && error != EINTR) return error;
    set(std::move(entries));
    return 0;
}

void LocalAddresses::set(std::vector<Entry> entries)
{
    entries_ = std::move(entries);
    std::ranges::sort(entries_);
    if (names_.size() > mostNames) names_.clear();
    for (auto& [interface, name] : names_) name.isFresh = false;
}

bool LocalAddresses::contains(const InetAddress& address) const
{
    return interface(address) != 0;
}

std::uint32_t LocalAddresses::interface(const InetAddress& address, std::uint32_t preferred) const
{
    const auto [first, last] = std::ranges::equal_range(entries_, address, {}, &Entry::address);
    if (first == last) return 0;
    const bool hasPreferred = std::any_of(first, last, [&](const Entry& e) { return e.interface == preferred; });
    return hasPreferred ? preferred : first->interface;
}

bool LocalAddresses::isExternal(const Endpoints& ends) const
{
    return !ends.local.isLoopback() && !ends.remote.isLoopback() && !contains(ends.remote);
}

const std::string& LocalAddresses::name(std::uint32_t interface)
{
    auto& name = names_[interface];
    if (name.isFresh) return name.text;
    std::array<char, IF_NAMESIZE> buffer{};
    if (::if_indextoname(interface, buffer.data())) name.text = cleanName(buffer.data(), Commas::replaced);
    if (name.text.empty()) name.text = "?";
    name.isFresh = true;
    return name.text;
}

} // namespace quellon
