#include "QuellonHost/Linux/ProbeClient.h"

#include "QuellonCore/Diagnostics/GuardLog.h"
#include "QuellonCore/Host/Platform.h"
#include "QuellonHost/Posix/PipeSignalBlock.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

using Outcome = CommandResult::Outcome;

constexpr Seconds killGrace{1.0};  ///< How long a killed helper's end is awaited, as for any tool.
constexpr Seconds closeGrace{0.2}; ///< How long a helper may take to end by itself.

/// Blanks separate words and line feeds separate requests, so neither can be part of a word.
bool canBeSent(const std::string& word)
{
    constexpr std::size_t longestWord = 256;
    constexpr char firstPrintable = '!';
    constexpr char deleteCharacter = 0x7F;
    return !word.empty() && word.size() <= longestWord && std::all_of(word.begin(), word.end(), [](char c) {
        return static_cast<unsigned char>(c) >= firstPrintable && c != deleteCharacter;
    });
}

/// The number before the line feed; absent for anything but decimal digits, or above the most that is believed.
std::optional<std::size_t> answerLength(std::string_view digits)
{
    std::size_t length = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    if (length > ProbeClient::mostAnswer) return std::nullopt;
    return length;
}

} // namespace

/// The right to use the helper. `held` is false when it did not come in time, or never will.
class ProbeClient::Turn {
public:
    Turn(ProbeClient& client, Deadline deadline) : client_{client}
    {
        std::unique_lock lock{client_.lock_};
        held = client_.changed_.wait_until(lock, deadline, [&] { return client_.cancelled_ || !client_.busy_; });
        cancelled = client_.cancelled_;
        held = held && !cancelled;
        if (held) client_.busy_ = true;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn()
    {
        if (!held) return;
        const std::lock_guard guard{client_.lock_};
        client_.busy_ = false;
        client_.changed_.notify_one();
    }

    bool held = false;
    bool cancelled = false;

private:
    ProbeClient& client_;
};

ProbeClient::ProbeClient(std::filesystem::path program, LogSink& log) : program_{std::move(program)}, log_{log} {}

ProbeClient::~ProbeClient()
{
    if (!child_) return;
    child_->input.close();
    if (!child_->reap(deadlineAfter(closeGrace))) drop();
}

CommandResult ProbeClient::ask(const std::vector<std::string>& words, Seconds timeout)
{
    const Deadline deadline = deadlineAfter(timeout);
    if (words.empty() || !std::all_of(words.begin(), words.end(), canBeSent)) return {};
    std::string line;
    for (const auto& word : words) line += (line.empty() ? "" : " ") + word;
    line += '\n';

    const Turn turn{*this, deadline};
    if (turn.cancelled) return {Outcome::lost, {}};
    if (!turn.held) return {Outcome::timedOut, {}};
    return askInTurn(line, deadline);
}

CommandResult ProbeClient::askInTurn(std::string_view line, Deadline deadline)
{
    ChildProcess::reapLeftovers();
    bool isOld = dropUnlessIdle();
    while (true) {
        if (!isOld && !start()) return {};
        CommandResult result{Outcome::finished, {}};
        const Reply reply = exchange(line, deadline, result.output);
        if (reply == Reply::complete) return result;
        drop();
        if (reply == Reply::deadline) return {Outcome::timedOut, {}};
        if (reply == Reply::interrupted) return {Outcome::lost, {}};
        if (reply == Reply::none && std::exchange(isOld, false)) continue; // it had died before it was asked
        complain(reply == Reply::nonsense ? "gave an answer that makes no sense"
                                          : "ended before its answer was complete");
        return {Outcome::lost, {}};
    }
}

void ProbeClient::cancel()
{
    const std::lock_guard guard{lock_};
    cancelled_ = true;
    interruption_.interrupt();
    changed_.notify_all();
}

std::optional<pid_t> ProbeClient::pid()
{
    const std::lock_guard guard{lock_};
    if (busy_ || !child_) return std::nullopt;
    return child_->pid();
}

/// True when there is a helper that has said nothing since its last answer. One that ended, or said something
/// uncalled-for, is dropped.
bool ProbeClient::dropUnlessIdle()
{
    if (!child_) return false;
    pollfd waited{child_->output.get(), POLLIN, 0};
    if (poll(&waited, 1, 0) == 0) return true;
    drop();
    return false;
}

bool ProbeClient::start()
{
    child_ = ChildProcess::start({program_.string(), {"serve"}}, {.withInput = true, .ownGroup = true});
    return child_.has_value();
}

/// Ends the helper by force.
void ProbeClient::drop()
{
    child_->kill();
    child_->reap(deadlineAfter(killGrace));
    child_.reset();
}

ProbeClient::Reply ProbeClient::exchange(std::string_view line, Deadline deadline, std::string& answer)
{
    const Reply sent = send(line, deadline);
    return sent == Reply::complete ? receive(deadline, answer) : sent;
}

ProbeClient::Reply ProbeClient::send(std::string_view line, Deadline deadline)
{
    const PipeSignalBlock block;
    while (!line.empty()) {
        const ssize_t count = write(child_->input.get(), line.data(), line.size());
        if (count > 0) {
            line.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            const WaitEnd end = waitFor(child_->input.get(), POLLOUT, deadline, interruption_);
            if (end != WaitEnd::ready) return replyFor(end);
        } else if (errno != EINTR) {
            return Reply::none;
        }
    }
    return Reply::complete;
}

ProbeClient::Reply ProbeClient::receive(Deadline deadline, std::string& answer)
{
    constexpr std::size_t pipeCapacity = 65'536;
    constexpr std::size_t longestCount = 20;
    std::vector<char> buffer(pipeCapacity);
    std::optional<std::size_t> length;
    answer.clear();
    while (true) {
        const auto [wait, count] = readStep(child_->output.get(), buffer, deadline, interruption_);
        if (wait != WaitEnd::ready) return replyFor(wait);
        if (count == 0) return length || !answer.empty() ? Reply::cut : Reply::none;
        answer.append(buffer.data(), count);
        if (!length) {
            const auto lineFeed = answer.find('\n');
            if (lineFeed == std::string::npos && answer.size() <= longestCount) continue;
            length = answerLength(std::string_view{answer}.substr(0, lineFeed));
            if (lineFeed == std::string::npos || !length) return Reply::nonsense;
            answer.erase(0, lineFeed + 1);
            answer.reserve(*length);
        }
        if (answer.size() > *length) return Reply::nonsense;
        if (answer.size() == *length) return Reply::complete;
    }
}

ProbeClient::Reply ProbeClient::replyFor(WaitEnd end)
{
    return end == WaitEnd::deadline ? Reply::deadline : Reply::interrupted;
}

void ProbeClient::complain(std::string_view message)
{
    log_.write(GuardLog::shell, LogLevel::error, std::string{probeName} + " " + std::string{message});
}

} // namespace quellon
