#pragma once

#include "QuellonCore/Support/Json.h"

#include <optional>
#include <string>

namespace quellon {

/// What the update host says of the newest version. Texts as they came; nothing in it is trusted yet.
struct UpdateManifest {
    std::string latestVersion;
    std::string downloadURL;
    std::optional<std::string> releaseNotesURL; ///< Read and not used.
    std::optional<std::string> minimumSystemVersion;

    /// The version and the download address must be there, and all values texts. Other keys are ignored.
    [[nodiscard]] static std::optional<UpdateManifest> fromJson(const Json& json);

    bool operator==(const UpdateManifest&) const = default;
};

} // namespace quellon
