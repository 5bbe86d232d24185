#include "QuellonHost/SystemHost.h"

#include "QuellonHost/MacOS/MacHost.h"

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

PosixRunLoop& SystemHost::runLoop()
{
    return parts_->macHost.runLoop();
}

} // namespace quellon
