#include "QuellonHost/Linux/LinuxCommandRunner.h"

#include "QuellonCore/Host/Platform.h"

namespace quellon {

CommandResult LinuxCommandRunner::run(const Command& command, Seconds timeout)
{
    if (command.path == probeName) return probe_.ask(command.arguments, timeout);
    return children_.run(command, timeout);
}

void LinuxCommandRunner::cancel()
{
    probe_.cancel();
    children_.cancel();
}

} // namespace quellon
