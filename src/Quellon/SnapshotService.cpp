#include "Quellon/SnapshotService.h"

#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Presentation/AboutInfo.h"

#include <string>
#include <utility>

namespace quellon {

SnapshotService::SnapshotService(const GuardEngine& engine, AboutModel::Build build)
{
    const auto answer = [&engine, build = std::move(build)] {
        const Host& host = engine.host();
        const auto snapshot = DebugSnapshot::capture(engine, AboutInfo::displayVersion(build.shortVersion, build.build),
                                                     build.systemVersion, host.clock.now());
        return DebugExport::text(snapshot, host.files.homeDirectory().native(), host.platform) + '\n';
    };
    server_ = GuardSocket::Server::open(places(engine.host()), answer);
}

std::optional<int> SnapshotService::descriptor() const
{
    return server_ ? std::optional{server_->descriptor()} : std::nullopt;
}

void SnapshotService::serve()
{
    if (server_) server_->serve();
}

std::vector<std::filesystem::path> SnapshotService::places(const Host& host)
{
    return GuardSocket::places(host.processes, host.files, Persistence{host}.directory());
}

} // namespace quellon
