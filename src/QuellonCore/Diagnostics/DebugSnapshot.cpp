#include "QuellonCore/Diagnostics/DebugSnapshot.h"

#include "QuellonCore/Diagnostics/ProcessVitals.h"
#include "QuellonCore/Measurement/Capabilities.h"
#include "QuellonCore/Settings/GuardSettings.h"

#include <utility>

namespace quellon {

namespace {

/// The folder in full, where the user named it from another one. Links in it stay.
std::string fullPath(const FileStore& files, const std::filesystem::path& directory)
{
    return (directory.is_absolute() ? directory : files.canonical(directory)).native();
}

/// What holds of a process and its state folder, with or without an engine.
DebugSnapshot aroundEngine(const Host& host, std::string version, std::string osVersion)
{
    const Persistence persistence{host};
    DebugSnapshot result;
    result.version = std::move(version);
    result.osVersion = std::move(osVersion);
    result.stateDirectoryPath = fullPath(host.files, persistence.directory());
    result.isolation = DebugStateGuard::current(host, persistence);
    result.files = StateDirectoryReport::scan(host.files, persistence.directory());
    result.process = ProcessVitals::current(host);
    return result;
}

} // namespace

DebugSnapshot DebugSnapshot::capture(const GuardEngine& engine, std::string version, std::string osVersion,
                                     Date /*now*/)
{
    DebugSnapshot result = aroundEngine(engine.host(), std::move(version), std::move(osVersion));
    result.renderedEdition = engine.capabilities().edition;
    result.isRunning = engine.isRunning();
    result.isMetered = engine.status().isMetered;
    result.sampleInterval = engine.settings().sampleInterval.count();
    result.sampling = engine.sampling();
    result.notifications = engine.notificationCapability();
    return result;
}

DebugSnapshot DebugSnapshot::ofStateDirectory(const Host& host, std::string version, std::string osVersion)
{
    DebugSnapshot result = aroundEngine(host, std::move(version), std::move(osVersion));
    result.renderedEdition = Capabilities::detect(currentEdition, host.processes).edition;
    const auto settings = Persistence{host}.load(Persistence::settingsFile, [&host](const Json& json) {
        return GuardSettings::fromJson(json, host.identifiers);
    });
    result.sampleInterval = (settings ? settings->sampleInterval : GuardSettings{}.sampleInterval).count();
    return result;
}

} // namespace quellon
