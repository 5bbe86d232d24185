#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The few shapes of D-Bus messages that a question to a service needs: a call with texts as its arguments, and a reply
/// of one value. The library of the system for this costs a resident helper 2 MiB of memory; this is what it would do.
/// All numbers are in the machine's own byte order, as a bus on the same machine delivers them.

/// A method call. The texts are passed as arguments of type "s".
struct BusCall {
    std::string destination; ///< empty for no header of that name
    std::string path;
    std::string interface;
    std::string member;
    std::vector<std::string> arguments;

    friend bool operator==(const BusCall&, const BusCall&) = default;
};

/// What came back.
struct BusMessage {
    enum class Kind { call = 1, reply = 2, error = 3, signal = 4 };
    Kind kind = Kind::reply;
    std::uint32_t replySerial = 0; ///< the serial of the call that it answers; 0 when it answers none
    std::string signature;         ///< types of the body
    std::string body;              ///< bytes

    friend bool operator==(const BusMessage&, const BusMessage&) = default;
};

namespace BusWire {

/// No message that is awaited here comes near this length; a longer one is treated as a broken stream.
inline constexpr std::size_t longestMessage = 64 * 1024;

/// The bytes of a call with this serial, which must not be 0. `mayStart` allows the bus to start the service.
[[nodiscard]] std::string encode(const BusCall& call, std::uint32_t serial, bool mayStart);

/// How long the message at the front of `bytes` is in all. Absent when fewer than 16 bytes are there; 0 when they begin
/// no message, or one longer than `longestMessage`.
[[nodiscard]] std::optional<std::size_t> length(std::string_view bytes);

/// Reads a whole message. Absent when it contradicts itself.
[[nodiscard]] std::optional<BusMessage> decode(std::string_view bytes);

/// The body's one value: of a signature "s" or "o"; absent for any other.
[[nodiscard]] std::optional<std::string> text(const BusMessage& message);

/// The body's one value, a variant that holds a number of type "u"; absent for any other.
[[nodiscard]] std::optional<std::uint32_t> variantNumber(const BusMessage& message);

} // namespace BusWire

} // namespace quellon
