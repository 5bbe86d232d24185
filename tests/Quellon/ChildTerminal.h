#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <termios.h>
#include <utility>
#include <vector>

namespace quellon {

/// The real program in a terminal of its own, which this test is the keyboard and the screen of.
class ChildTerminal {
public:
    struct Setup {
        std::vector<std::string> arguments;
        /// On top of a small environment with TERM=xterm-256color; an absent value takes a variable out.
        std::vector<std::pair<std::string, std::optional<std::string>>> environment = {};
        unsigned short width = 80;
        unsigned short height = 24;
        std::string program = QUELLON_PROGRAM;
        std::vector<int> ignored = {}; ///< Signals that are ignored when the program begins.
        int output = -1;               ///< Instead of the screen, when it is a descriptor.
        void (*prepare)() = nullptr;   ///< Called in the child right before the program begins.
    };

    explicit ChildTerminal(const Setup& setup);
    /// Kills the program when it still runs.
    ~ChildTerminal();
    ChildTerminal(const ChildTerminal&) = delete;
    ChildTerminal& operator=(const ChildTerminal&) = delete;

    /// Reads the screen until `text` has come since the last call. False when it did not within 20 seconds.
    [[nodiscard]] bool waitFor(std::string_view text);
    /// Reads the screen until `holds` does. False when it did not within 20 seconds.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds);
    /// Presses keys.
    void type(std::string_view keys);
    void resize(unsigned short width, unsigned short height);
    void signal(int number);
    [[nodiscard]] pid_t pid() const { return child_; }
    /// Closes the window: keys and screen are gone.
    void close();

    /// Waits for the end of the program: its exit status, or 128 and the number of the signal that ended it; absent
    /// when it did not end within 20 seconds.
    [[nodiscard]] std::optional<int> wait();

    /// Everything that came to the screen.
    [[nodiscard]] const std::string& screen() const { return screen_; }
    /// True when the terminal's modes are what they were at the start.
    [[nodiscard]] bool isRestored() const;

private:
    int master_ = -1;
    int slave_ = -1;
    pid_t child_ = -1;
    termios before_{};
    std::string screen_;
    std::size_t seen_ = 0;

    bool readSome(int milliseconds);
};

} // namespace quellon
