#include "QuellonCore/Support/WebAddress.h"

#include "QuellonCore/Support/Text.h"

#include <algorithm>
#include <cstddef>

namespace quellon {

namespace {

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isHexadecimal(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isScheme(std::string_view text)
{
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || std::string_view{"+-."}.find(c) != std::string_view::npos;
    });
}

/// Whether every character may stand in a URL as it is, and every escape is whole.
bool isEscaped(std::string_view text)
{
    constexpr std::string_view others = "-._~:/?#[]@!$&'()*+,;=";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isLetter(c) || isDigit(c) || others.find(c) != std::string_view::npos) continue;
        if (c != '%' || i + 2 >= text.size() || !isHexadecimal(text[i + 1]) || !isHexadecimal(text[i + 2]))
            return false;
        i += 2;
    }
    return true;
}

/// The host of "user@host:port"; absent when host or port can't be one.
std::optional<std::string_view> hostOf(std::string_view authority)
{
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) authority.remove_prefix(at + 1);
    std::string_view host;
    if (authority.starts_with('[')) {
        const auto end = authority.find(']');
        if (end == std::string_view::npos) return std::nullopt;
        host = authority.substr(1, end - 1);
        authority.remove_prefix(end + 1);
        const bool isAddress =
            host.find(':') != std::string_view::npos &&
            std::all_of(host.begin(), host.end(), [](char c) { return isHexadecimal(c) || c == ':' || c == '.'; });
        if (!isAddress || (!authority.empty() && authority.front() != ':')) return std::nullopt;
    } else {
        host = authority.substr(0, authority.find(':'));
        authority.remove_prefix(host.size());
        if (host.find_first_of("[]") != std::string_view::npos) return std::nullopt;
    }
    if (!authority.empty()) authority.remove_prefix(1);
    return std::all_of(authority.begin(), authority.end(), isDigit) ? std::optional{host} : std::nullopt;
}

} // namespace

std::optional<WebAddress> WebAddress::parse(std::string_view text)
{
    const auto colon = text.find(':');
    if (colon == std::string_view::npos || !isScheme(text.substr(0, colon)) || !isEscaped(text)) return std::nullopt;
    WebAddress address;
    address.scheme = text.substr(0, colon);
    std::transform(address.scheme.begin(), address.scheme.end(), address.scheme.begin(), lowered);
    const std::string_view rest = text.substr(colon + 1);
    if (!rest.starts_with("//")) return address;
    const auto host = hostOf(rest.substr(2, rest.find_first_of("/?#", 2) - 2));
    if (!host) return std::nullopt;
    address.host = *host;
    return address;
}

} // namespace quellon
