#pragma once

#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonCore/Presentation/OnboardingModel.h"
#include "QuellonCore/Presentation/SettingsModel.h"
#include "ScriptedHost.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

inline constexpr std::uint64_t mega = 1024 * 1024;

/// A running guard with nothing real around it, on the hotspot of a phone, fed by hand. Always the same, so that the
/// pictures of it are.
class World {
public:
    struct Traffic {
        std::string app;
        std::uint64_t bytes = 0;
    };

    World();

    GuardEngine& engine() { return *engine_; }
    SettingsState& state() { return state_; }

    void change(const std::function<void(GuardSettings&)>& change);
    /// What is done in the settings window.
    void does(const SettingsAction& action) { perform(action, engine(), state_); }
    /// The applications move so much more, while the clock stands still.
    void move(const std::vector<Traffic>& traffic);
    /// The clock goes on, and nothing else happens.
    void wait(Seconds time) { host_.setClock(host_.now() + time); }
    /// The network in use moves so much more; it counts against the plan.
    void spend(std::uint64_t bytes);
    /// The guard holds an application frozen on the user's word.
    void freeze(const std::string& app);
    /// Away from the hotspot; a phone is plugged in, and not used, where its interface is named.
    void leave(std::string_view idleTether = {});
    /// The traffic can't be read.
    void failToSample();
    /// A newer version was found.
    void findUpdate();
    /// What the lookup service says from now on, after so long.
    void lookupAnswers(std::string json, Seconds takes);
    /// Lets work in the background end.
    void settle() { host_.advance(Seconds{1.0}); }

    [[nodiscard]] MenuPanelModel panel(const PanelState& state = {}) const;
    [[nodiscard]] SettingsModel settings() const;
    [[nodiscard]] OnboardingModel onboarding() const { return OnboardingModel::of(*engine_, state_); }
    [[nodiscard]] Date now() const { return host_.now(); }

private:
    [[nodiscard]] GuardEngine::TickInputs inputs() const;

    ScriptedHost host_;
    NetworkLog log_;
    std::unique_ptr<GuardEngine> engine_;
    SettingsState state_;
    std::map<std::string, std::uint64_t> moved_; ///< By each application so far.
    std::map<std::string, std::int32_t> pids_;   ///< The process of each.
    std::uint64_t spent_ = 0;
    std::int32_t nextPID_ = 900;
};

} // namespace quellon
