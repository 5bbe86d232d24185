#pragma once

#include "QuellonCore/Measurement/ConnectionSample.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Reads the traffic sample: comma-separated text with one row per process, followed by one row per connection of it.
namespace quellon::NettopParser {

/// The internet connections of `csv`, in the order of its lines, duplicates included. `interfaceFilter` keeps only the
/// rows of that interface; absent or empty it keeps all. Left out are connections of the local network, rows whose
/// counters can't be read, and rows below no readable process row. The columns are time, name, interface, bytes in,
/// bytes out; the time column may be missing where a header line tells so.
[[nodiscard]] std::vector<ConnectionSample> parse(std::string_view csv,
                                                  std::optional<std::string_view> interfaceFilter = std::nullopt);

/// The process id of a process row's name field, such as "Some Helper.1036": the digits behind its last point. Absent
/// when something other than digits, or nothing, stands there, or when the number does not fit.
[[nodiscard]] std::optional<std::int32_t> pid(std::string_view fromProcessField);

} // namespace quellon::NettopParser
