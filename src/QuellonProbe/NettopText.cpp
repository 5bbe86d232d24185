#include "QuellonProbe/NettopText.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace quellon {

namespace {

/// An interface that has no name has this one, so that the field isn't empty: that marks the row of a process.
constexpr std::string_view nameless = "?";

std::string_view nameOrNone(std::string_view name)
{
    return name.empty() ? nameless : name;
}

/// What stands behind the "%" of link-local addresses: links without a name differ by their index.
std::string zoneText(std::uint32_t link, const NettopNames& names)
{
    if (link == 0) return {};
    const auto name = nameOrNone(names.interface(link));
    return name == nameless ? std::to_string(link) : std::string{name};
}

void addFields(std::string& text, std::string_view interface, std::uint64_t bytesIn, std::uint64_t bytesOut)
{
    text.append(",").append(interface).append(",");
    text.append(std::to_string(bytesIn)).append(",").append(std::to_string(bytesOut)).append(",\n");
}

} // namespace

std::string nettopText(const std::vector<ConnectionRow>& rows, std::string_view time, const NettopNames& names)
{
    std::string text;
    text.reserve(64 + rows.size() * 96);
    text = "time,,interface,bytes_in,bytes_out,\n";
    for (auto row = rows.begin(); row != rows.end();) {
        auto end = row;
        std::uint64_t bytesIn = 0;
        std::uint64_t bytesOut = 0;
        for (; end != rows.end() && end->owner == row->owner; ++end) {
            bytesIn += end->bytesIn;
            bytesOut += end->bytesOut;
        }
        const auto name = names.process(row->owner);
        text.append(time).append(",").append(name.empty() ? "unknown" : name);
        text.append(".").append(std::to_string(row->owner));
        addFields(text, "", bytesIn, bytesOut);
        for (; row != end; ++row) {
            text.append(time).append(",").append(connectionLabel(row->ends, zoneText(row->ends.link, names)));
            addFields(text, nameOrNone(names.interface(row->interface)), row->bytesIn, row->bytesOut);
        }
    }
    return text;
}

std::string timeOfDay()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    ::localtime_r(&now.tv_sec, &local);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%06ld", local.tm_hour, local.tm_min, local.tm_sec,
                  now.tv_nsec / 1000);
    return text.data();
}

} // namespace quellon
