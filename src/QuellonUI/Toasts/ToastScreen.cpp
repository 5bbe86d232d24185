#include "QuellonUI/Toasts/ToastScreen.h"

#include "QuellonUI/Kit/WindowSystem.h"
#include "QuellonUI/Toasts/ToastView.h"
#include "QuellonUI/Toasts/ToastWindow.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace quellon {

void ToastScreen::Later::operator()(ToastWindow* window) const
{
    window->hide();
    window->deleteLater(); // it may be its own button that was pressed
}

ToastScreen::ToastScreen(QObject* parent) : QObject(parent)
{
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &ToastScreen::watchPrimaryScreen);
    watchPrimaryScreen();
}

ToastScreen::~ToastScreen() = default;

void ToastScreen::setToasts(const std::vector<ToastModel>& toasts)
{
    if (toasts == toasts_) return;
    const auto before = std::exchange(toasts_, toasts);
    const auto has = [](const std::vector<ToastModel>& all, std::uint64_t id) {
        return std::ranges::find(all, id, &ToastModel::id) != all.end();
    };
    std::erase_if(windows_, [&](const auto& each) { return !has(toasts, each.first); });
    for (const ToastModel& toast : toasts) {
        const auto window = windows_.find(toast.id);
        if (window != windows_.end())
            window->second->setModel(toast);
        else if (canShow())
            open(toast);
        else if (!has(before, toast.id))
            Q_EMIT missed(toast);
    }
    place();
}

void ToastScreen::open(const ToastModel& toast)
{
    auto* const window = new ToastWindow{toast};
    const std::uint64_t id = toast.id;
    connect(&window->view(), &ToastView::pressed, this, [this, id](std::size_t button) { Q_EMIT pressed(id, button); });
    connect(&window->view(), &ToastView::closed, this, [this, id] { Q_EMIT closed(id); });
    connect(window, &ToastWindow::resized, this, &ToastScreen::place);
    windows_.emplace(id, window);
}

bool ToastScreen::canShow()
{
    return canPlaceWindows();
}

std::vector<ToastWindow*> ToastScreen::windows() const
{
    std::vector<ToastWindow*> result;
    for (const ToastModel& toast : toasts_) {
        const auto found = windows_.find(toast.id);
        if (found != windows_.end()) result.push_back(found->second.get());
    }
    return result;
}

void ToastScreen::place() const
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return;
    const std::vector<ToastWindow*> all = windows();
    std::vector<ToastLayout::Size> sizes;
    for (const ToastWindow* const each : all) sizes.push_back({each->width(), each->height()});
    const QRect area = screen->availableGeometry();
    const auto corners = ToastLayout::corners({area.left(), area.top(), area.width(), area.height()}, sizes);
    for (std::size_t i = 0; i < all.size(); ++i) all[i]->showAt({corners[i].x, corners[i].y});
}

void ToastScreen::watchPrimaryScreen()
{
    if (const QScreen* const screen = QGuiApplication::primaryScreen())
        connect(screen, &QScreen::availableGeometryChanged, this, &ToastScreen::place, Qt::UniqueConnection);
    place();
}

} // namespace quellon
