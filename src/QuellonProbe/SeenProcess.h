#pragma once

#include <cstdint>
#include <string>

namespace quellon {

/// A process as it was when it was found to hold a socket. The role `ps` lists it once it has ended.
struct SeenProcess {
    std::int32_t pid = 0;
    std::uint32_t user = 0;
    std::int32_t group = 0;
    std::string path; ///< ProcessNames's name of it

    friend bool operator==(const SeenProcess&, const SeenProcess&) = default;
};

} // namespace quellon
