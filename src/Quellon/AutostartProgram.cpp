#include "Quellon/AutostartProgram.h"

#include "QuellonCore/Settings/Autostart.h"
#include "QuellonHost/SystemHost.h"

#include <cstdio>

namespace quellon::AutostartProgram {

int run(AutostartCommand command)
{
    SystemHost host;
    Autostart autostart{host.host(), SystemHost::executable()};
    if (command == AutostartCommand::status) {
        const bool isWritten = std::puts(autostart.isOn() ? "on" : "off") >= 0 && std::fflush(stdout) == 0;
        return isWritten ? ExitStatus::success : ExitStatus::outputFailed;
    }
    const auto error = autostart.setOn(command == AutostartCommand::on);
    if (!error) return ExitStatus::success;
    std::fprintf(stderr, "Quellon: %s.\n", error->c_str());
    return ExitStatus::outputFailed;
}

} // namespace quellon::AutostartProgram
