#pragma once

#include "QuellonProbe/MessageBus.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quellon {

/// NetworkManager's judgement of a device; the numbers are its own (NMMetered).
enum class Metered : std::uint32_t { unknown = 0, yes = 1, no = 2, guessYes = 3, guessNo = 4 };

/// What NetworkManager knows about a device.
struct ManagedDevice {
    Metered metered = Metered::unknown;
    bool isModem = false;

    friend bool operator==(const ManagedDevice&, const ManagedDevice&) = default;
};

/// Asks the NetworkManager service, which is found anew by each question. Not thread-safe.
class NetworkManager {
public:
    /// `bus` outlives the object.
    explicit NetworkManager(MessageBus& bus) : bus_{bus} {}

    /// Absent when there is no such service, when it doesn't know the interface, and when it hasn't told all by the
    /// deadline. A number that it may add one day reads as `unknown`.
    [[nodiscard]] std::optional<ManagedDevice> device(const std::string& interface, MessageBus::Deadline deadline);

private:
    std::optional<std::uint32_t> property(const std::string& path, const std::string& name,
                                          MessageBus::Deadline deadline);

    MessageBus& bus_;
};

} // namespace quellon
