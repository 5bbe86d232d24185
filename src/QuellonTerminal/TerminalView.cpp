#include "QuellonTerminal/TerminalView.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace quellon {

std::unique_ptr<TerminalView> TerminalView::open(GuardEngine& engine, NotificationFeed& feed, const Options& options,
                                                 const Watch& watch, std::function<void()> quit)
{
    auto screen = CursesScreen::open(options.colours);
    if (!screen) return nullptr;
    std::unique_ptr<TerminalView> view{new TerminalView{engine, feed, std::move(screen), std::move(quit)}};
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

TerminalView::TerminalView(GuardEngine& engine, NotificationFeed& feed, std::unique_ptr<CursesScreen> screen,
                           std::function<void()> quit)
    : engine_(engine),
      quit_(std::move(quit)),
      screen_(std::move(screen)),
      controls_(engine, feed, [this] { refresh(); }),
      observation_(engine, [this] { refresh(); })
{
}

TerminalView::~TerminalView() = default;

void TerminalView::refresh()
{
    const Date now = engine_.host().clock.now();
    OverviewModel model = OverviewModel::of(engine_, now);
    ControlsModel controls = controls_.model(now);
    if (shown_ == model && shownControls_ == controls) return;
    shown_ = std::move(model);
    shownControls_ = std::move(controls);
    paint();
}

void TerminalView::paint()
{
    const auto [width, height] = screen_->size();
    screen_->paint(TerminalLayout::lines(*shown_, shownControls_, width, height));
}

void TerminalView::resized()
{
    resizes_.drain();
    screen_->adoptSize();
    if (shown_) paint();
}

void TerminalView::readKeys()
{
    std::array<char, 256> bytes{};
    const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) return end();
    // Whoever presses a key has seen what is on the screen.
    engine_.markAlertsSeen();
    for (const Key& key : keys_.take({bytes.data(), static_cast<std::size_t>(count)})) {
        if (key.kind == Key::Kind::quit) return end();
        obey(key);
    }
}

void TerminalView::obey(const Key& key)
{
    switch (key.kind) {
    case Key::Kind::redraw:
        screen_->forget();
        paint();
        break;
    case Key::Kind::command:
        controls_.perform(key.command);
        break;
    case Key::Kind::answer:
        controls_.answer(key.button);
        break;
    case Key::Kind::quit:
        break;
    }
}

void TerminalView::end()
{
    keyWatch_.reset(); // an input that has ended stays readable for ever
    quit_();
}

} // namespace quellon
