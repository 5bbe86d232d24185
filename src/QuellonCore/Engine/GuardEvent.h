#pragma once

#include "QuellonCore/Support/Time.h"
#include "QuellonCore/Support/UUID.h"

#include <string>

namespace quellon {

/// One line of the activity log.
struct GuardEvent {
    enum class Kind { info, warning, enforced };

    UUID id;
    Date at;
    Kind kind = Kind::info;
    std::string message;
    bool operator==(const GuardEvent&) const = default;
};

} // namespace quellon
