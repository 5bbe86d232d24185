#pragma once

#include "QuellonCore/Host/RunLoop.h"
#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Presentation/Notice.h"
#include "QuellonCore/Presentation/Tint.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// How a button of a toast is drawn.
struct ToastButtonStyle {
    /// White stands for a text on the accent colour.
    enum class Text { primary, white, red };
    enum class Ground { grey, accent, red };

    bool isPrimary = false; ///< The first action.
    bool isDestructive = false;

    /// Red on faint red when it is destructive, primary or not; otherwise white on the accent colour when it is
    /// primary, or else ordinary text on faint grey.
    [[nodiscard]] Text text() const;
    [[nodiscard]] Ground ground() const;
    [[nodiscard]] double groundOpacity() const;

    bool operator==(const ToastButtonStyle&) const = default;
};

/// A small window of the program's own with one notification.
struct ToastModel {
    static constexpr int width = 340;
    static constexpr int padding = 12;
    static constexpr std::string_view closeSymbol = "xmark";
    static constexpr std::string_view closeAccessibilityLabel = "Dismiss";

    std::uint64_t id = 0;
    std::string symbol;
    Tint tint = Tint::secondary; ///< Of the symbol.
    Notice notice;
    std::vector<ToastButtonStyle> buttonStyles; ///< One per button of the notice.

    [[nodiscard]] static ToastModel of(const NotificationPlan& plan, std::uint64_t id);

    bool operator==(const ToastModel&) const = default;
};

/// Where toasts stand, in points with y downwards.
namespace ToastLayout {

struct Size {
    int width = 0;
    int height = 0;
};
struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};
struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

/// The top left corners of toasts of these sizes, oldest first: at the top right of the main screen's free area, the
/// oldest on top.
[[nodiscard]] std::vector<Point> corners(const Frame& freeArea, const std::vector<Size>& toasts);

} // namespace ToastLayout

/// Keeps the notifications that are on the screen: three at most, of which transient ones go by themselves. Main thread
/// only.
class ToastPresenter {
public:
    using OnAction = std::function<void(NotificationAction action, const std::vector<std::string>& apps)>;

    /// `changed` is called after each change of `toasts`. Both may be empty. `runLoop` must outlive it.
    ToastPresenter(RunLoop& runLoop, OnAction onAction, std::function<void()> changed);
    ToastPresenter(const ToastPresenter&) = delete;
    ToastPresenter& operator=(const ToastPresenter&) = delete;

    /// Nothing for a plan without a title. One that is too many pushes the oldest out, whatever its style.
    void show(const NotificationPlan& plan);
    /// Presses a button, 0 for the first: its action is told, then the toast is gone. Does nothing when there is no
    /// such toast or button, or when the toast has moved within `Notice::holdTime` other than by the closing of
    /// another.
    void press(std::uint64_t id, std::size_t button);
    /// Closes a toast without an action.
    void close(std::uint64_t id);
    void dismissAll();

    /// Oldest first.
    [[nodiscard]] std::vector<ToastModel> toasts() const;
    [[nodiscard]] std::size_t visibleCount() const { return toasts_.size(); }

private:
    struct Toast {
        std::uint64_t id = 0;
        NotificationPlan plan;
        RunLoop::Handle end;  ///< Of a transient one.
        RunLoop::Handle hold; ///< While it stands, nothing is pressed.
    };
    using Toasts = std::list<Toast>;

    [[nodiscard]] Toasts::iterator find(std::uint64_t id);
    /// Takes one away that was not closed; those behind it move, and can't be pressed for a moment.
    void takeAway(std::uint64_t id);
    void tell() const;

    RunLoop& runLoop_;
    OnAction onAction_;
    std::function<void()> changed_;
    Toasts toasts_;
    std::uint64_t lastID_ = 0;
};

} // namespace quellon
