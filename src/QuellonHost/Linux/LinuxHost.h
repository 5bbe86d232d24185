#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonHost/Linux/JournalLog.h"
#include "QuellonHost/Linux/LinuxCommandRunner.h"
#include "QuellonHost/Linux/LinuxProcessControl.h"
#include "QuellonHost/Posix/CurlHttpClient.h"
#include "QuellonHost/Posix/PosixFileStore.h"
#include "QuellonHost/Posix/PosixInterfaceAddresses.h"
#include "QuellonHost/Posix/PosixRunLoop.h"
#include "QuellonHost/Posix/RandomIdentifiers.h"
#include "QuellonHost/Posix/SystemClock.h"

#include <filesystem>

namespace quellon {

/// The real parts on Linux.
class LinuxHost {
public:
    /// `probe` is the absolute path of `quellon-probe`. It is started when it is first needed; where it is missing,
    /// every measurement fails to start, and the log says so.
    explicit LinuxHost(std::filesystem::path probe);
    ~LinuxHost();
    LinuxHost(const LinuxHost&) = delete;
    LinuxHost& operator=(const LinuxHost&) = delete;

    [[nodiscard]] Host host();
    [[nodiscard]] PosixRunLoop& runLoop() { return runLoop_; }

    /// Where `quellon-probe` is for a program in this folder: beside it, otherwise in `../libexec/quellon`, otherwise
    /// in `../lib/quellon`. Beside it when it is in none of them.
    [[nodiscard]] static std::filesystem::path findProbe(const std::filesystem::path& executableFolder);

private:
    JournalLog log_;
    LinuxProcessControl processes_;
    SystemClock clock_{processes_};
    PosixFileStore files_{processes_, PosixFileStore::DataFolder::xdg};
    PosixInterfaceAddresses addresses_;
    RandomIdentifiers identifiers_;
    LinuxCommandRunner commands_;
    PosixRunLoop runLoop_; ///< Here, so that background work ends before what it uses goes.
    CurlHttpClient http_{runLoop_};
};

} // namespace quellon
