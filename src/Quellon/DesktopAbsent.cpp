#include "Quellon/DesktopProgram.h"
#include "QuellonCore/Support/Fatal.h"

namespace quellon::DesktopProgram {

bool isAvailable()
{
    return false;
}

int run(char** /*arguments*/, const ProgramOptions& /*options*/)
{
    fatal("there is no desktop program in this build");
}

} // namespace quellon::DesktopProgram
