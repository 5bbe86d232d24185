#include "QuellonCore/Measurement/InterfaceNames.h"

#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Support/Text.h"

namespace quellon::InterfaceNames {

Map current(const Host& host)
{
    const auto output = Shell::run(host, host.platform.tool(ToolRole::networksetup));
    return output ? parse(*output) : Map{};
}

Map parse(std::string_view output)
{
    constexpr std::string_view portKey = "Hardware Port:";
    constexpr std::string_view deviceKey = "Device:";
    Map names;
    std::string_view port;
    while (!output.empty()) {
        const std::string_view line = trimmed(takeLine(output));
        if (line.starts_with(portKey)) {
            port = trimmed(line.substr(portKey.size()));
        } else if (line.starts_with(deviceKey)) {
            const std::string_view device = trimmed(line.substr(deviceKey.size()));
            if (!device.empty() && !port.empty()) names.try_emplace(std::string{device}, port);
        }
    }
    return names;
}

std::string display(std::string_view device, const Map& in)
{
    const auto found = in.find(device);
    return found != in.end() ? found->second : std::string{device};
}

} // namespace quellon::InterfaceNames
