#include "QuellonHost/SystemHost.h"

#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Posix/SystemVersion.h"

#include <filesystem>
#include <system_error>

namespace quellon {

namespace {

std::filesystem::path executableFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

} // namespace

struct SystemHost::Parts {
    LinuxHost linuxHost{LinuxHost::findProbe(executableFolder())};
};

SystemHost::SystemHost() : parts_{std::make_unique<Parts>()} {}

SystemHost::~SystemHost() = default;

Host SystemHost::host()
{
    return parts_->linuxHost.host();
}

std::string SystemHost::systemVersion()
{
    return SystemVersion::kernel();
}

PosixRunLoop& SystemHost::runLoop()
{
    return parts_->linuxHost.runLoop();
}

} // namespace quellon
