#pragma once

#include "QuellonCore/Host/Host.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quellon {

/// What a whole interface has carried since it came up.
struct InterfaceCounter {
    std::uint64_t inBytes = 0;
    std::uint64_t outBytes = 0;

    /// Both directions together; a sum that does not fit ends the program.
    [[nodiscard]] std::uint64_t totalBytes() const;

    /// The counters of `interface` now. Absent for an empty name, where no command is run, and when the counters can't
    /// be read. Blocks for up to `Shell::defaultTimeout`.
    [[nodiscard]] static std::optional<InterfaceCounter> current(const Host& host, std::string_view interface);

    /// The counters of `interface` in the output of `netstat -ib -I`: those of the first readable link-layer row of
    /// that name, a "*" behind the name aside. Absent when there is no such row.
    [[nodiscard]] static std::optional<InterfaceCounter> parse(std::string_view netstatOutput,
                                                               std::string_view interface);

    bool operator==(const InterfaceCounter&) const = default;
};

} // namespace quellon
