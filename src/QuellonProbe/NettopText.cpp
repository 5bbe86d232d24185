#include "QuellonProbe/NettopText.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace quellon {

namespace {

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
            const auto zone = row->ends.link == 0 ? std::string_view{} : names.interface(row->ends.link);
            text.append(time).append(",").append(connectionLabel(row->ends, zone));
            addFields(text, names.interface(row->interface), row->bytesIn, row->bytesOut);
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
