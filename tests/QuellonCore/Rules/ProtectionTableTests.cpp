#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Rules/ProtectionTable.h"
#include "QuellonCore/Support/CaseFold.h"
#include "QuellonCore/Support/Text.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {
namespace {

using Names = std::vector<std::string>;

/// What stands in backquotes, in its order.
Names quoted(std::string_view text)
{
    Names names;
    while (text.find('`') != std::string_view::npos) {
        (void)takeUntil(text, '`');
        names.emplace_back(takeUntil(text, '`'));
    }
    return names;
}

/// The entries of the tables of docs/protection.md by the heading above them. The entries of a row stand in its second
/// column.
std::map<std::string, std::vector<Names>> documentedTables()
{
    const std::string text = fileText(TEST_DATA "/../../docs/protection.md");
    std::map<std::string, std::vector<Names>> tables;
    std::string heading;
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = takeLine(rest);
        if (line.starts_with('#')) heading = trimmed(line.substr(line.find(' ')));
        if (!line.starts_with("| ")) continue;
        (void)takeUntil(line, '|');
        (void)takeUntil(line, '|');
        if (Names names = quoted(takeUntil(line, '|')); !names.empty()) tables[heading].push_back(std::move(names));
    }
    return tables;
}

Names joined(const std::vector<Names>& rows)
{
    Names all;
    for (const Names& row : rows) all.insert(all.end(), row.begin(), row.end());
    return all;
}

TEST(ProtectionTable, isDocumentedForMacOS)
{
    const auto tables = documentedTables();
    const ProtectionTable table = ProtectionTable::macOS();
    ASSERT_TRUE(tables.contains("macOS"));
    EXPECT_EQ(tables.at("macOS"),
              (std::vector<Names>{table.protectedNames.names(), table.cliOnlyNames.names(), table.systemPathPrefixes}));
}

TEST(ProtectionTable, isDocumentedForLinux)
{
    struct Case {
        const char* heading;
        Names names;
    };
    const ProtectionTable table = ProtectionTable::linux();
    const Case cases[] = {
        {"Sessions: protected with their process group", table.protectedNames.names()},
        {"Login shells: protected with their process group where they lead it", table.loginShells.names()},
        {"Machinery of the session: protected alone", table.machineryNames.names()},
    };
    const auto tables = documentedTables();
    EXPECT_EQ(tables.size(), std::size(cases) + 1) << "these and macOS";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.heading);
        ASSERT_TRUE(tables.contains(c.heading));
        EXPECT_EQ(joined(tables.at(c.heading)), c.names);
    }
}

TEST(ProtectionTable, namesOfLinuxStandOnce)
{
    const ProtectionTable table = ProtectionTable::linux();
    std::set<std::string> folded;
    for (const ExecutableNames* names : {&table.protectedNames, &table.loginShells, &table.machineryNames}) {
        for (const std::string& name : names->names()) {
            EXPECT_TRUE(folded.insert(caseFolded(name)).second) << name;
            EXPECT_FALSE(name.empty());
            EXPECT_EQ(name.find('/'), std::string::npos) << name;
        }
    }
    EXPECT_GT(folded.size(), 100U);
}

TEST(ProtectionTable, whatMovesTheUsersDataStaysTouchable)
{
    const ProtectionTable table = ProtectionTable::linux();
    for (const char* name : {"firefox",
                             "chrome",
                             "chromium",
                             "thunderbird",
                             "evolution",
                             "nautilus",
                             "dolphin",
                             "gvfsd-http",
                             "gvfsd-smb",
                             "gvfsd-dav",
                             "gvfsd-google",
                             "kdeconnectd",
                             "goa-daemon",
                             "evolution-source-registry",
                             "evolution-calendar-factory",
                             "localsearch-3",
                             "tracker-miner-fs-3",
                             "baloo_file",
                             "akonadi_imap_resource",
                             "snap-store",
                             "deja-dup",
                             "onedrive",
                             "tor",
                             "slirp4netns",
                             "kioworker",
                             "packagekitd",
                             "gnome-software",
                             "plasma-discover",
                             "DiscoverNotifier",
                             "nextcloud",
                             "dropbox",
                             "syncthing",
                             "rclone",
                             "steam",
                             "git",
                             "curl",
                             "wget",
                             "rsync",
                             "sftp-server",
                             "apt",
                             "dnf",
                             "flatpak",
                             "snap",
                             "docker",
                             "node",
                             "python3",
                             "java",
                             "sh",
                             "dash",
                             "busybox",
                             "code",
                             "bwrap"}) {
        SCOPED_TRACE(name);
        for (const ExecutableNames* names : {&table.protectedNames, &table.loginShells, &table.machineryNames}) {
            EXPECT_EQ(names->find(name), nullptr);
        }
    }
}

