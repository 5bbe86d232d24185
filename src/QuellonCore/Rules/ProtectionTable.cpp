#include "QuellonCore/Rules/ProtectionTable.h"

#include "QuellonCore/Support/Text.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

namespace {

// Names with a blank between them; no executable of these lists has one in its name.

/// Remote sessions and multiplexers. What runs in them is the user's work at a distance, so the group goes with them.
constexpr std::string_view remoteSessions =
    "ssh sshd sshd-session sshd-auth autossh dropbear dbclient mosh-client mosh-server et etserver etterminal "
    "tmux screen zellij dtach abduco tmate shpool waypipe putty plink screen-4.8.0 screen-4.9.0 screen-4.9.1 "
    "screen-5.0.0 screen-5.0.1";

/// Not sh, dash or busybox, which run scripts far more often than sessions.
constexpr std::string_view shells =
    "bash zsh fish ksh ksh93 mksh lksh oksh loksh tcsh csh bsd-csh yash nu elvish xonsh ion osh ysh pwsh "
    "oils-for-unix";

constexpr std::string_view guard = "Quellon quellon-probe";

/// Most of systemd's programs are listed by the process table under the name of their folder, which is "systemd".
constexpr std::string_view serviceManagers =
    "systemd (sd-pam) systemd-executor systemd-logind systemd-timesyncd elogind elogind-daemon init dinit "
    "runsvdir runsv s6-svscan s6-supervise supervise-daemon";

constexpr std::string_view messageBuses =
    "dbus-daemon dbus-broker dbus-broker-launch dbus-launch dbus-run-session at-spi-bus-launcher "
    "at-spi2-registryd xdg-dbus-proxy";

constexpr std::string_view displayServers =
    "Xorg X Xwayland xwayland-satellite Xephyr Xvnc Xtigervnc Xtightvnc x0vncserver x0tigervncserver x11vnc "
    "wayvnc xrdp-chansrv xrdp-sesexec krfb krdpserver gnome-remote-desktop-daemon vino-server x2goagent "
    "nxagent xinit xdm wdm slim ly greetd lightdm lxdm-binary lxdm-session sddm sddm-helper gdm gdm3 "
    "gdm-session-worker gdm-x-session gdm-wayland-session seatd plasmalogin plasmalogin-helper "
    "chrome-remote-desktop chrome-remote-desktop-host rustdesk anydesk TeamViewer_Desktop nxserver.bin "
    "nxnode.bin";

constexpr std::string_view compositors =
    "kwin_x11 kwin_wayland kwin_wayland_wrapper mutter mutter-x11-frames muffin marco metacity xfwm4 gala "
    "gala-daemon budgie-wm magpie_wm cosmic-comp deepin-kwin_x11 deepin-kwin_wayland treeland ukui-kwin_x11 "
    "ukui-kwin_wayland ukwm lomiri lomiri-system-compositor phoc compiz picom compton xcompmgr sway Hyprland "
    "river labwc wayfire niri dwl mango weston weston-desktop-shell weston-keyboard cage gamescope "
    "gamescope-wl miracle-wm i3 dwm bspwm sxhkd herbstluftwm awesome xmonad xmonad-x86_64-linux spectrwm "
    "leftwm leftwm-worker openbox fluxbox blackbox icewm icewm-session icewmbg icewmtray fvwm fvwm2 fvwm3 "
    "wmaker enlightenment enlightenment_start enlightenment_system e16 jwm pekwm ctwm twm cwm ratpoison "
    "stumpwm matchbox-window-manager start-hyprland gnome-kiosk hikari jay cagebreak xmonad-aarch64-linux "
    "notion sawfish afterstep sdorfehs";

constexpr std::string_view gnome =
    "gnome-shell gnome-shell-calendar-server gnome-session gnome-session-binary gnome-session-service "
    "gnome-session-ctl gnome-session-init-worker gnome-panel gnome-flashback gnome-screensaver "
    "gnome-screensaver-dialog gsd-a11y-settings gsd-color gsd-datetime gsd-disk-utility-notify "
    "gsd-housekeeping gsd-keyboard gsd-media-keys gsd-power gsd-print-notifications gsd-printer gsd-rfkill "
    "gsd-screensaver-proxy gsd-sharing gsd-smartcard gsd-sound gsd-usb-protection gsd-wacom gsd-wwan "
    "gsd-xsettings unity-panel-service unity-settings-daemon hud-service phosh phosh-session squeekboard "
    "phosh-osk-stub gnome-control-center-global-shortcuts-provider phosh-osk-stevia gjs-console";

constexpr std::string_view plasma =
    "plasmashell plasma_session startplasma-x11 startplasma-wayland ksmserver ksplashqml kded5 kded6 kdeinit5 "
    "kdeinit5_wrapper klauncher kglobalaccel5 kglobalacceld kactivitymanagerd krunner kaccess kcminit "
    "kcminit_startup kscreen_backend_launcher kscreenlocker_greet ksystemstats org_kde_powerdevil "
    "xembedsniproxy gmenudbusmenuproxy plasma_waitforname ksmserver-logout-greeter plasma-keyboard "
    "kscreen_osd_service";

constexpr std::string_view xfce =
    "xfce4-session xfce4-panel wrapper-1.0 wrapper-2.0 xfdesktop xfsettingsd xfconfd xfce4-power-manager "
    "xfce4-screensaver xfce4-screensaver-dialog xfce4-volumed xfce4-volumed-pulse";

constexpr std::string_view mateAndCinnamon =
    "mate-session mate-panel mate-settings-daemon mate-power-manager mate-screensaver mate-screensaver-dialog "
    "mate-volume-control-status-icon msd-locate-pointer clock-applet wnck-applet notification-area-applet "
    "caja cinnamon cinnamon-session cinnamon-session-binary nemo-desktop csd-a11y-keyboard csd-a11y-settings "
    "csd-automount csd-background csd-clipboard csd-color csd-cursor csd-housekeeping csd-keyboard "
    "csd-media-keys csd-mouse csd-orientation csd-power csd-print-notifications csd-printer "
    "csd-screensaver-proxy csd-settings-remap csd-smartcard csd-sound csd-wacom csd-xrandr csd-xsettings "
    "cinnamon-screensaver-pam-helper brisk-menu";

constexpr std::string_view otherDesktops =
    "lxqt-session lxqt-panel lxqt-runner lxqt-globalkeysd lxqt-powermanagement pcmanfm-qt lxsession lxpanel "
    "lxqt-leave pcmanfm budgie-panel budgie-daemon budgie-session budgie-session-binary budgie-power-dialog "
    "budgie-run-dialog budgie-screensaver budgie-screensaver-dialog cosmic-session cosmic-panel "
    "cosmic-applets cosmic-app-library cosmic-launcher cosmic-bg cosmic-greeter cosmic-greeter-daemon "
    "cosmic-idle cosmic-osd cosmic-settings-daemon cosmic-workspaces dde-session dde-session-daemon "
    "dde-session-manager dde-shell dde-dock dde-desktop dde-launcher dde-launchpad dde-lock startdde "
    "ukui-session ukui-panel ukui-menu ukui-settings-daemon peony-qt-desktop wingpanel "
    "io.elementary.wingpanel io.elementary.dock io.elementary.settings-daemon plank cosmic-files-applet "
    "pop-launcher";

constexpr std::string_view barsAndHelpers =
    "waybar polybar i3bar i3status i3status-rs i3blocks swaybar swaybg swayidle swayosd-server hyprpaper "
    "hypridle yambar eww ironbar sfwbar quickshell nwg-dock nwg-dock-hyprland nwg-drawer tint2 lemonbar "
    "xmobar dzen2 trayer stalonetray rofi wofi fuzzel tofi dmenu bemenu wlogout kanshi shikane way-displays "
    "wlsunset gammastep redshift wl-copy wl-paste cliphist xsettingsd xbindkeys wpaperd hyprsunset swaynag "
    "i3-nagbar wf-panel wf-background wf-dock dms swww-daemon awww-daemon wob avizo-service walker elephant "
    "anyrun vicinae xclip xsel wl-clip-persist xfce4-clipman gpaste-daemon copyq parcellite clipit diodon "
    "autocutsel clipmenud greenclip clipse";

constexpr std::string_view locks =
    "swaylock hyprlock gtklock waylock i3lock xss-lock xautolock xscreensaver xscreensaver-auth "
    "xscreensaver-systemd xsecurelock slock physlock light-locker xidlehook";

constexpr std::string_view notices =
    "dunst mako fnott swaync notification-daemon notify-osd xfce4-notifyd mate-notification-daemon "
    "lxqt-notificationd cosmic-notifications io.elementary.notifications wired deadd-notification-center";

constexpr std::string_view sound =
    "pulseaudio pipewire pipewire-pulse pipewire-media-session wireplumber jackd jackdbus rtkit-daemon "
    "pasystray pipewire-avb easyeffects pulseeffects jamesdsp";

constexpr std::string_view accessibility =
    "speech-dispatcher sd_espeak-ng sd_espeak-ng-mbrola sd_espeak sd_generic sd_dummy sd_festival sd_flite "
    "sd_openjtalk brltty xbrlapi";

constexpr std::string_view power =
    "upowerd power-profiles-daemon accounts-daemon colord colord-session xiccd geoclue iio-sensor-proxy "
    "batsignal cbatticon";

constexpr std::string_view settings = "dconf-service gconfd-2";

constexpr std::string_view keyrings =
    "gnome-keyring-daemon gcr-ssh-agent gcr-prompter gcr4-ssh-agent oo7-daemon pass-secret-service kwalletd "
    "kwalletd5 kwalletd6 ksecretd ssh-agent gpg-agent scdaemon keyboxd pinentry pinentry-curses pinentry-tty "
    "pinentry-gtk-2 pinentry-gnome3 pinentry-qt pinentry-qt5 pinentry-kwallet p11-kit-server p11-kit-remote "
    "polkitd polkit-gnome-authentication-agent-1 polkit-kde-authentication-agent-1 "
    "polkit-mate-authentication-agent-1 polkit-ukui-authentication-agent-1 xfce-polkit lxpolkit "
    "lxqt-policykit-agent budgie-polkit-dialog dde-polkit-agent hyprpolkitagent soteria polkit-agent-helper-1 "
    "io.elementary.desktop.agent-polkit";

constexpr std::string_view portals =
    "xdg-desktop-portal xdg-desktop-portal-gnome xdg-desktop-portal-gtk xdg-desktop-portal-kde "
    "xdg-desktop-portal-lxqt xdg-desktop-portal-xapp xdg-desktop-portal-cosmic xdg-desktop-portal-wlr "
    "xdg-desktop-portal-hyprland xdg-desktop-portal-phosh xdg-desktop-portal-luminous xdg-desktop-portal-dde "
    "xdg-document-portal xdg-permission-store flatpak-portal flatpak-session-helper snapd-desktop-integration "
    "xdg-desktop-portal-pantheon xdg-desktop-portal-termfilechooser prompting-client-daemon";

/// What every file dialog asks, as against the programs behind it, which fetch files over the network.
constexpr std::string_view fileSystems =
    "gvfsd gvfsd-fuse gvfsd-metadata gvfsd-trash gvfsd-recent gvfsd-computer gvfs-udisks2-volume-monitor "
    "gvfs-mtp-volume-monitor gvfs-gphoto2-volume-monitor gvfs-afc-volume-monitor gvfs-goa-volume-monitor "
    "kiod5 kiod6 kio-fuse";

constexpr std::string_view inputMethods =
    "ibus-daemon ibus-dconf ibus-memconf ibus-portal ibus-x11 ibus-ui-gtk3 ibus-ui-emojier "
    "ibus-ui-emojier-plasma ibus-extension-gtk3 ibus-engine-simple ibus-engine-libpinyin ibus-engine-hangul "
    "ibus-engine-m17n ibus-engine-mozc ibus-engine-rime ibus-engine-chewing ibus-engine-unikey "
    "ibus-engine-kkc ibus-engine-skk kimpanel-ibus-panel kimpanel-ibus-panel-launcher fcitx "
    "fcitx-dbus-watcher fcitx5 mozc_server mozc_renderer uim-xim uim-helper-server uim-toolbar-gtk3 scim "
    "scim-launcher scim-panel-gtk scim-helper-manager nimf kime hime gcin maliit-server maliit-keyboard "
    "wvkbd-mobintl xcape ydotoold ibus-engine-bamboo ibus-engine-libzhuyin ibus-engine-openbangla "
    "wvkbd-deskintl keyd kanata kmonad xremap evremap makima touchegg swhkd swhks deskflow deskflow-core "
    "deskflow-client deskflow-server input-leap input-leapc input-leaps barrier barrierc barriers synergy "
    "synergyc synergys synergy-core lan-mouse";

/// Those of networks, tunnels and names carry the traffic of all others: to stop one is to cut everything off.
constexpr std::string_view networks =
    "NetworkManager nm-applet nm-connection-editor nm-dispatcher nm-tray ModemManager wpa_supplicant wpa_gui "
    "wpa_cli iwd iwctl iwgtk connmand connman-vpnd connman-gtk cmst systemd-networkd dhclient dhcpcd "
    "dhcpcd-gtk pppd bluetoothd nmcli nmtui";

constexpr std::string_view tunnels =
    "openvpn openvpn3 openvpn3-service-backendstart openvpn3-service-client openvpn3-service-configmgr "
    "openvpn3-service-log openvpn3-service-netcfg openvpn3-service-sessionmgr openconnect ocproxy vpnc wg "
    "wireguard-go boringtun boringtun-cli tailscaled tailscale zerotier-one nebula netbird netbird-ui tincd "
    "charon charon-nm charon-systemd charon-cmd swanctl pluto xl2tpd openfortivpn openfortigui gpclient "
    "gpauth gpservice snx-rs snx-rs-gui warp-svc warp-cli warp-taskbar mullvad-daemon nordvpnd nordvpn "
    "norduserd expressvpnd sing-box mihomo xray v2ray ss-local sslocal redsocks tun2socks nm-openvpn-service "
    "nm-openvpn-service-openvpn-helper nm-openvpn-auth-dialog nm-openconnect-service "
    "nm-openconnect-service-openconnect-helper nm-openconnect-auth-dialog nm-vpnc-service nm-vpnc-auth-dialog "
    "nm-pptp-service nm-pptp-auth-dialog nm-l2tp-service nm-l2tp-auth-dialog nm-strongswan-auth-dialog "
    "nm-libreswan-service nm-sstp-service nm-fortisslvpn-service nm-iodine-service nm-ssh-service "
    "amneziawg-go AmneziaVPN PanGPA PanGPUI vpnui vpnagentd twingated ivpn-service pia-daemon easytier-core "
    "clash verge-mihomo v2raya hysteria";

constexpr std::string_view nameResolution =
    "systemd-resolved dnsmasq unbound stubby dnscrypt-proxy kresd named smartdns nscd nsncd avahi-daemon "
    "AdGuardHome dnsproxy nextdns ctrld";

constexpr std::string_view terminals =
    "gnome-terminal gnome-terminal-server gnome-terminal.real kgx ptyxis ptyxis-agent konsole yakuake "
    "qmlkonsole xfce4-terminal mate-terminal lxterminal qterminal cosmic-term deepin-terminal "
    "io.elementary.terminal lomiri-terminal-app terminology tilix tilda alacritty kitty foot footclient "
    "wezterm wezterm-gui wezterm-mux-server ghostty rio contour xterm rxvt urxvt urxvtd st stterm sakura "
    "roxterm termite cool-retro-term mlterm Eterm aterm havoc zutty termit fbterm yaft kitten tabby hyper "
    "waveterm pterm";

ExecutableNames namesOf(std::initializer_list<std::string_view> groups)
{
    constexpr std::size_t kernelNameLength = 15; // TASK_COMM_LEN less the zero at its end
    std::vector<std::string> names;
    for (const std::string_view group : groups) {
        for (const std::string_view name : words(group)) names.emplace_back(name);
    }
    return ExecutableNames{std::move(names), kernelNameLength};
}

} // namespace

ProtectionTable ProtectionTable::macOS()
{
    return {ExecutableNames{{"Terminal", "iTerm2", "ssh", "sshd", "tmux", "screen", "claude", "codex"}},
            ExecutableNames{{"claude", "codex"}},
            {},
            {},
            {"/System/", "/usr/", "/sbin/", "/bin/", "/Library/Apple/"}};
}

ProtectionTable ProtectionTable::linux()
{
    return {
        namesOf({remoteSessions}),
        {},
        namesOf({shells}),
        namesOf({guard,         serviceManagers, messageBuses,   displayServers, compositors, gnome,       plasma,
                 xfce,          mateAndCinnamon, otherDesktops,  barsAndHelpers, locks,       notices,     sound,
                 accessibility, power,           settings,       keyrings,       portals,     fileSystems, inputMethods,
                 networks,      tunnels,         nameResolution, terminals}),
        {}};
}

} // namespace quellon
