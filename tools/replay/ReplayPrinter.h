#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "ScriptedHost.h"
#include "ScriptedObserver.h"

#include <nlohmann/json.hpp>

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
    void logged(std::string_view category, LogLevel level, std::string_view message) override;
    void event(const GuardEvent& event);
    void plan(const NotificationPlan& plan);

    /// Writes one line: the moment, then `value` under `key`.
    void print(std::string_view key, OrderedJson value);

    /// Seconds as a line's moment: rounded to milliseconds, without a fraction when that is whole.
    [[nodiscard]] static OrderedJson moment(Seconds elapsed);

private:
    ScriptedHost& world_;
    std::ostream& out_;
};

} // namespace quellon
