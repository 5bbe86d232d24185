#include "QuellonCore/UpdateCheck/AppVersion.h"

#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

namespace quellon {

namespace {

std::optional<std::int64_t> component(std::string_view piece)
{
    const bool isNumber = std::all_of(piece.begin(), piece.end(), [](char c) { return c >= '0' && c <= '9'; });
    return isNumber ? parseWhole<std::int64_t>(piece) : std::nullopt;
}

std::array<std::int64_t, AppVersion::mostComponents> padded(const AppVersion& version)
{
    std::array<std::int64_t, AppVersion::mostComponents> result{};
    std::copy_n(version.components.begin(), std::min(version.components.size(), result.size()), result.begin());
    return result;
}

} // namespace

std::optional<AppVersion> AppVersion::parse(std::string_view text)
{
    AppVersion version;
    for (std::string_view rest = stripped(text);;) {
        const bool isLast = rest.find('.') == std::string_view::npos;
        const auto number = component(takeUntil(rest, '.'));
        if (!number || version.components.size() == mostComponents) return std::nullopt;
        version.components.push_back(*number);
        if (isLast) return version;
    }
}

std::string AppVersion::text() const
{
    return fmt::format("{}", fmt::join(components, "."));
}

std::strong_ordering AppVersion::operator<=>(const AppVersion& other) const
{
    const auto mine = padded(*this);
    const auto others = padded(other);
    for (std::size_t i = 0; i < mine.size(); ++i) {
        if (mine[i] != others[i]) return mine[i] <=> others[i];
    }
    return std::strong_ordering::equal;
}

} // namespace quellon
