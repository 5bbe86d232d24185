#pragma once

#include <cstdint>
#include <string>

namespace quellon {

/// What one connection of one process has carried since it began.
struct ConnectionSample {
    std::int32_t pid = 0;
    std::string connection; ///< A protocol word and the local endpoint, "<->", the remote endpoint.
    std::uint64_t bytesIn = 0;
    std::uint64_t bytesOut = 0;

    /// What a connection is followed by from one sample to the next: "{pid}|{connection}".
    [[nodiscard]] std::string key() const { return std::to_string(pid) + '|' + connection; }

    bool operator==(const ConnectionSample&) const = default;
};

} // namespace quellon
