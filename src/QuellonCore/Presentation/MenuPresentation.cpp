#include "QuellonCore/Presentation/MenuPresentation.h"

#include <fmt/format.h>

namespace quellon::MenuPresentation {

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

std::string format(std::uint64_t bytes)
{
    constexpr double step = 1024.0;
    const double megabytes = static_cast<double>(bytes) / step / step;
    if (megabytes >= step) return fmt::format("{:.2f} GB", megabytes / step);
    return fmt::format("{:.1f} MB", megabytes);
}

} // namespace quellon::MenuPresentation