TEST(ProtectionTable, whatADesktopWaitsForIsProtected)
{
    struct Case {
        const char* name;
        Names commands;
    };
    const Case cases[] = {
        {"every desktop",
         {"/usr/bin/dbus-broker", "/usr/bin/Xwayland", "/usr/libexec/at-spi2-registryd", "/usr/libexec/dconf-service",
          "/usr/libexec/xdg-desktop-portal", "/usr/libexec/xdg-document-portal", "/usr/bin/wireplumber",
          "/usr/bin/pipewire-pulse", "/usr/bin/gnome-keyring-daemon", "/usr/bin/fcitx5", "/usr/lib/systemd/systemd"}},
        {"GNOME",
         {"/usr/bin/gnome-shell", "/usr/libexec/gnome-session-binary", "/usr/libexec/gnome-session-service",
          "/usr/libexec/gsd-media-keys", "/usr/libexec/gsd-xsettings", "/usr/bin/gjs-console",
          "/usr/libexec/xdg-desktop-portal-gnome", "/usr/libexec/gvfsd", "/usr/libexec/gvfsd-fuse",
          "/usr/libexec/gvfs-udisks2-volume-monitor", "/usr/bin/ptyxis"}},
        {"Plasma",
         {"/usr/bin/kwin_wayland", "/usr/bin/plasmashell", "/usr/bin/ksmserver", "/usr/bin/startplasma-wayland",
          "/usr/bin/kded6", "/usr/bin/ksecretd", "/usr/libexec/kiod6", "/usr/libexec/xdg-desktop-portal-kde",
          "/usr/libexec/org_kde_powerdevil", "/usr/libexec/polkit-kde-authentication-agent-1"}},
        {"Xfce", {"/usr/bin/xfce4-session", "/usr/bin/xfwm4", "/usr/lib/xfce4/panel/wrapper-2.0", "/usr/bin/xfconfd"}},
        {"MATE", {"/usr/bin/mate-session", "/usr/bin/marco", "/usr/bin/mate-panel", "/usr/libexec/clock-applet"}},
        {"Cinnamon", {"/usr/bin/cinnamon", "/usr/bin/muffin", "/usr/libexec/csd-xsettings", "/usr/bin/nemo-desktop"}},
        {"LXQt", {"/usr/bin/lxqt-session", "/usr/bin/lxqt-panel", "/usr/bin/pcmanfm-qt", "/usr/bin/openbox"}},
        {"COSMIC",
         {"/usr/bin/cosmic-comp", "/usr/bin/cosmic-session", "/usr/bin/cosmic-panel", "/usr/bin/cosmic-files-applet",
          "/usr/libexec/xdg-desktop-portal-cosmic"}},
        {"sway", {"/usr/bin/sway", "/usr/bin/waybar", "/usr/bin/swaynag", "/usr/bin/mako", "/usr/bin/swaylock"}},
        {"Hyprland",
         {"/usr/bin/Hyprland", "/usr/bin/start-hyprland", "/usr/bin/hyprlock", "/usr/bin/quickshell",
          "/usr/libexec/xdg-desktop-portal-hyprland"}},
        {"i3", {"/usr/bin/i3", "/usr/bin/i3bar", "/usr/bin/xss-lock", "/usr/bin/i3lock", "/usr/bin/dunst"}},
    };
    const ProtectionTable table = ProtectionTable::linux();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const std::string& command : c.commands) EXPECT_NE(table.machineryNames.find(command), nullptr) << command;
    }
}

TEST(ProtectionTable, standsInThePlatform)
{
    EXPECT_EQ(Platform::macOS().protection, ProtectionTable::macOS());
    EXPECT_EQ(Platform::linux().protection, ProtectionTable::linux());
    EXPECT_TRUE(ProtectionTable::linux().systemPathPrefixes.empty());
}

} // namespace
} // namespace quellon
