#include "QuellonCore/Measurement/LANClassifier.h"

#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <algorithm>
#include <cstddef>

namespace quellon::LANClassifier {

namespace {

constexpr std::string_view arrow = "<->";

/// The bytes of an address in the order of its text.
using IPv4 = std::array<std::uint8_t, 4>;

std::optional<IPv4> parseIPv4(std::string_view host)
{
    constexpr std::ptrdiff_t points = 3;
    if (std::ranges::count(host, '.') != points) return std::nullopt;
    const auto takePart = [&host] { return parseWhole<std::uint8_t>(takeUntil(host, '.')); };
    const auto a = takePart();
    const auto b = takePart();
    const auto c = takePart();
    const auto d = takePart();
    if (!a || !b || !c || !d) return std::nullopt;
    return IPv4{*a, *b, *c, *d};
}

bool isPrivateIPv4(const IPv4& address)
{
    const unsigned a = address[0];
    const unsigned b = address[1];
    if (a == 0 || a == 10 || a == 127) return true;
    if (a == 192) return b == 168;
    if (a == 172) return b >> 4U == 1;
    if (a == 169) return b == 254;
    return a >= 224;
}

constexpr char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsLowered(std::string_view text, std::string_view lower)
{
    return std::ranges::equal(text, lower, {}, lowered);
}

bool beginsLowered(std::string_view text, std::string_view lower)
{
    return text.size() >= lower.size() && equalsLowered(text.substr(0, lower.size()), lower);
}

bool endsLowered(std::string_view text, std::string_view lower)
{
    return text.size() >= lower.size() && equalsLowered(text.substr(text.size() - lower.size()), lower);
}

/// The local side of a label without the protocol word before it.
std::string_view withoutProtocol(std::string_view local)
{
    std::string_view rest = local;
    const std::string_view word = takeWord(rest);
    if (rest.find_first_not_of(' ') != std::string_view::npos) return rest;
    return word.empty() ? local : word;
}

} // namespace

bool isLANConnection(std::string_view connection)
{
    const auto middle = connection.find(arrow);
    if (middle == std::string_view::npos) return false;
    const std::string_view remote = connection.substr(middle + arrow.size());
    if (isLANEndpoint(remote)) return true;
    if (!trimmed(remote).starts_with('*')) return false;
    const auto localPort = port(withoutProtocol(connection.substr(0, middle)));
    return localPort && std::ranges::find(discoveryPorts, *localPort) != discoveryPorts.end();
}

bool isLANEndpoint(std::string_view endpoint)
{
    const std::string_view text = trimmed(endpoint);
    if (text.starts_with('*')) return false;
    const auto name = host(text);
    return name && isPrivate(*name);
}

bool isPrivate(std::string_view host)
{
    if (const auto address = parseIPv4(host)) return isPrivateIPv4(*address);
    if (host == "::1" || host == "::") return true;
    constexpr std::array<std::string_view, 4> prefixes{"fe80", "ff", "fc", "fd"};
    return std::ranges::any_of(prefixes, [host](std::string_view prefix) { return beginsLowered(host, prefix); }) ||
           endsLowered(host, ".local");
}

std::optional<std::string_view> host(std::string_view endpoint)
{
    std::string_view name = endpoint;
    if (endpoint.starts_with('[')) {
        const auto end = endpoint.find(']');
        if (end == std::string_view::npos) return std::nullopt;
        name = endpoint.substr(1, end - 1);
    } else {
        // An address of the sixth version is full of colons, so its port is set off by a point.
        const bool isIPv6 = endpoint.find(':') != endpoint.rfind(':');
        name = endpoint.substr(0, endpoint.rfind(isIPv6 ? '.' : ':'));
    }
    name = name.substr(0, name.find('%'));
    if (name.empty()) return std::nullopt;
    return name;
}

std::optional<std::int64_t> port(std::string_view endpoint)
{
    const std::string_view text = trimmed(endpoint);
    const auto separator = text.find_last_of(":.");
    if (separator == std::string_view::npos) return std::nullopt;
    return parseWhole<std::int64_t>(text.substr(separator + 1));
}

} // namespace quellon::LANClassifier
