#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonHost/Posix/PosixRunLoop.h"

#include <filesystem>
#include <memory>
#include <string>

namespace quellon {

/// The real world of the system that this build is for. The main thread makes it before anything else, and destroys it
/// last; tools that still run by then are killed, so that the end does not wait for them.
class SystemHost {
public:
    SystemHost();
    ~SystemHost();
    SystemHost(const SystemHost&) = delete;
    SystemHost& operator=(const SystemHost&) = delete;

    /// What an engine gets.
    [[nodiscard]] Host host();
    /// The running system's version as three numbers, such as "6.1.0"; on Linux it is the kernel's.
    [[nodiscard]] static std::string systemVersion();
    /// The program's own file, links resolved. Where an update has put another one in its place, that one.
    [[nodiscard]] static std::filesystem::path executable();
    /// To run, or to embed in another loop.
    [[nodiscard]] PosixRunLoop& runLoop();

private:
    struct Parts; ///< One definition for each system.
    std::unique_ptr<Parts> parts_;
};

} // namespace quellon
