#pragma once

#include "QuellonCore/Presentation/OverviewModel.h"

#include <fmt/format.h>

#include <string>

namespace quellon {

/// An overview as the engine's values could give it.
inline OverviewModel overview(std::size_t rows = 3, std::size_t events = 4)
{
    OverviewModel model;
    model.tone = MenuPresentation::Tone::active;
    model.title = "Guarding";
    model.detail = "wlan0 · gateway 172.20.10.1 (hotspot range)";
    model.interface = "Wi-Fi";
    model.counters = "↓ 812.4 MB  ↑ 20.1 MB";
    model.windowHeading = "1min window";
    model.emptyText = "No traffic yet";
    const char* const names[] = {"cloud-sync", "firefox", "云盘同步助手", "apt"};
    for (std::size_t i = 0; i < rows; ++i) {
        const double share = 1.0 / static_cast<double>(i + 2);
        model.rows.push_back({i < 4 ? names[i] : fmt::format("app{}", i), fmt::format("{}.5 MB", 400 - i), "12.0 MB",
                              share, fmt::format("{:.0f}%", share * 100)});
    }
    for (std::size_t i = 0; i < events; ++i) {
        const bool odd = i % 2 == 1;
        UUID id;
        id.bytes[0] = static_cast<std::uint8_t>(events - i);
        model.log.push_back(
            {id, "10:00:00", odd ? GuardEvent::Kind::warning : GuardEvent::Kind::info,
             odd ? "nettop 超时未返回，本轮采样已跳过" : "📶 wlan0 · gateway 172.20.10.1 (hotspot range)"});
    }
    return model;
}

} // namespace quellon
