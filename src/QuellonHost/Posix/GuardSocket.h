#pragma once

#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Host/ProcessControl.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonHost/Posix/Descriptor.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// How another process of the same user asks a running guard for a text. Who connects is sent all of it, and the
/// connection is closed; nothing is ever read from it.
namespace quellon::GuardSocket {

/// The largest text that is taken from a guard.
inline constexpr std::size_t largestText = std::size_t{4} * 1024 * 1024;

/// Where the socket of a guard with this state folder may be, the best place first: in "Quellon" in the folder that
/// `XDG_RUNTIME_DIR` names, and in "Quellon-{user id}" in the temporary folder. Its name follows from the state
/// folder's canonical path, so that guards on other state have others.
[[nodiscard]] std::vector<std::filesystem::path> places(const ProcessControl& processes, const FileStore& files,
                                                        const std::filesystem::path& stateDirectory);

/// The guard's end. Main thread.
class Server {
public:
    /// Makes the text for those who ask at this moment.
    using Answer = std::function<std::string()>;

    /// Listens at the first of `places` that can be had, in a folder that is the user's alone. Null when none can, or
    /// when another process that is alive answers at one of them. What a dead one left behind is replaced,
    /// and what others left in the same folder is removed.
    [[nodiscard]] static std::unique_ptr<Server> open(const std::vector<std::filesystem::path>& places, Answer answer);
    /// Removes the socket, unless it is another's by now, and its folder when nothing else is in it.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Readable when somebody asks: then `serve` is to be called.
    [[nodiscard]] int descriptor() const { return listener_.get(); }

    /// Answers those who have come, at most `mostAtOnce`, with one text, and closes their connections. Waits for
    /// nobody: a text that does not fit into what the system holds for somebody who doesn't read is cut, which the
    /// other end notices. A process of another user gets nothing.
    void serve();
    static constexpr int mostAtOnce = 16;

private:
    struct Identity;

    Server(std::filesystem::path path, Descriptor listener, Answer answer);

    std::filesystem::path path_;
    std::unique_ptr<const Identity> identity_; ///< Of the socket's file; null when it could not be told.
    Descriptor listener_;
    Descriptor spare_; ///< Given up for a moment when the process has no other descriptor left.
    Answer answer_;

    [[nodiscard]] Descriptor next();
};

/// What asking came to.
struct Reply {
    enum class Outcome {
        answered,
        nobody, ///< No guard is there.
        silent, ///< There is one, but it has not answered in time, or not completely.
    };
    Outcome outcome = Outcome::nobody;
    std::string text; ///< Only when `answered`.
    bool operator==(const Reply&) const = default;
};

/// Asks whoever listens at one of `places`, in this order. Blocks for `limit` at most.
[[nodiscard]] Reply ask(const std::vector<std::filesystem::path>& places, Seconds limit);

} // namespace quellon::GuardSocket
