#include "QuellonCore/Presentation/LivenessRowModel.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PanelSymbols.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

namespace quellon {

LivenessRowModel LivenessRowModel::of(const LivenessStats& stats, std::string_view primaryWindowLabel,
                                      std::uint64_t primaryThreshold, Date now)
{
    using MenuPresentation::format;
    if (const auto peak = stats.peak(primaryWindowLabel, now)) {
        return {"",
                {{"Peak this week"},
                 {fmt::format("{} {}", plainText(peak->app), format(peak->bytes)), Tint::primary},
                 {fmt::format("of {}", format(primaryThreshold))}}};
    }
    return {stats.triggerCount != 0 ? PanelSymbols::triggered : PanelSymbols::neverTriggered,
            {{stats.triggerSummary()}, {"·"}, {fmt::format("guarding for {}", stats.guardedDurationText())}}};
}

} // namespace quellon
