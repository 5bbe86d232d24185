#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// From the executable of a process to the path that stands for its application: the same one for every helper process,
/// after an update and after a restart. Functions without state.
namespace ApplicationPath {

/// `executable` is the kernel's name of it. Takes off " (deleted)"; names the main executable for a helper; then takes
/// the revision off snap and Flatpak paths and the random letters off AppImage mounts. Looks at the file system below
/// `root`, the prefix under which paths are looked up ("" for the real one). An interpreter stays what it is.
[[nodiscard]] std::string of(std::string_view executable, const std::string& root = "");

/// The nearest folder above `path` that holds an executable file of the folder's own name is the application's home,
/// and that file its main executable; absent when there is no such folder. Folders that many applications share are no
/// home: those directly below "/", below /usr, /usr/local, /var and any "home", and those called bin, lib and the like.
[[nodiscard]] std::optional<std::string> mainExecutable(std::string_view path, const std::string& root = "");

/// The path without what changes from one revision or one run to the next:
/// /snap/NAME/REVISION/… and /var/lib/snapd/snap/NAME/REVISION/… → /snap/NAME/…,
/// …/flatpak/app/ID/ARCH/BRANCH/COMMIT/files/… → …/flatpak/app/ID/files/… (the same for runtime),
/// …/.mount_NameXXXXXX/… → …/.mount_Name/….
[[nodiscard]] std::string stable(std::string_view path);

/// A path in a Flatpak sandbox as one of the host: /app is replaced by the installed files that the sandbox's
/// .flatpak-info names under "app-path", or, without a plausible one, by /var/lib/flatpak/app/ID/files for the
/// application's id. Absent for a path outside /app and for an information without a plausible id.
[[nodiscard]] std::optional<std::string> outOfSandbox(std::string_view path, std::string_view flatpakInfo);

} // namespace ApplicationPath

} // namespace quellon
