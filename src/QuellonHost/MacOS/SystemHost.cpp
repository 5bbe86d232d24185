#include "QuellonHost/SystemHost.h"

#include "QuellonHost/MacOS/MacHost.h"
#include "QuellonHost/Posix/SystemVersion.h"

#include <array>
#include <cstddef>
#include <sys/sysctl.h>

namespace quellon {

struct SystemHost::Parts {
    MacHost macHost;
};

SystemHost::SystemHost() : parts_{std::make_unique<Parts>()} {}

SystemHost::~SystemHost() = default;

Host SystemHost::host()
{
    return parts_->macHost.host();
}

std::string SystemHost::systemVersion()
{
    std::array<char, 64> text{};
    std::size_t size = text.size() - 1;
    if (sysctlbyname("kern.osproductversion", text.data(), &size, nullptr, 0) != 0) return SystemVersion::kernel();
    return SystemVersion::numbers(text.data());
}

std::filesystem::path SystemHost::executable()
{
    return MacProcessControl::executable();
}

PosixRunLoop& SystemHost::runLoop()
{
    return parts_->macHost.runLoop();
}

} // namespace quellon
