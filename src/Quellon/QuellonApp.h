#pragma once

#include "Quellon/ProgramOptions.h"
#include "Quellon/SnapshotService.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Support/Fatal.h"
#include "QuellonHost/SystemHost.h"

namespace quellon {

/// The program: the real host, the one engine, and a view on it. Making it starts the guard. From then on every end
/// that the process can see coming thaws what is frozen: a signal that asks for it, `exit`, a fatal error.
class QuellonApp {
public:
    explicit QuellonApp(const ProgramOptions& options);
    /// Nothing is cleaned up after this.
    ~QuellonApp();
    QuellonApp(const QuellonApp&) = delete;
    QuellonApp& operator=(const QuellonApp&) = delete;

    /// Shows the terminal view until the end and gives the exit status; lines, after a message, on a terminal that
    /// can't be drawn on.
    [[nodiscard]] int runTerminal(const ProgramOptions& options);
    /// Prints lines until the end and gives the exit status.
    [[nodiscard]] int runPlain(const ProgramOptions& options);

    /// Which program runs where.
    [[nodiscard]] static AboutModel::Build build();

    [[nodiscard]] PosixRunLoop& runLoop() { return host_.runLoop(); }
    [[nodiscard]] GuardEngine& engine() { return engine_; }
    /// What the engine tells the user, for whoever shows it.
    [[nodiscard]] NotificationFeed& notifications() { return notifications_; }
    /// For other processes that ask about the guard. Served while the run loop of `runTerminal` or `runPlain` runs;
    /// another loop watches its descriptor itself.
    [[nodiscard]] SnapshotService& snapshots() { return snapshots_; }

private:
    SystemHost host_;
    NotificationFeed notifications_;
    GuardEngine engine_;
    SnapshotService snapshots_;
    FatalCleanup thaw_; ///< Only signals: what else the engine holds is not to be trusted by then.

    /// What must be done before the process ends.
    void cleanUp();
    /// The run loop's life, up to the ordinary end.
    void run(const ProgramOptions& options);
};

} // namespace quellon
