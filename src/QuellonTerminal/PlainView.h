#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Support/Calendar.h"
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

    /// Prints what the engine already tells. `ended` is called at most once, and nothing is printed after it.
    PlainView(GuardEngine& engine, const Calendar& calendar, int descriptor, std::function<void(End)> ended);
    PlainView(const PlainView&) = delete;
    PlainView& operator=(const PlainView&) = delete;

private:
    GuardEngine& engine_;
    Calendar calendar_;
    int descriptor_;
    std::function<void(End)> ended_;
    PlainLines lines_;
    std::string waiting_;
    RunLoop::Handle retry_;
    GuardEngine::Observation observation_;

    void refresh();
    void flush();
};

} // namespace quellon
