#include "QuellonCore/Host/Platform.h"

#include "QuellonCore/Measurement/Shell.h"

namespace quellon {

Command Platform::tool(ToolRole role, const std::vector<std::string>& arguments) const
{
    Command command = tools[static_cast<std::size_t>(role)];
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return command;
}

Platform Platform::macOS()
{
    return {"macOS",
            {{
                {std::string{Shell::nettopPath}, {Shell::nettopArguments.begin(), Shell::nettopArguments.end()}},
                {"/bin/ps", {"-axo", "pid=,uid=,pgid=,comm="}},
                {"/sbin/route", {"-n", "get", "default"}},
                {"/sbin/ifconfig", {}},
                {"/usr/sbin/netstat", {"-ib", "-I"}},
                {"/usr/sbin/networksetup", {"-listallhardwareports"}},
                {"/bin/ps", {"-o", "lstart=", "-p"}},
                {"/bin/ps", {"-o", "ppid=", "-p"}},
            }},
            ProtectionTable::macOS(),
            "Your iPhone is connected, but traffic isn't using it",
            "1. Open Network settings\n2. Click ⋯ at the bottom → Set Service Order\n3. Drag iPhone USB above Wi-Fi",
            "x-apple.systempreferences:com.apple.Network-Settings.extension",
            {},
            "Mac",
            "task_info failed",
            SessionStart::launchAgent};
}

Platform Platform::linux()
{
    const std::string probe{probeName};
    return {"Linux",
            {{
                {probe, {"nettop"}},
                {probe, {"ps"}},
                {probe, {"route"}},
                {probe, {"ifconfig"}},
                {probe, {"netstat"}},
                {probe, {"networksetup"}},
                {probe, {"start"}},
                {probe, {"parent"}},
            }},
            ProtectionTable::linux(),
            "Your phone is connected, but traffic isn't using it",
            "1. Open Network settings\n2. Disconnect the network that is in use\n3. Leave the phone's connection on",
            "",
            {{"gnome-control-center", {"network"}},
             {"systemsettings", {"kcm_networkmanagement"}},
             {"nm-connection-editor", {}}}};
}

Platform Platform::current()
{
#ifdef __APPLE__
    return macOS();
#else
    return linux();
#endif
}

} // namespace quellon
