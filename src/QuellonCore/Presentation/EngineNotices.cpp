#include "QuellonCore/Presentation/EngineNotices.h"

#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

namespace quellon::EngineNotices {

std::optional<Date> sampleFailure(const GuardEngine& engine)
{
    const auto failedAt = engine.lastSampleFailureAt();
    if (!failedAt) return std::nullopt;
    // A round notes that it has ended and then what it got, so a later end belongs to a later round.
    const auto completedAt = engine.sampling().lastCompletedAt;
    if (completedAt && *completedAt > *failedAt) return std::nullopt;
    return failedAt;
}

std::string displayName(const GuardEngine& engine, std::string_view device)
{
    return plainText(InterfaceNames::display(device, engine.interfaceNames()));
}

std::optional<std::string> tetherSentence(const GuardEngine& engine)
{
    if (!engine.showsTetherHint()) return std::nullopt;
    const std::string idle = displayName(engine, *engine.idleTetherInterface());
    const std::string& system = engine.host().platform.name;
    const std::string active = displayName(engine, engine.status().interface);
    if (active.empty()) return fmt::format("{} is ready, but {} is sending traffic elsewhere.", idle, system);
    return fmt::format("{} is ready, but {} is still using {}.", idle, system, active);
}

std::string_view emptyText(const GuardEngine& engine)
{
    return engine.isRunning() ? "No traffic yet" : "Guard is off";
}

} // namespace quellon::EngineNotices
