#include "QuellonTerminal/PlainView.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

constexpr Seconds retryDelay{0.25};

/// Whether a write of at most PIPE_BUF bytes comes back at once, be it with an error.
bool isReady(int descriptor)
{
    pollfd waited{descriptor, POLLOUT, 0};
    return poll(&waited, 1, 0) != 0;
}

} // namespace

PlainView::PlainView(GuardEngine& engine, NotificationFeed& feed, int descriptor, std::function<void(End)> ended)
    : engine_(engine),
      descriptor_(descriptor),
      ended_(std::move(ended)),
      observation_(engine, [this] { refresh(); }),
      subscription_(feed, [this](const NotificationPlan& plan) { lines_.add(plan, clockTime()); })
{
    refresh();
}

void PlainView::refresh()
{
    std::string text = lines_.next(OverviewModel::of(engine_, engine_.host().clock.now()), clockTime(),
                                   engine_.sampling().completedTicks);
    if (ended_ == nullptr || waiting_.size() + text.size() > mostWaiting) return;
    waiting_ += text;
    flush();
}

std::string PlainView::clockTime() const
{
    const Clock& clock = engine_.host().clock;
    return clock.calendar().clockTime(clock.now());
}

void PlainView::flush()
{
    while (!waiting_.empty()) {
        ssize_t count = -1;
        errno = EAGAIN;
        if (isReady(descriptor_)) {
            count = write(descriptor_, waiting_.data(), std::min<std::size_t>(waiting_.size(), PIPE_BUF));
        }
        const int error = errno;
        if (count >= 0) {
            waiting_.erase(0, static_cast<std::size_t>(count));
        } else if (error == EAGAIN) {
            retry_ = engine_.host().runLoop.after(retryDelay, [this] { flush(); });
            return;
        } else if (error != EINTR) {
            waiting_.clear();
            std::exchange(ended_, nullptr)(error == EPIPE ? End::readerGone : End::failed);
            return;
        }
    }
}

} // namespace quellon
