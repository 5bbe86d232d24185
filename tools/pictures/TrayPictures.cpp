#include "Canvas.h"
#include "PanelWorlds.h"
#include "Picture.h"

#include "QuellonUI/Theme.h"
#include "QuellonUI/Tray/TrayPicture.h"

#include <QColor>
#include <QPainter>

#include <chrono>

namespace quellon {

namespace {

using namespace std::chrono_literals;

TrayModel modelOf(World& world)
{
    return TrayModel::of(world.engine(), world.now());
}

/// An application has crossed the limit just now.
std::unique_ptr<World> warned()
{
    auto world = std::make_unique<World>();
    world->change([](GuardSettings& settings) { settings.rules()[0].level = ActionLevel::notify; });
    world->spend(0);
    world->spend(13'000 * mega);
    world->move({{"firefox-esr", 61 * mega}});
    return world;
}

/// The item in every state that looks different.
std::vector<TrayModel> states()
{
    std::vector<TrayModel> result;
    World world;
    world.spend(0);
    world.spend(13'000 * mega);
    result.push_back(modelOf(world));
    world.spend(15'000 * mega);
    result.push_back(modelOf(world));
    result.push_back(modelOf(*ordinaryWorld()));
    const auto alerted = warned();
    result.push_back(modelOf(*alerted));
    alerted->wait(31s);
    result.push_back(modelOf(*alerted));
    world.leave();
    result.push_back(modelOf(world));
    world.leave("enx02a1");
    result.push_back(modelOf(world));
    world.engine().stop();
    result.push_back(modelOf(world));
    return result;
}

/// A piece of a panel with the item in all states, at the sizes of panels; with what is written over it and without.
QImage bar(const QColor& ground)
{
    const std::vector<TrayModel> models = states();
    constexpr int gap = 8;
    std::vector<QImage> rows;
    for (const bool withBadge : {false, true}) {
        for (const int points : {22, 24, 32}) {
            std::vector<QImage> images;
            for (const TrayModel& model : models) {
                const double ratio = Canvas::empty({1, 1}, ground).devicePixelRatio();
                images.push_back(TrayPicture::of(model, withBadge).image(static_cast<int>(points * ratio)));
                images.back().setDevicePixelRatio(ratio);
            }
            rows.push_back(Canvas::row(images, gap, gap, ground));
        }
    }
    return Canvas::column(rows, ground);
}

QImage bars()
{
    return Canvas::row({bar(QColor{0x1f, 0x1f, 0x22}), bar(QColor{0x3a, 0x3a, 0x3f}), bar(QColor{0xdd, 0xdd, 0xe0}),
                        bar(QColor{0xfa, 0xfa, 0xfb})},
                       0, 0, Qt::transparent);
}

} // namespace

std::vector<Picture> trayPictures()
{
    return {{QStringLiteral("tray"), bars}};
}

} // namespace quellon
