#include "QuellonHost/Posix/PosixInterfaceAddresses.h"

#include <array>
#include <ifaddrs.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace quellon {

std::vector<InterfaceAddress> PosixInterfaceAddresses::ipv4Addresses() const
{
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) return {};
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> list{first, freeifaddrs};

    std::vector<InterfaceAddress> result;
    for (const ifaddrs* each = first; each != nullptr; each = each->ifa_next) {
        if (each->ifa_addr == nullptr || each->ifa_addr->sa_family != AF_INET) continue;
        std::array<char, NI_MAXHOST> text{};
        const int error = getnameinfo(each->ifa_addr, sizeof(sockaddr_in), text.data(),
                                      static_cast<socklen_t>(text.size()), nullptr, 0, NI_NUMERICHOST);
        if (error == 0) result.push_back({each->ifa_name, text.data()});
    }
    return result;
}

} // namespace quellon
