#include "QuellonCore/Support/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace quellon {

void fatal(std::string_view what)
{
    constexpr int softwareError = 70;
    std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(what.size()), what.data());
    std::fflush(nullptr);
    std::_Exit(softwareError);
}

} // namespace quellon
