#pragma once

#include "PanelWorld.h"
#include "QuellonCore/Presentation/SettingsModel.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {

/// A running guard that is fed by hand, on a hotspot, with the two rules of a plan of 30 GB: 46.1 MB a minute and
/// 358.4 MB an hour. It could look applications up online; nobody has been asked. Beside it what a settings window
/// remembers.
struct SettingsWorld : EngineWorld {
    static constexpr UUID shortRule{{1}};
    static constexpr UUID longRule{{2}};

    NetworkLog log;
    GuardEngine engine;
    SettingsState state;

    explicit SettingsWorld(const Platform& platform = Platform::macOS(), std::optional<Capabilities> capabilities = {})
        : engine{prepared(platform), options(std::move(capabilities))}
    {
        change([](GuardSettings& settings) {
            settings.rules()[0].id = shortRule;
            settings.rules()[1].id = longRule;
        });
        engine.start();
        engine.apply(PanelWorld::inputs({})); // the traffic of a first sample is only a baseline
    }

    template <typename Change>
    void change(const Change& change)
    {
        GuardSettings settings = engine.settings();
        change(settings);
        engine.setSettings(std::move(settings));
    }
    void move(const std::vector<PanelWorld::Traffic>& traffic) { engine.apply(PanelWorld::inputs(traffic)); }
    /// So much is used of the plan. The counters begin at nothing.
    void use(std::uint64_t bytes)
    {
        for (const std::uint64_t count : {std::uint64_t{0}, bytes}) {
            auto inputs = PanelWorld::inputs({});
            inputs.interfaceCounter = InterfaceCounter{count, 0};
            engine.apply(inputs);
        }
    }

    bool does(const SettingsAction& action) { return perform(action, engine, state); }
    void types(NumberField field, std::string text) { does(SettingsActions::EditNumber{field, std::move(text)}); }
    void types(NumberField::Kind kind, std::string text) { types(NumberField{kind, {}}, std::move(text)); }
    /// Types a number and leaves the field.
    void enters(NumberField field, std::string text)
    {
        types(field, std::move(text));
        does(SettingsActions::CommitNumber{field});
    }
    void enters(NumberField::Kind kind, std::string text) { enters(NumberField{kind, {}}, std::move(text)); }
    [[nodiscard]] const GuardSettings& settings() const { return engine.settings(); }

private:
    Host prepared(const Platform& platform)
    {
        host.platform(platform);
        return host;
    }
    GuardEngine::Options options(std::optional<Capabilities> capabilities)
    {
        GuardEngine::Options result = stopped();
        result.capabilities = std::move(capabilities);
        result.explain = OnlineContexts::explainContext(host.host(), "1.2.0", "14.5.0", log);
        return result;
    }
};

} // namespace quellon
