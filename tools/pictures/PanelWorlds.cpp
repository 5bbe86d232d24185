#include "PanelWorlds.h"

namespace quellon {

namespace {

using namespace std::chrono_literals;

MenuPanelModel guarding()
{
    return ordinaryWorld()->panel();
}

MenuPanelModel expanded()
{
    return ordinaryWorld()->panel({"nextcloud", false});
}

MenuPanelModel quiet()
{
    return World{}.panel();
}

MenuPanelModel off()
{
    World world;
    world.engine().stop();
    return world.panel();
}

MenuPanelModel idle()
{
    World world;
    world.leave();
    return world.panel();
}

MenuPanelModel tether()
{
    World world;
    world.change([](GuardSettings& settings) { settings.updateCheckConsent = UpdateCheckConsent::unasked; });
    world.leave("enx02a1");
    return world.panel({{}, true});
}

/// Over the plan, and the traffic can't be read.
MenuPanelModel over()
{
    World world;
    world.findUpdate();
    world.change([](GuardSettings& settings) { settings.planGB() = 8; });
    world.spend(0);
    world.spend(7'900 * mega);
    world.failToSample();
    return world.panel();
}

MenuPanelModel longNames()
{
    World world;
    world.move({{"unattended-upgrades-with-a-very-long-name-indeed", 38 * mega},
                {"网易云音乐", 31 * mega},
                {"百度网盘同步空间客户端更新服务进程", 26 * mega},
                {"Ärger & <b>Söhne 🎧", 18 * mega},
                {"firefox-esr", 12 * mega},
                {"telegram-desktop", 9 * mega},
                {"thunderbird", 5 * mega},
                {"spotify", 4 * mega},
                {"geoclue", mega},
                {"fwupd", mega / 2},
                {"snapd", mega / 3},
                {"avahi-daemon", mega / 9}});
    world.freeze("暂停的非常非常非常非常长的应用程序名称 download manager");
    world.engine().addProfile("中国移动 5G 畅享套餐 — travelling abroad");
    world.spend(0);
    world.spend(160 * mega);
    return world.panel({"百度网盘同步空间客户端更新服务进程", false});
}

} // namespace

std::unique_ptr<World> ordinaryWorld()
{
    auto world = std::make_unique<World>();
    world->change([](GuardSettings& settings) {
        settings.planGB() = 20;
        settings.profiles.front().name = "Home SIM";
    });
    const UUID home = world->engine().settings().activeProfileID;
    world->engine().addProfile("Travel SIM");
    world->engine().selectProfile(home);
    // Where the counting begins, and what the carrier says was used before.
    world->spend(0);
    const NumberField carrier{NumberField::Kind::carrierReading, {}};
    world->does(SettingsActions::EditNumber{carrier, "8.6"});
    world->does(SettingsActions::CommitNumber{carrier});
    world->does(SettingsActions::MatchCarrier{});
    // What a steady one has moved over the hour.
    for (int i = 0; i < 12; ++i) {
        world->move({{"dropbox", 15 * mega}});
        world->wait(240s);
    }
    world->move({{"firefox-esr", 41 * mega},
                 {"nextcloud", 23 * mega},
                 {"telegram-desktop", 9 * mega},
                 {"dropbox", 4 * mega},
                 {"thunderbird", 3 * mega},
                 {"geoclue", mega / 2},
                 {"fwupd", mega / 4}});
    world->engine().snooze("telegram-desktop", 12);
    world->freeze("steam");
    world->freeze("qbittorrent");
    world->spend(238 * mega);
    return world;
}

std::vector<PanelMoment> panelMoments()
{
    return {{"guarding", guarding}, {"expanded", expanded}, {"quiet", quiet}, {"idle", idle},
            {"tether", tether},     {"off", off},           {"over", over},   {"long-names", longNames}};
}

} // namespace quellon
