#pragma once

#include "QuellonCore/UpdateCheck/UpdateManifest.h"

#include <functional>
#include <string>
#include <variant>

namespace quellon {

/// Why there is no manifest.
struct UpdateCheckError {
    enum class Kind {
        badStatus, ///< The host answered with another status than 200.
        transport, ///< There was no reply.
        malformedPayload,
    };

    Kind kind = Kind::transport;
    int status = 0; ///< Of `badStatus`.

    bool operator==(const UpdateCheckError&) const = default;
};

/// Where manifests come from. Main thread only.
class UpdateManifestFetching {
public:
    using Result = std::variant<UpdateManifest, UpdateCheckError>;
    using Done = std::function<void(const Result& result)>;

    virtual ~UpdateManifestFetching() = default;

    /// Fetches the manifest. `done` is called once, in a later turn, unless the program ends first.
    virtual void fetchManifest(const std::string& url, Done done) = 0;
};

} // namespace quellon
