#include "QuellonCore/Measurement/MeteredNetwork.h"

#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace quellon::MeteredNetwork {

namespace {

/// In the order in which they are looked for.
constexpr std::array<std::string_view, 3> flagWords{"constrained", "expensive", "cellular"};

struct Route {
    std::string_view interface;
    std::string_view gateway;
};

/// The last "interface:" and "gateway:" of a route's text, empty where there is none. Views into the text.
Route parseRoute(std::string_view routeOutput)
{
    constexpr std::string_view interfaceKey = "interface:";
    constexpr std::string_view gatewayKey = "gateway:";
    Route route;
    while (!routeOutput.empty()) {
        const std::string_view line = trimmed(takeLine(routeOutput));
        if (line.starts_with(interfaceKey)) route.interface = trimmed(line.substr(interfaceKey.size()));
        if (line.starts_with(gatewayKey)) route.gateway = trimmed(line.substr(gatewayKey.size()));
    }
    return route;
}

} // namespace

MeteredStatus current(const Host& host, std::span<const std::string_view> hotspotGateways)
{
    const auto routeOutput = Shell::run(host, host.platform.tool(ToolRole::route));
    if (!routeOutput) return {true, "", "Route lookup failed — assuming metered"};
    const auto ifconfigOutput = [&host, interface = std::string{parseRoute(*routeOutput).interface}]() -> std::string {
        if (interface.empty()) return {};
        return Shell::run(host, host.platform.tool(ToolRole::ifconfig, {interface})).value_or("");
    };
    return evaluate(*routeOutput, ifconfigOutput, hotspotGateways);
}

MeteredStatus evaluate(std::string_view routeOutput, const std::function<std::string()>& ifconfigOutput,
                       std::span<const std::string_view> hotspotGateways)
{
    const auto [interface, gateway] = parseRoute(routeOutput);
    if (interface.empty()) return {false, "", "No default route — offline"};
    const auto result = [name = std::string{interface}](bool isMetered, const std::string& reason) {
        return MeteredStatus{isMetered, name, name + " · " + reason};
    };
    if (std::ranges::any_of(hotspotGateways,
                            [&gateway = gateway](auto prefix) { return gateway.starts_with(prefix); })) {
        return result(true, fmt::format("gateway {} (hotspot range)", gateway));
    }
    const std::string flags = ifconfigOutput();
    const auto word = std::ranges::find_if(
        flagWords, [&flags](std::string_view each) { return flags.find(each) != std::string::npos; });
    if (word != flagWords.end()) return result(true, fmt::format("flagged {}", *word));
    return result(false, fmt::format("gateway {} · not metered", gateway.empty() ? "?" : gateway));
}

} // namespace quellon::MeteredNetwork
