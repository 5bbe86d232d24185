#pragma once

#include "QuellonCore/Diagnostics/ProcessMetrics.h"
#include "QuellonCore/Diagnostics/SamplingDiagnostics.h"
#include "QuellonCore/Diagnostics/StateDirectoryReport.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Measurement/AppEdition.h"
#include "QuellonCore/Notifications/NotificationCapability.h"
#include "QuellonCore/Persistence/DebugStateGuard.h"
#include "QuellonCore/Support/Time.h"

#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The guard's condition at one moment, for somebody who helps a user. Nothing of an application, an address or what
/// was moved is in it.
struct DebugSnapshot {
    AppEdition compiledEdition = currentEdition; ///< What the build was made as.
    AppEdition renderedEdition = currentEdition; ///< What the engine presents.
    std::string version;                         ///< The program's.
    std::string osVersion;                       ///< The system's.
    std::string stateDirectoryPath;
    DebugStateGuard::Isolation isolation;
    std::vector<StateFileEntry> files;
    bool isRunning = false; ///< The guard is started.
    bool isMetered = false;
    double sampleInterval = 0.0; ///< Seconds, from the settings.
    SamplingDiagnostics sampling;
    std::optional<ProcessMetrics> process; ///< What this process weighs; absent when the system does not tell.
    NotificationCapability notifications;

    /// What holds of the engine now. Reads the state folder's list of files, writes nothing. Main thread.
    [[nodiscard]] static DebugSnapshot capture(const GuardEngine& engine, std::string version, std::string osVersion,
                                               Date now);

    /// What can be told where no guard runs: what lies in the state folder, and the interval of the settings there. The
    /// rest is that of a guard that was never started; `process` is this process, whatever that is. Writes nothing.
    [[nodiscard]] static DebugSnapshot ofStateDirectory(const Host& host, std::string version, std::string osVersion);

    bool operator==(const DebugSnapshot&) const = default;
};

} // namespace quellon
