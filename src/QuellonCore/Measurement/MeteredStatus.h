#pragma once

#include <string>

namespace quellon {

/// Whether the default route goes over a network that is paid for by volume.
struct MeteredStatus {
    bool isMetered = false;
    std::string interface; ///< The device of the default route; empty when there is none or it could not be read.
    std::string detail;    ///< The reason, in words for the user and the log.

    bool operator==(const MeteredStatus&) const = default;
};

} // namespace quellon
