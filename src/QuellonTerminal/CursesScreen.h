#pragma once

#include "QuellonTerminal/TerminalLayout.h"

#include <memory>
#include <vector>

namespace quellon {

/// The terminal on standard output as a screen of cells. While it lives, keys arrive one by one and unechoed on
/// standard input. One at a time a process.
class CursesScreen {
public:
    struct Size {
        int width = 0;
        int height = 0;
        bool operator==(const Size&) const = default;
    };

    /// Takes the terminal over. Absent, with the terminal untouched, when it can't place a cursor or is unknown.
    /// `colours` false leaves everything in the terminal's own colour.
    [[nodiscard]] static std::unique_ptr<CursesScreen> open(bool colours);
    /// Gives the terminal back as it was.
    ~CursesScreen();
    CursesScreen(const CursesScreen&) = delete;
    CursesScreen& operator=(const CursesScreen&) = delete;

    [[nodiscard]] Size size() const;
    /// Takes over the size that the terminal has now.
    void adoptSize();
    /// Shows these lines from the top and nothing else; sends what differs from before.
    void paint(const std::vector<TerminalLayout::Line>& content);
    /// The next `paint` sends everything.
    void forget();

private:
    struct Curses;
    std::unique_ptr<Curses> curses_;

    explicit CursesScreen(std::unique_ptr<Curses> curses);
};

} // namespace quellon
