#pragma once

#include "QuellonCore/Presentation/ToastPresenter.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quellon {

class ToastWindow;

/// The toasts on the main screen, each in a window of its own, at the top right of what panels leave free.
///
/// Where a program can't place its windows, as on Wayland, toasts would stand in the middle of what the user does and
/// take the focus. There nothing is shown, and `missed` tells so.
class ToastScreen final : public QObject {
    Q_OBJECT
public:
    explicit ToastScreen(QObject* parent = nullptr);
    ~ToastScreen() override;

    /// Shows these, oldest first. Returns at once when they are what is shown.
    void setToasts(const std::vector<ToastModel>& toasts);
    /// Whether the window system lets toasts be placed, without taking the focus.
    [[nodiscard]] static bool canShow();
    /// The windows, oldest first.
    [[nodiscard]] std::vector<ToastWindow*> windows() const;

Q_SIGNALS:
    /// A button, 0 for the first.
    void pressed(std::uint64_t id, std::size_t button);
    void closed(std::uint64_t id);
    /// A new toast can't be shown: it is for other channels to reach the user.
    void missed(const ToastModel& toast);

private:
    struct Later {
        void operator()(ToastWindow* window) const;
    };

    std::vector<ToastModel> toasts_;
    std::map<std::uint64_t, std::unique_ptr<ToastWindow, Later>> windows_;

    void open(const ToastModel& toast);
    void place() const;
    void watchPrimaryScreen();
};

} // namespace quellon
