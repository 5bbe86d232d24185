#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Host/LogSink.h"
#include "QuellonHost/Posix/ChildProcess.h"
#include "QuellonHost/Posix/Waiting.h"

#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Asks the resident helper `quellon-probe serve`, which it starts when first asked and again whenever it is gone. One
/// request is under way at a time; others wait, within their own budgets. Safe from any thread.
class ProbeClient {
public:
    /// The longest answer that is believed.
    static constexpr std::size_t mostAnswer = std::size_t{64} << 20U;

    /// `program` is the helper's absolute path.
    ProbeClient(std::filesystem::path program, LogSink& log);
    /// Lets the helper end by itself, or kills it when it does not within a moment.
    ~ProbeClient();
    ProbeClient(const ProbeClient&) = delete;
    ProbeClient& operator=(const ProbeClient&) = delete;

    /// Sends one request, its role and its arguments, and waits for the whole answer, for at most `timeout` from now.
    /// - `failedToStart`: the helper could not be started, or a word can't be sent (empty, or with a blank or a control
    ///   character in it, which no name of an interface has).
    /// - `timedOut`: the helper hangs and was killed; or another request kept it busy, and it lives on.
    /// - `lost`: the helper ended or talked nonsense, which is on the log. One that had died since its last answer is
    ///   replaced first, at no loss.
    [[nodiscard]] CommandResult ask(const std::vector<std::string>& words, Seconds timeout);

    /// For the end of the program: ends the request under way, and from now on each one gives `lost` at once.
    void cancel();

    /// The helper's process id while it runs idle, as far as is known; absent before the first request.
    [[nodiscard]] std::optional<pid_t> pid();

private:
    enum class Reply {
        complete,
        none,     ///< The helper ended before the first byte of an answer.
        cut,      ///< It ended in the middle of one.
        nonsense, ///< No count, a count that is too large, or more bytes than it told.
        deadline,
        interrupted,
    };
    class Turn;

    std::filesystem::path program_;
    LogSink& log_;
    Interruption interruption_;
    std::mutex lock_; ///< Guards `busy_` and `cancelled_`.
    std::condition_variable changed_;
    bool busy_ = false; ///< The thread that set it owns `child_`.
    bool cancelled_ = false;
    std::optional<ChildProcess> child_;

    [[nodiscard]] CommandResult askInTurn(std::string_view line, Deadline deadline);
    [[nodiscard]] bool dropUnlessIdle();
    [[nodiscard]] bool start();
    void drop();
    [[nodiscard]] Reply exchange(std::string_view line, Deadline deadline, std::string& answer);
    [[nodiscard]] Reply send(std::string_view line, Deadline deadline);
    [[nodiscard]] Reply receive(Deadline deadline, std::string& answer);
    [[nodiscard]] static Reply replyFor(WaitEnd end);
    void complain(std::string_view message);
};

} // namespace quellon
