#include "QuellonProbe/Server.h"

#include "QuellonProbe/Text.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace quellon {

namespace {

/// Ignoring an interrupted call.
int waitFor(pollfd* descriptors, nfds_t count, int timeout)
{
    const int result = ::poll(descriptors, count, timeout);
    return result < 0 && errno == EINTR ? 0 : result;
}

} // namespace

int Server::run()
{
    auto state = State::going;
    while (state == State::going) {
        pollfd waiting[]{{input_, POLLIN, 0}, {background_.descriptor(), POLLIN, 0}};
        const int timeout = background_.timeout();
        if (waitFor(waiting, 2, timeout) < 0) {
            complain("waiting for requests failed", errno);
            return 1;
        }
        if (waiting[1].revents != 0) background_.readable();
        if (timeout >= 0 && background_.timeout() == 0) background_.timedOut();
        if (waiting[0].revents != 0) state = readInput();
    }
    return state == State::ended ? 0 : 1;
}

Server::State Server::readInput()
{
    std::array<char, 4096> buffer;
    const auto size = ::read(input_, buffer.data(), buffer.size());
    if (size == 0) return State::ended;
    if (size < 0) {
        if (errno == EINTR || errno == EAGAIN) return State::going;
        complain("requests can't be read", errno);
        return State::failed;
    }
    pending_.append(buffer.data(), static_cast<std::size_t>(size));
    return serveLines();
}

Server::State Server::serveLines()
{
    std::size_t start = 0;
    for (auto end = pending_.find('\n'); end != std::string::npos; end = pending_.find('\n', start)) {
        const auto request = std::string_view{pending_}.substr(start, end - start);
        start = end + 1;
        if (isSkippingLine_) {
            isSkippingLine_ = false;
            continue;
        }
        if (const auto state = serve(request); state != State::going) return state;
    }
    pending_.erase(0, start);
    if (isSkippingLine_) pending_.clear();
    if (pending_.size() <= longestRequest) return State::going;
    isSkippingLine_ = true;
    const auto state = serve(pending_);
    pending_.clear();
    return state;
}

Server::State Server::serve(std::string_view request)
{
    if (request.size() > longestRequest) {
        complain("a request is too long");
        return write("0\n");
    }
    const auto reply = respond_(request);
    if (reply.kind == Reply::Kind::refused) return State::failed;
    return write(std::to_string(reply.text.size()) + "\n" + reply.text);
}

Server::State Server::write(std::string_view text)
{
    while (!text.empty()) {
        const auto size = ::write(output_, text.data(), text.size());
        if (size >= 0) {
            text.remove_prefix(static_cast<std::size_t>(size));
            continue;
        }
        if (errno == EINTR) continue;
        if (errno == EPIPE) return State::ended;
        if (errno != EAGAIN) {
            complain("an answer can't be written", errno);
            return State::failed;
        }
        pollfd waiting{output_, POLLOUT, 0};
        waitFor(&waiting, 1, -1);
    }
    return State::going;
}

} // namespace quellon
