#include "QuellonCore/Persistence/DebugStateGuard.h"

#include <fmt/format.h>

namespace quellon::DebugStateGuard {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

} // namespace

fs::path applicationSupport(const FileStore& files)
{
    return files.applicationSupportDirectory().value_or(files.homeDirectory());
}

fs::path realStateDirectory(const FileStore& files)
{
    return applicationSupport(files) / Persistence::appProcessName;
}

Isolation current(const Host& host, const Persistence& persistence)
{
    return isolation(host.files, persistence.directory(), realStateDirectory(host.files),
                     host.processes.environment(Persistence::stateDirectoryEnvironmentKey));
}

Isolation isolation(const FileStore& files, const fs::path& resolved, const fs::path& realState,
                    const std::optional<std::string>& override)
{
    const fs::path canonical = files.canonical(resolved);
    if (canonical == files.canonical(realState)) return Isolation::realState();
    const bool isGiven = override && override->find_first_not_of(whiteSpace) != std::string::npos;
    const bool isChosen = isGiven && files.canonical(*override) == canonical;
    return Isolation::isolated(isChosen ? Isolation::Reason::explicitOverride : Isolation::Reason::transientSandbox);
}

std::string relaunchCommand(std::string_view executablePath, std::string_view stateDirectory)
{
    return fmt::format("mkdir -p {0} && {1}={0} \"{2}\"", stateDirectory, Persistence::stateDirectoryEnvironmentKey,
                       executablePath);
}

} // namespace quellon::DebugStateGuard
