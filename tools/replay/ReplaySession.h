#pragma once

#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "ReplayPrinter.h"
#include "ScriptedHost.h"

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace quellon {

/// A scripted world with at most one run of the guard in it, put together as the application does.
class ReplaySession {
public:
    /// Writes what happens to `out`.
    explicit ReplaySession(std::ostream& out);
    ~ReplaySession();
    ReplaySession(const ReplaySession&) = delete;
    ReplaySession& operator=(const ReplaySession&) = delete;

    /// What the world's program and system are. A program without a version has no use of the network.
    struct Versions {
        std::string program = "1.2.0";
        std::string system = "14.5.0";
    };

    /// How a run begins.
    struct Launch {
        AppEdition edition = AppEdition::pro;
        bool autoStart = true;
    };

    [[nodiscard]] ScriptedHost& world() { return world_; }
    [[nodiscard]] ReplayPrinter& printer() { return printer_; }
    /// The wall clock jumps. What is printed counts its time from the first call on.
    void setDate(Date date);
    /// Whether warnings can reach the user, in every run from the next one on.
    void setNotificationCapability(const NotificationCapability& capability) { capability_ = capability; }
    /// The versions of the program and of its system in every run from the next one on.
    void setVersions(Versions versions) { versions_ = std::move(versions); }
    [[nodiscard]] const Versions& versions() const { return versions_; }
    /// The engine of the present run; throws a `ReplayError` when there is none.
    [[nodiscard]] GuardEngine& engine();
    /// The folder of the state files, as the next run finds it.
    [[nodiscard]] std::filesystem::path stateFolder();

    /// Begins a run. There must be none.
    void launch(const Launch& launch);
    /// The ordinary end.
    void quit();
    /// The end by a signal that the guard handles.
    void signal(RunLoop::Signal signal);
    /// The end without any clean-up.
    void crash();

private:
    ScriptedHost world_;
    ReplayPrinter printer_;
    NotificationCapability capability_;
    Versions versions_;
    NetworkLog network_;
    bool hasDate_ = false;
    std::unique_ptr<GuardEngine> engine_;

    void end();
};

} // namespace quellon
