#include "QuellonCore/Presentation/LogTabModel.h"

#include "QuellonCore/Presentation/SettingsSymbols.h"

#include <fmt/format.h>

namespace quellon {

LogTabModel LogTabModel::of(const GuardEngine& engine)
{
    return {OverviewModel::logOf(engine)};
}

std::string_view LogTabModel::symbol(GuardEvent::Kind kind)
{
    switch (kind) {
    case GuardEvent::Kind::info:
        return SettingsSymbols::infoEvent;
    case GuardEvent::Kind::warning:
        return SettingsSymbols::warningEvent;
    case GuardEvent::Kind::enforced:
        break;
    }
    return SettingsSymbols::enforcedEvent;
}

std::string LogTabModel::line(const OverviewModel::LogLine& row)
{
    return fmt::format("{} {}: {}", row.time, guardEventKinds.label(row.kind), row.message);
}

} // namespace quellon
