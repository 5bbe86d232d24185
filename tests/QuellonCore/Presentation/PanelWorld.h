#pragma once

#include "QuellonCore/Engine/EngineWorld.h"
#include "QuellonCore/Engine/OnlineContexts.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace quellon {

inline constexpr std::uint64_t mega = 1024 * 1024;

/// A running guard that is fed by hand, on a hotspot, with one rule of 10 MiB a minute that only highlights. It could
/// check for updates, and the user has said no.
struct PanelWorld : EngineWorld {
    /// One application that has moved bytes.
    struct Traffic {
        std::string app;
        std::uint64_t bytes = 0;
    };

    NetworkLog log;
    GuardEngine engine;

    explicit PanelWorld(const Platform& platform = Platform::macOS()) : engine{prepared(platform), options()}
    {
        setRules({rule(60s, 10 * mega)});
        engine.answerUpdateCheckConsent(false);
        engine.start();
        // The traffic of a first sample is only a baseline.
        engine.apply(inputs({}));
    }

    static GuardRule rule(Seconds window, std::uint64_t threshold, bool enabled = true)
    {
        return {UUID{}, window, threshold, ActionLevel::highlight, enabled};
    }
    void setRules(std::vector<GuardRule> rules)
    {
        change([&](GuardSettings& settings) { settings.rules() = std::move(rules); });
    }
    template <typename Change>
    void change(const Change& change)
    {
        GuardSettings settings = engine.settings();
        change(settings);
        engine.setSettings(std::move(settings));
    }

    static GuardEngine::TickInputs inputs(const std::vector<Traffic>& traffic)
    {
        GuardEngine::TickInputs result;
        result.status = {true, "en0", "en0 · gateway 172.20.10.1 (hotspot range)"};
        result.sampled = true;
        result.nettopCSV = "time,,interface,bytes_in,bytes_out,\n";
        int pid = 500;
        for (const Traffic& each : traffic) {
            ++pid;
            *result.nettopCSV += fmt::format("10:00:00.0,app.{0},,1,1,\n10:00:00.0,tcp4 10.9.0.2:{0}<->203.0.113.9:443,"
                                             "en0,{1},0,\n",
                                             pid, each.bytes);
            result.psOutput += fmt::format("{0} 501 {0} /opt/{1}\n", pid, each.app);
        }
        return result;
    }
    void move(const std::vector<Traffic>& traffic) { engine.apply(inputs(traffic)); }

private:
    Host prepared(const Platform& platform)
    {
        host.platform(platform);
        return host;
    }
    GuardEngine::Options options()
    {
        GuardEngine::Options result = stopped();
        result.updateCheck = OnlineContexts::updateCheckContext(host.host(), "1.2.0", "14.5.0", log);
        return result;
    }
};

} // namespace quellon
