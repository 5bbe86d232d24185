#pragma once

namespace quellon::InternetTrap {

/// From now on the kernel kills this process with SIGSYS, and whatever it becomes or starts, at the moment it opens a
/// socket of the Internet's families. For a child between fork and exec; ends it with status 126 where that can't be.
void arm();

} // namespace quellon::InternetTrap
