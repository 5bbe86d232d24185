#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonTerminal/PlainLines.h"

#include <functional>
#include <string>

namespace quellon {

/// The engine as lines on a descriptor, written as they come. A reader that is slow or has stopped never holds up the
/// guard: what it has not taken waits, up to a limit beyond which new lines are left out. SIGPIPE must be ignored.
class PlainView {
public:
    /// Why no more can be written.
    enum class End { readerGone, failed };

    /// The most text that waits for the reader, in bytes.
    static constexpr std::size_t mostWaiting = 1 << 20;

    /// Prints what the engine already tells, and from now on the notifications of the feed. `ended` is called at most
    /// once, and nothing is printed after it.
    PlainView(GuardEngine& engine, NotificationFeed& feed, int descriptor, std::function<void(End)> ended);
    PlainView(const PlainView&) = delete;
    PlainView& operator=(const PlainView&) = delete;

private:
    GuardEngine& engine_;
    int descriptor_;
    std::function<void(End)> ended_;
    PlainLines lines_;
    std::string waiting_;
    RunLoop::Handle retry_;
    GuardEngine::Observation observation_;
    NotificationFeed::Subscription subscription_;

    [[nodiscard]] std::string clockTime() const;
    void refresh();
    void flush();
};

} // namespace quellon
