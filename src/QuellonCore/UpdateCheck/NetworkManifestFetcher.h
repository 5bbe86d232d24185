#pragma once

#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/UpdateCheck/UpdateManifestFetching.h"

#include <cstddef>
#include <string>

namespace quellon {

/// Fetches manifests over the network: a plain GET that tells the program's version and the system's, and nothing else.
class NetworkManifestFetcher final : public UpdateManifestFetching {
public:
    static constexpr Seconds timeoutSeconds{10.0};
    static constexpr std::size_t maximumPayloadBytes = 65'536;

    /// `host`'s parts and `log` must outlive the fetcher and its requests.
    NetworkManifestFetcher(Host host, std::string userAgent, NetworkLog& log);

    /// Each exchange leaves one entry in the log, whatever became of it.
    void fetchManifest(const std::string& url, Done done) override;

private:
    Host host_;
    std::string userAgent_;
    NetworkLog& log_;
};

} // namespace quellon
