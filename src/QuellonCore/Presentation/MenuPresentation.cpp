#include "QuellonCore/Presentation/MenuPresentation.h"

#include "QuellonCore/Support/Checked.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace quellon::MenuPresentation {

namespace {

std::string budgetText(std::optional<double> fraction)
{
    if (!fraction) return "—";
    return fmt::format("{}%", nearestWhole(std::round(*fraction * 100.0)));
}

} // namespace

bool isGuarding(bool isRunning, bool isMetered, bool meteredOnly)
{
    return isRunning && (isMetered || !meteredOnly);
}

Tone tone(bool isRunning, bool isMetered, bool meteredOnly)
{
    if (!isRunning) return Tone::off;
    return isGuarding(isRunning, isMetered, meteredOnly) ? Tone::active : Tone::standby;
}

std::string_view statusTitle(bool isRunning, bool isMetered, bool meteredOnly)
{
    switch (tone(isRunning, isMetered, meteredOnly)) {
    case Tone::off:
        return "Off";
    case Tone::standby:
        return "Idle · not a metered network";
    case Tone::active:
        break;
    }
    return "Guarding";
}

MenuBar menuBar(const MenuBarState& state, Date now)
{
    if (!state.isRunning) return {"Off", "shield.slash"};
    if (state.suspendedCount > 0) return {fmt::format("{}", state.suspendedCount), "pause.circle.fill"};
    if (!isGuarding(state.isRunning, state.isMetered, state.meteredOnly)) {
        return {"", state.idleTether ? "cable.connector" : "shield"};
    }
    const auto& alert = state.alert;
    if (alert && alert->isActive(now)) {
        return {fmt::format("{} {}", alert->app, format(alert->bytes)), "exclamationmark.shield.fill"};
    }
    const bool isUnread = alert && alert->unread;
    return {budgetText(state.budgetFraction),
            isUnread ? "shield.lefthalf.filled.badge.checkmark" : "shield.lefthalf.filled"};
}

std::string format(std::uint64_t bytes)
{
    constexpr double step = 1024.0;
    const double megabytes = static_cast<double>(bytes) / step / step;
    if (megabytes >= step) return fmt::format("{:.2f} GB", megabytes / step);
    return fmt::format("{:.1f} MB", megabytes);
}

double ratio(std::uint64_t bytes, std::uint64_t thresholdBytes)
{
    if (thresholdBytes == 0) return 0.0;
    return std::min(1.0, static_cast<double>(bytes) / static_cast<double>(thresholdBytes));
}

Level level(double ratio)
{
    constexpr double cautionFrom = 0.5;
    constexpr double dangerFrom = 0.85;
    if (ratio < cautionFrom) return Level::safe;
    return ratio < dangerFrom ? Level::caution : Level::danger;
}

std::vector<std::string> parseNameList(std::string_view text)
{
    std::vector<std::string> names;
    while (!text.empty()) {
        const std::string_view name = trimmed(takeUntil(text, ','));
        if (!name.empty()) names.emplace_back(name);
    }
    return names;
}

} // namespace quellon::MenuPresentation
