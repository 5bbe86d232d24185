#pragma once

#include "QuellonCore/Engine/GuardEngine.h"

#include <optional>
#include <string>
#include <string_view>

/// What every view tells of an engine in the same way.
namespace quellon::EngineNotices {

/// When the latest traffic sample gave nothing. Absent when a later round has ended, which got a sample or needed none.
[[nodiscard]] std::optional<Date> sampleFailure(const GuardEngine& engine);

/// The name of a device for people, fit for a line. Empty for an empty device.
[[nodiscard]] std::string displayName(const GuardEngine& engine, std::string_view device);

/// Which tethered interface is not used, and which is; absent when the hint about it is not to be shown.
[[nodiscard]] std::optional<std::string> tetherSentence(const GuardEngine& engine);

/// What stands in the place of the usage when there is none.
[[nodiscard]] std::string_view emptyText(const GuardEngine& engine);

} // namespace quellon::EngineNotices
