#pragma once

#include "QuellonCore/Host/Host.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// What the system calls its network devices, for people.
namespace quellon::InterfaceNames {

/// Device name to port name, such as "en0" to "Wi-Fi".
using Map = std::map<std::string, std::string, std::less<>>;

/// Asks the system; empty when it gives nothing. Blocks for up to `Shell::defaultTimeout`.
[[nodiscard]] Map current(const Host& host);

/// Reads blocks of "Hardware Port:" and "Device:" lines. The first port named for a device stays; other lines are
/// ignored.
[[nodiscard]] Map parse(std::string_view output);

/// The port name of a device; the device's own name when the map does not hold it.
[[nodiscard]] std::string display(std::string_view device, const Map& in);

} // namespace quellon::InterfaceNames
