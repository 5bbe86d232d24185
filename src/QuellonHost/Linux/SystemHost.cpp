#include "QuellonHost/SystemHost.h"

#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Posix/SystemVersion.h"

#include <filesystem>

namespace quellon {

struct SystemHost::Parts {
    LinuxHost linuxHost{LinuxHost::findProbe(executable().parent_path())};
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

std::filesystem::path SystemHost::executable()
{
    return LinuxProcessControl::executable();
}

PosixRunLoop& SystemHost::runLoop()
{
    return parts_->linuxHost.runLoop();
}

} // namespace quellon
