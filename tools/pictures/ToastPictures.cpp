#include "Canvas.h"
#include "Picture.h"
#include "World.h"

#include "QuellonCore/Notifications/NotificationComposer.h"
#include "QuellonCore/Presentation/ToastPresenter.h"
#include "QuellonUI/Toasts/ToastWindow.h"

#include <QPainter>

namespace quellon {

namespace {

/// What the guard says when an application has crossed a limit, by the level of its rule.
NotificationPlan breach(const std::string& app, std::uint64_t bytes, ActionLevel level)
{
    World world;
    world.spend(0);
    world.spend(13'000 * mega);
    GuardRule rule;
    rule.windowSeconds = Seconds{60.0};
    rule.thresholdBytes = 46 * mega;
    rule.level = level;
    return NotificationComposer::plan({app, rule, bytes, {}}, world.engine().budgetStatus());
}

NotificationPlan enforced()
{
    return NotificationComposer::enforcedPlan("qbittorrent", 184 * mega, "1min", EnforcementAction::suspend);
}

NotificationPlan longOne()
{
    return NotificationComposer::blockedAppPlan("百度网盘同步空间客户端更新服务进程 with-a-very-long-name-indeed 🎧",
                                                3 * mega, std::nullopt, true, 5);
}

QImage drawn(const NotificationPlan& plan)
{
    ToastWindow window{ToastModel::of(plan, 1)};
    window.showAt({});
    return Canvas::drawn(window);
}

QImage single()
{
    return drawn(breach("firefox-esr", 61 * mega, ActionLevel::ask));
}

/// As they stand on a screen, in the places that the layout gives them.
QImage stack()
{
    const std::vector<QImage> toasts{single(), drawn(enforced()),
                                     drawn(breach("dropbox", 52 * mega, ActionLevel::notify))};
    std::vector<ToastLayout::Size> sizes;
    for (const QImage& each : toasts) sizes.push_back({Canvas::size(each).width(), Canvas::size(each).height()});
    constexpr ToastLayout::Frame area{0, 0, 420, 520};
    const auto corners = ToastLayout::corners(area, sizes);
    QImage image = Canvas::empty({area.width, area.height}, Canvas::desktop());
    QPainter painter{&image};
    for (std::size_t i = 0; i < toasts.size(); ++i) painter.drawImage(QPoint{corners[i].x, corners[i].y}, toasts[i]);
    return image;
}

} // namespace

std::vector<Picture> toastPictures()
{
    return {{QStringLiteral("toast"), single, true},
            {QStringLiteral("toast-long"), [] { return drawn(longOne()); }},
            {QStringLiteral("toast-stack"), stack}};
}

} // namespace quellon
