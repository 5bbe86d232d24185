#include "Quellon/AutostartProgram.h"

#include "QuellonCore/Settings/Autostart.h"
#include "QuellonHost/SystemHost.h"

#include <cstdio>

namespace quellon::AutostartProgram {

int run(AutostartCommand command)
{
    SystemHost host;
    Autostart autostart{host.host(), SystemHost::executable()};
    if (command == AutostartCommand::status) return printAnswer(autostart.isOn() ? "on\n" : "off\n");
    const auto error = autostart.setOn(command == AutostartCommand::on);
    if (!error) return ExitStatus::success;
    std::fprintf(stderr, "Quellon: %s.\n", error->c_str());
    return ExitStatus::outputFailed;
}

} // namespace quellon::AutostartProgram
