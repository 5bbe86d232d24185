#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonHost/MacOS/MacProcessControl.h"
#include "QuellonHost/MacOS/UnifiedLog.h"
#include "QuellonHost/Posix/CurlHttpClient.h"
#include "QuellonHost/Posix/PosixCommandRunner.h"
#include "QuellonHost/Posix/PosixFileStore.h"
#include "QuellonHost/Posix/PosixInterfaceAddresses.h"
#include "QuellonHost/Posix/PosixRunLoop.h"
#include "QuellonHost/Posix/RandomIdentifiers.h"
#include "QuellonHost/Posix/SystemClock.h"

namespace quellon {

/// The real parts on macOS. Not run: written for macOS, never tried there.
class MacHost {
public:
    MacHost();
    ~MacHost();
    MacHost(const MacHost&) = delete;
    MacHost& operator=(const MacHost&) = delete;

    [[nodiscard]] Host host();
    [[nodiscard]] PosixRunLoop& runLoop() { return runLoop_; }

private:
    UnifiedLog log_;
    MacProcessControl processes_;
    SystemClock clock_{processes_};
    PosixFileStore files_{processes_, PosixFileStore::DataFolder::library};
    PosixInterfaceAddresses addresses_;
    RandomIdentifiers identifiers_;
    PosixCommandRunner commands_{log_};
    PosixRunLoop runLoop_; ///< Here, so that background work ends before what it uses goes.
    CurlHttpClient http_{runLoop_};
};

} // namespace quellon
