#pragma once

#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Knowledge/ExplanationFetching.h"
#include "QuellonCore/UpdateCheck/UpdateChecker.h"

#include <optional>
#include <string_view>

/// What an engine is given for its two features that use the network, by the real servers' addresses. Without a version
/// of the program there is neither. `host`'s parts and `log` must outlive the engine.
namespace quellon::OnlineContexts {

[[nodiscard]] std::optional<UpdateCheckContext> updateCheckContext(const Host& host, std::string_view version,
                                                                   std::string_view systemVersion, NetworkLog& log);
[[nodiscard]] std::optional<ExplainContext> explainContext(const Host& host, std::string_view version,
                                                           std::string_view systemVersion, NetworkLog& log);

} // namespace quellon::OnlineContexts
