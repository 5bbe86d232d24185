#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonHost/Posix/GuardSocket.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace quellon {

/// Gives the snapshot of a running guard to other processes of its user: see "--snapshot". Does nothing where no socket
/// can be had, or where another guard on the same state answers already. Main thread.
class SnapshotService {
public:
    SnapshotService(const GuardEngine& engine, AboutModel::Build build);

    /// Readable when somebody asks: then `serve` is to be called. Absent when nobody can ask, and after `end`.
    [[nodiscard]] std::optional<int> descriptor() const;
    /// Answers those who have come. Waits for nobody.
    void serve();
    /// Nobody can ask from now on.
    void end() { server_.reset(); }

    /// Where the guard on the state of this process's environment answers.
    [[nodiscard]] static std::vector<std::filesystem::path> places(const Host& host);

private:
    std::unique_ptr<GuardSocket::Server> server_;
};

} // namespace quellon
