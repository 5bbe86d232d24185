#pragma once

#include "QuellonHost/Posix/Descriptor.h"

#include <filesystem>
#include <optional>
#include <sys/types.h>
#include <sys/un.h>

/// What both ends of the guard's socket need.
namespace quellon::GuardSocket {

/// Behind a whole text. A text has none.
inline constexpr char endMark = '\0';

/// Whether the folder is a real one, this user's, and nobody else has any right on it.
[[nodiscard]] bool isPrivateFolder(const std::filesystem::path& folder);

/// The path as the system wants it; absent when it is too long.
[[nodiscard]] std::optional<sockaddr_un> address(const std::filesystem::path& path);

/// A stream socket for this machine that no child inherits and that never blocks.
[[nodiscard]] Descriptor makeSocket();

/// The next connection of a socket that listens, made as `makeSocket` makes one. Without a number when none waits, or
/// on an error, which errno tells.
[[nodiscard]] Descriptor accept(const Descriptor& listener);

/// Whether the process at the other end runs as this user.
[[nodiscard]] bool isSameUser(const Descriptor& connection);

enum class Connection { made, refused, busy };

/// Connects without waiting: `busy` where too many wait already, `refused` where it can't be had otherwise; errno tells
/// why, ECONNREFUSED that nobody listens.
[[nodiscard]] Connection connect(const Descriptor& descriptor, const sockaddr_un& address);

} // namespace quellon::GuardSocket
