#pragma once

#include "EngineTrace.h"

#include <fmt/ranges.h>

#include <memory>
#include <string>
#include <vector>

namespace quellon {

/// Gives a scripted world lifelines, which tell the trace what becomes of them: "hold 501,502" when one is made, "thaw
/// 501,502", which lets these processes go on, and "drop 501,502". Both must outlive its lifelines.
class RecordedLifelines {
public:
    RecordedLifelines(ScriptedHost& world, EngineTrace& trace) : world_{world}, trace_{trace}
    {
        world_.lifelines([this](const std::vector<std::int32_t>& pids) { return make(pids); });
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
        void thaw() override
        {
            tell("thaw");
            for (const std::int32_t pid : pids_) all_.world_.process(pid).stopped = false;
        }

    private:
        void tell(const char* what) { all_.trace_.told(fmt::format("{} {}", what, fmt::join(pids_, ","))); }
        RecordedLifelines& all_;
        std::vector<std::int32_t> pids_;
    };

    std::unique_ptr<Lifeline> make(const std::vector<std::int32_t>& pids)
    {
        return areShort ? nullptr : std::make_unique<Recorded>(*this, pids);
    }

    ScriptedHost& world_;
    EngineTrace& trace_;
};

} // namespace quellon
