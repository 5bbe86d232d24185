#pragma once

#include <string_view>

namespace quellon::testing {

/// While it lives, looking up `host` takes without end; the end of this lets all such look-ups fail, and waits until
/// they have. The test program has a getaddrinfo of its own for that, which asks the system for every other host.
class StuckLookup {
public:
    static constexpr const char* host = "stuck.example";
    /// A host that nobody is asked about, and that never exists.
    static constexpr const char* absentHost = "absent.example";

    StuckLookup();
    StuckLookup(const StuckLookup&) = delete;
    StuckLookup& operator=(const StuckLookup&) = delete;
    ~StuckLookup();

    /// Waits until somebody looks it up. False when nobody does within ten seconds.
    [[nodiscard]] bool awaitBegin();
    /// Whether the last thread that did has SIGTERM and SIGINT blocked.
    [[nodiscard]] bool blocksSignals();
};

} // namespace quellon::testing
