#include "QuellonTerminal/CursesScreen.h"

#include "QuellonCore/Support/Fatal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

// The macros of the plain names would reach into everything included after them.
#define NCURSES_NOMACROS // NOLINT: read by the header below
#include <curses.h>
#include <term.h>

namespace quellon {

namespace {

using TerminalLayout::Style;

constexpr short ownColour = -1;

/// How a style looks: an attribute, and a colour where there are colours.
struct Look {
    attr_t attributes;
    short colour;
};

constexpr Look look(Style style)
{
    switch (style) {
    case Style::plain:
        break;
    case Style::strong:
        return {A_BOLD, ownColour};
    case Style::faint:
        return {A_DIM, ownColour};
    case Style::good:
        return {A_BOLD, COLOR_GREEN};
    case Style::waiting:
        return {A_BOLD, COLOR_YELLOW};
    case Style::bar:
        return {A_NORMAL, COLOR_BLUE};
    case Style::warning:
        return {A_BOLD, COLOR_YELLOW};
    case Style::enforced:
        return {A_BOLD, COLOR_RED};
    case Style::selected:
        return {A_REVERSE, ownColour};
    }
    return {A_NORMAL, ownColour};
}

/// Whether the terminal that TERM names can be drawn on.
bool canPlaceCursor()
{
    int error = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &error) != OK) return false;
    std::string name = "cup";
    const bool result = tigetstr(name.data()) != nullptr;
    del_curterm(cur_term);
    return result;
}

} // namespace

struct CursesScreen::Curses {
    SCREEN* screen = nullptr;
    bool colours = false;
    FatalCleanup fatalCleanup{[] { endwin(); }};
};

std::unique_ptr<CursesScreen> CursesScreen::open(bool colours)
{
    if (!canPlaceCursor()) return nullptr;
    SCREEN* const screen = newterm(nullptr, stdout, stdin);
    if (screen == nullptr) return nullptr;
    auto curses = std::make_unique<Curses>();
    curses->screen = screen;
    cbreak();
    noecho();
    nonl();
    curs_set(0);
    leaveok(stdscr, TRUE);
    scrollok(stdscr, FALSE);
    if (colours && has_colors() && start_color() == OK) {
        use_default_colors();
        curses->colours = true;
        for (short i = 0; i < TerminalLayout::styleCount; ++i) {
            init_pair(static_cast<short>(i + 1), look(static_cast<Style>(i)).colour, ownColour);
        }
    }
    return std::unique_ptr<CursesScreen>{new CursesScreen{std::move(curses)}};
}

CursesScreen::CursesScreen(std::unique_ptr<Curses> curses) : curses_(std::move(curses)) {}

CursesScreen::~CursesScreen()
{
    endwin();
    delscreen(curses_->screen);
}

CursesScreen::Size CursesScreen::size() const
{
    return {getmaxx(stdscr), getmaxy(stdscr)};
}

void CursesScreen::adoptSize()
{
    winsize now{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &now) != 0 || now.ws_row == 0 || now.ws_col == 0) return;
    resizeterm(now.ws_row, now.ws_col);
    forget();
}

void CursesScreen::paint(const std::vector<TerminalLayout::Line>& content)
{
    werase(stdscr);
    const int count = std::min(static_cast<int>(content.size()), size().height);
    for (int row = 0; row < count; ++row) {
        wmove(stdscr, row, 0);
        for (const auto& span : content[static_cast<std::size_t>(row)]) {
            const short pair = curses_->colours ? static_cast<short>(static_cast<int>(span.style) + 1) : short{0};
            wattr_set(stdscr, look(span.style).attributes, pair, nullptr);
            waddnstr(stdscr, span.text.c_str(), static_cast<int>(span.text.size()));
        }
    }
    wrefresh(stdscr);
}

void CursesScreen::forget()
{
    clearok(stdscr, TRUE);
}

} // namespace quellon
