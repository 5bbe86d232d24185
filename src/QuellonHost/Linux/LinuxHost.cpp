#include "QuellonHost/Linux/LinuxHost.h"

#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quellon {

LinuxHost::LinuxHost(std::filesystem::path probe) : commands_{std::move(probe), log_} {}

LinuxHost::~LinuxHost()
{
    commands_.cancel();
}

Host LinuxHost::host()
{
    return {clock_, runLoop_, commands_, processes_, files_, addresses_, log_, identifiers_, http_, Platform::linux()};
}

std::filesystem::path LinuxHost::findProbe(const std::filesystem::path& executableFolder)
{
    const std::string name{probeName};
    const auto prefix = executableFolder.parent_path();
    for (const auto& folder : {executableFolder, prefix / "libexec/quellon", prefix / "lib/quellon"}) {
        std::error_code error;
        const auto path = folder / name;
        if (std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0) return path;
    }
    return executableFolder / name;
}

} // namespace quellon
