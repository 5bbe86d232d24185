#include "QuellonCore/UpdateCheck/UpdateManifest.h"

#include <utility>

namespace quellon {

std::optional<UpdateManifest> UpdateManifest::fromJson(const Json& json)
{
    JsonFields fields{json};
    UpdateManifest manifest;
    fields.required("latestVersion", manifest.latestVersion);
    fields.required("downloadURL", manifest.downloadURL);
    fields.defaulted("releaseNotesURL", manifest.releaseNotesURL);
    fields.defaulted("minimumSystemVersion", manifest.minimumSystemVersion);
    return fields.result(std::move(manifest));
}

} // namespace quellon
