#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"

#include <string_view>

namespace quellon {

/// Further rows for the names that processes have on Linux, made from data/knowledge-pack-linux.json in the same way.
/// `KnowledgePack` outranks it: it has no name that differs from one of the other's in case alone.
namespace LinuxKnowledgePack {

/// `Platform::name` of the system on which the rows are used.
inline constexpr std::string_view platformName = "Linux";

[[nodiscard]] const ExplanationMap& entries();

extern const std::string_view sourceSHA256;
extern const std::string_view generatedAt;

} // namespace LinuxKnowledgePack

} // namespace quellon
