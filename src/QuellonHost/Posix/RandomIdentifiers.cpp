#include "QuellonHost/Posix/RandomIdentifiers.h"

namespace quellon {

UUID RandomIdentifiers::next()
{
    UUID result;
    std::uniform_int_distribution<unsigned> byte{0, 0xFF};
    for (auto& each : result.bytes) each = static_cast<std::uint8_t>(byte(device_));
    constexpr unsigned version = 0x40; // 4: random
    constexpr unsigned variant = 0x80;
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0FU) | version);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3FU) | variant);
    return result;
}

} // namespace quellon
