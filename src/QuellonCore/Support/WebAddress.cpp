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

/// Whether every character is a letter, a digit, one of `others` or a whole escape.
bool isMadeOf(std::string_view text, std::string_view others)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isLetter(c) || isDigit(c) || others.find(c) != std::string_view::npos) continue;
        if (c != '%' || i + 2 >= text.size() || !isHexadecimal(text[i + 1]) || !isHexadecimal(text[i + 2]))
            return false;
        i += 2;
    }
    return true;
}

constexpr std::string_view inNames = "-._~!$&'()*+,;=";
constexpr std::string_view inPaths = "-._~!$&'()*+,;=:@/?";

/// The groups of an IPv6 address: 1 to 4 hexadecimal digits each, an IPv4 address at the end counted as two. Absent
/// when one is none.
std::optional<int> groupCount(std::string_view groups)
{
    int count = 0;
    while (!groups.empty()) {
        const bool isLast = groups.find(':') == std::string_view::npos;
        const std::string_view group = takeUntil(groups, ':');
        if (isLast && group.find('.') != std::string_view::npos) {
            constexpr std::string_view decimal = "0123456789.";
            const bool isDotted = group.find_first_not_of(decimal) == std::string_view::npos &&
                                  std::count(group.begin(), group.end(), '.') == 3;
            return isDotted ? std::optional{count + 2} : std::nullopt;
        }
        if (group.empty() || group.size() > 4 || !std::all_of(group.begin(), group.end(), isHexadecimal) ||
            (!isLast && groups.empty()))
            return std::nullopt;
        ++count;
    }
    return count;
}

/// Eight groups, or fewer around one "::".
bool isIPv6(std::string_view text)
{
    constexpr int all = 8;
    const auto gap = text.find("::");
    if (gap == std::string_view::npos) return groupCount(text) == all;
    const auto before = groupCount(text.substr(0, gap));
    const auto after = groupCount(text.substr(gap + 2));
    return before && after && *before + *after < all;
}

/// The host of "user@host:port"; absent when a part can't be one.
std::optional<std::string_view> hostOf(std::string_view authority)
{
    if (const auto at = authority.find('@'); at != std::string_view::npos) {
        if (!isMadeOf(authority.substr(0, at), "-._~!$&'()*+,;=:")) return std::nullopt;
        authority.remove_prefix(at + 1);
    }
    std::string_view host;
    if (authority.starts_with('[')) {
        const auto end = authority.find(']');
        if (end == std::string_view::npos) return std::nullopt;
        host = authority.substr(1, end - 1);
        authority.remove_prefix(end + 1);
        if (!isIPv6(host) || (!authority.empty() && authority.front() != ':')) return std::nullopt;
    } else {
        host = authority.substr(0, authority.find(':'));
        authority.remove_prefix(host.size());
        if (!isMadeOf(host, inNames)) return std::nullopt;
    }
    if (!authority.empty()) authority.remove_prefix(1);
    return std::all_of(authority.begin(), authority.end(), isDigit) ? std::optional{host} : std::nullopt;
}

} // namespace

std::optional<WebAddress> WebAddress::parse(std::string_view text)
{
    std::string_view rest = text;
    WebAddress address;
    address.scheme = takeUntil(rest, ':');
    if (address.scheme.size() == text.size() || !isScheme(address.scheme)) return std::nullopt;
    std::transform(address.scheme.begin(), address.scheme.end(), address.scheme.begin(), lowered);
    if (rest.starts_with("//")) {
        const std::string_view authority = rest.substr(2, rest.find_first_of("/?#", 2) - 2);
        const auto host = hostOf(authority);
        if (!host) return std::nullopt;
        address.host = *host;
        rest.remove_prefix(2 + authority.size());
    }
    const std::string_view beforeFragment = takeUntil(rest, '#');
    return isMadeOf(beforeFragment, inPaths) && isMadeOf(rest, inPaths) ? std::optional{address} : std::nullopt;
}

} // namespace quellon
