#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/SettingsTab.h"
#include "ScriptedHost.h"
#include "ScriptedObserver.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace quellon {

/// JSON whose keys keep the order in which they were added.
using OrderedJson = nlohmann::ordered_json;

/// Writes what happens as one JSON object a line, with the moment in virtual time first.
class ReplayPrinter final : public ScriptedObserver {
public:
    /// Observes `world` from now on, and writes to `out`; both must outlive it.
    ReplayPrinter(ScriptedHost& world, std::ostream& out);
    ~ReplayPrinter() override;
    ReplayPrinter(const ReplayPrinter&) = delete;
    ReplayPrinter& operator=(const ReplayPrinter&) = delete;

    void ran(const Command& command) override;
    void spawned(const Command& command) override;
    void signalled(const SentSignal& signal) override;
    void saved(const std::filesystem::path& file) override;
    void removed(const std::filesystem::path& file) override;
    void requested(const HttpRequest& request) override;
    void logged(std::string_view category, LogLevel level, std::string_view message) override;
    void event(const GuardEvent& event);
    void plan(const NotificationPlan& plan);
    /// The settings window is asked for.
    void openSettings(SettingsTab tab, const std::optional<std::string>& detailApp);

    /// Moments are those since the world began; from now on, those since now.
    void countFromNow();

    /// Writes one line: the moment, then `value` under `key`.
    void print(std::string_view key, OrderedJson value);

    /// Seconds as a line's moment: rounded to milliseconds, without a fraction when that is whole.
    [[nodiscard]] static OrderedJson moment(Seconds elapsed);

private:
    ScriptedHost& world_;
    std::ostream& out_;
    Seconds origin_{0};
};

} // namespace quellon
