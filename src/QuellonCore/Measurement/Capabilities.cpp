#include "QuellonCore/Measurement/Capabilities.h"

namespace quellon {

namespace {

constexpr std::string_view sandboxBlocksSampling = "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。";
constexpr std::string_view samplingGaveNothing = "读取流量数据失败：系统未返回 nettop 结果。";
constexpr std::string_view editionBlocksEnforcement =
    "App Store 版受系统沙盒限制，只能提醒，无法暂停或结束其他 App。需要自动处置请使用官网下载的 Pro 版。";

} // namespace

Capabilities Capabilities::detect(AppEdition edition, const ProcessControl& processes)
{
    const bool sandboxed = processes.environment(sandboxEnvironmentKey).has_value();
    return {edition, sandboxed, !sandboxed && allowsSystemCommands(edition)};
}

std::optional<std::string_view> Capabilities::samplingBlockedReason() const
{
    if (canSampleTraffic) return std::nullopt;
    return sandboxed ? sandboxBlocksSampling : samplingGaveNothing;
}

std::optional<std::string_view> Capabilities::enforcementBlockedReason() const
{
    if (canEnforce || (edition == AppEdition::pro && !sandboxed)) return std::nullopt;
    return editionBlocksEnforcement;
}

} // namespace quellon
