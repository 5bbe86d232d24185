#include "QuellonTerminal/TerminalView.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace quellon {

std::unique_ptr<TerminalView> TerminalView::open(GuardEngine& engine, const Calendar& calendar, const Options& options,
                                                 const Watch& watch, std::function<void()> quit)
{
    auto screen = CursesScreen::open(options.colours);
    if (!screen) return nullptr;
    std::unique_ptr<TerminalView> view{new TerminalView{engine, calendar, std::move(screen), std::move(quit)}};
    TerminalView* const self = view.get();
    if (options.keys) view->keyWatch_ = watch(STDIN_FILENO, [self] { self->readKeys(); });
    if (view->resizes_.descriptor() >= 0) {
        view->resizeWatch_ = watch(view->resizes_.descriptor(), [self] { self->resized(); });
    }
    // The size may have changed before anybody listened.
    view->resized();
    view->refresh();
    return view;
}

TerminalView::TerminalView(GuardEngine& engine, const Calendar& calendar, std::unique_ptr<CursesScreen> screen,
                           std::function<void()> quit)
    : engine_(engine),
      calendar_(calendar),
      quit_(std::move(quit)),
      screen_(std::move(screen)),
      observation_(engine, [this] { refresh(); })
{
}

TerminalView::~TerminalView() = default;

void TerminalView::refresh()
{
    OverviewModel model = OverviewModel::of(engine_, engine_.host().clock.now(), calendar_);
    if (shown_ == model) return;
    shown_ = std::move(model);
    paint();
}

void TerminalView::paint()
{
    const auto [width, height] = screen_->size();
    screen_->paint(TerminalLayout::lines(*shown_, width, height));
}

void TerminalView::resized()
{
    resizes_.drain();
    screen_->adoptSize();
    if (shown_) paint();
}

void TerminalView::readKeys()
{
    constexpr char redraw = '\f'; // Ctrl-L
    std::array<char, 256> bytes{};
    const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    const std::string_view keys{bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    if (keys.find(redraw) != std::string_view::npos) {
        screen_->forget();
        paint();
    }
    if (count <= 0 || keys.find_first_of("qQ") != std::string_view::npos) {
        keyWatch_.reset(); // an input that has ended stays readable for ever
        quit_();
    }
}

} // namespace quellon
