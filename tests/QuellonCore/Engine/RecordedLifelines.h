#pragma once

#include "EngineTrace.h"

#include <fmt/ranges.h>

#include <memory>
#include <string>
#include <vector>

namespace quellon {

/// Gives a scripted world lifelines, which tell the trace what becomes of them: "hold 501,502" when one is made, and
/// "drop 501,502". Both must outlive its lifelines.
class RecordedLifelines {
public:
    RecordedLifelines(ScriptedHost& world, EngineTrace& trace) : trace_{trace}
    {
        world.lifelines([this](const std::vector<std::int32_t>& pids) { return make(pids); });
    }

    bool areShort = false; ///< No further one can be had.

private:
    class Recorded final : public Lifeline {
    public:
        Recorded(RecordedLifelines& all, std::vector<std::int32_t> pids) : all_{all}, pids_{std::move(pids)}
        {
            tell("hold");
        }
        ~Recorded() override { tell("drop"); }

    private:
        void tell(const char* what) { all_.trace_.told(fmt::format("{} {}", what, fmt::join(pids_, ","))); }
        RecordedLifelines& all_;
        std::vector<std::int32_t> pids_;
    };

    std::unique_ptr<Lifeline> make(const std::vector<std::int32_t>& pids)
    {
        return areShort ? nullptr : std::make_unique<Recorded>(*this, pids);
    }

    EngineTrace& trace_;
};

} // namespace quellon
