#include "QuellonProbe/NetworksetupRole.h"

#include "QuellonProbe/Text.h"

#include <array>
#include <cstddef>

namespace quellon {

std::optional<std::string> NetworksetupRole::answer(KernelNetwork& network, const DeviceFolder& devices)
{
    std::vector<Link> links;
    const int error = network.links(links);
    if (error != 0) {
        complain("the interfaces can't be read", error);
        return std::nullopt;
    }
    std::vector<Port> ports;
    ports.reserve(links.size());
    for (const auto& link : links) {
        ports.push_back({linkKind(link, devices.facts(link)), link.name, link.hardwareAddress});
    }
    return text(ports);
}

std::string NetworksetupRole::text(const std::vector<Port>& ports)
{
    std::array<int, static_cast<std::size_t>(LinkKind::other) + 1> counts{};
    std::string text;
    for (const auto& port : ports) {
        if (port.kind == LinkKind::loopback) continue;
        const int count = ++counts.at(static_cast<std::size_t>(port.kind));
        text.append("\nHardware Port: ").append(portName(port.kind));
        if (count > 1) text += " " + std::to_string(count);
        text += "\nDevice: " + cleanName(port.device);
        const auto address = hardwareText(port.hardwareAddress);
        text += "\nEthernet Address: " + (address.empty() ? "N/A" : address) + "\n";
    }
    return text;
}

} // namespace quellon
