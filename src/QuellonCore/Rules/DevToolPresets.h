#pragma once

#include <array>
#include <string_view>

/// Developers' tools that fetch a lot without being asked.
namespace quellon::DevToolPresets {

/// Labels of applications, in the order in which they are offered.
inline constexpr std::array<std::string_view, 13> names{"Xcode",   "Docker", "Docker Desktop", "npm", "node",   "pod",
                                                        "flutter", "dart",   "brew",           "git", "gradle", "cargo",
                                                        "go"};

} // namespace quellon::DevToolPresets
