#include "QuellonCore/Engine/OnlineContexts.h"

#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"
#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"

#include <memory>
#include <string>

namespace quellon::OnlineContexts {

std::optional<UpdateCheckContext> updateCheckContext(const Host& host, std::string_view version,
                                                     std::string_view systemVersion, NetworkLog& log)
{
    if (version.empty()) return std::nullopt;
    auto fetcher = std::make_shared<NetworkManifestFetcher>(
        host, UpdateChecker::userAgent(version, host.platform.name, systemVersion), log);
    return UpdateCheckContext{
        {std::move(fetcher), UpdateChecker::manifestURLFor(version)}, std::string{version}, std::string{systemVersion}};
}

std::optional<ExplainContext> explainContext(const Host& host, std::string_view version, std::string_view systemVersion,
                                             NetworkLog& log)
{
    if (version.empty()) return std::nullopt;
    return ExplainContext{std::make_shared<NetworkExplanationFetcher>(
        host, UpdateChecker::userAgent(version, host.platform.name, systemVersion),
        NetworkExplanationFetcher::endpoint(), log)};
}

} // namespace quellon::OnlineContexts
