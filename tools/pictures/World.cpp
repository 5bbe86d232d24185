#include "World.h"

#include "QuellonCore/Engine/OnlineContexts.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

namespace {

constexpr const char* version = "1.2.0";
constexpr const char* interface = "wlp2s0";

} // namespace

World::World()
{
    host_.platform(Platform::linux());
    host_.tool(ToolRole::route).prints(fmt::format("    gateway: 172.20.10.1\n  interface: {}\n", interface));
    GuardEngine::Options options;
    options.autoStart = false;
    options.updateCheck = OnlineContexts::updateCheckContext(host_, version, "6.1.0", log_);
    options.explain = OnlineContexts::explainContext(host_, version, "6.1.0", log_);
    engine_ = std::make_unique<GuardEngine>(host_, std::move(options));
    change([](GuardSettings& settings) {
        settings.onboarded = true;
        settings.updateCheckConsent = UpdateCheckConsent::denied;
    });
    engine_->start();
    // The traffic and the counters of a first sample are only where counting begins.
    engine_->apply(inputs());
}

void World::change(const std::function<void(GuardSettings&)>& change)
{
    GuardSettings settings = engine_->settings();
    change(settings);
    engine_->setSettings(std::move(settings));
}

GuardEngine::TickInputs World::inputs() const
{
    GuardEngine::TickInputs result;
    result.status = {true, interface, fmt::format("{} · gateway 172.20.10.1 (hotspot range)", interface)};
    result.sampled = true;
    result.interfaceCounter = InterfaceCounter{spent_, 0};
    result.nettopCSV = "time,,interface,bytes_in,bytes_out,\n";
    for (const auto& [app, bytes] : moved_) {
        const std::int32_t pid = pids_.at(app);
        *result.nettopCSV += fmt::format("10:00:00.0,app.{0},,1,1,\n10:00:00.0,tcp4 172.20.10.7:{0}<->203.0.113.9:443,"
                                         "{2},{1},0,\n",
                                         pid, bytes, interface);
        result.psOutput += fmt::format("{0} 501 {0} /opt/{1}/{1}\n", pid, app);
    }
    return result;
}

void World::move(const std::vector<Traffic>& traffic)
{
    for (const Traffic& each : traffic) {
        moved_.try_emplace(each.app, 0);
        if (pids_.try_emplace(each.app, nextPID_).second) ++nextPID_;
    }
    engine_->apply(inputs());
    for (const Traffic& each : traffic) moved_[each.app] += each.bytes;
    engine_->apply(inputs());
}

void World::spend(std::uint64_t bytes)
{
    spent_ += bytes;
    engine_->apply(inputs());
}

void World::freeze(const std::string& app)
{
    const std::int32_t pid = nextPID_++;
    host_.process(pid, {.start = "A"});
    host_.tool(ToolRole::ps).prints(fmt::format("{0} 501 {0} /opt/{1}/{1}\n", pid, app));
    engine_->enforceNow({app}, EnforcementAction::suspend);
}

void World::leave(std::string_view idleTether)
{
    GuardEngine::TickInputs home;
    home.status = {false, interface, fmt::format("{} · gateway 192.168.1.1 · not metered", interface)};
    if (!idleTether.empty()) home.idleTether = idleTether;
    engine_->apply(home);
}

void World::failToSample()
{
    GuardEngine::TickInputs blind = inputs();
    blind.nettopCSV.reset();
    engine_->apply(blind);
}

void World::findUpdate()
{
    host_.http().reply = {HttpResponse{200, R"({"latestVersion":"1.3","downloadURL":"https://quellon.example/get"})"},
                          Seconds{0.0}};
    engine_->answerUpdateCheckConsent(true);
    settle();
    engine_->apply(inputs());
}

void World::lookupAnswers(std::string json, Seconds takes)
{
    host_.http().reply = {HttpResponse{200, std::move(json)}, takes};
}

MenuPanelModel World::panel(const PanelState& state) const
{
    return MenuPanelModel::of(*engine_, host_.now(), state);
}

SettingsModel World::settings() const
{
    return SettingsModel::of(*engine_, state_, {version, "120", "6.1.0"}, host_.now());
}

} // namespace quellon
