"""The world of a day as its tests have it: what stands on the desktop, and how one gets around in the program."""

import contextlib
import json
import os
import socket
import sys

import cases
from day_server import Hosts
from day_user import User
from panel import Panel

ICON = 16


class DayCase(cases.DesktopCase):
    """A laptop out of reach of its hotspot, with a panel and a notification daemon. See day_world.py."""

    needs_traffic = True

    @classmethod
    def stand(cls):
        cls.world, cls.shown = sys.argv[4:6]
        cls.bar = cls.desktop.start_panel()
        cls.bare = cls.desktop.screen.settled(Panel.area())
        cls.daemon = cls.desktop.start_notifications()

    def begin(self):
        """Starts the program, whose hosts are the test's own."""
        import acting  # knows the state folder from the environment, which is the desktop's by now
        self.acting = acting
        self.radio("off")
        self.hosts = Hosts(self.world)
        self.addCleanup(self.hosts.close)
        self.before = self.desktop.family.descendants()
        self.quellon = self.desktop.start_program(https_proxy=self.hosts.proxy)
        self.user = User(self.quellon, self.screen)
        self.item = self.bar.wait_for_item()
        self.wait_until(self.icon, "an icon in the panel")

    # --- what stands around ------------------------------------------------------------------------------------------

    def radio(self, how: str):
        with socket.socket(socket.AF_UNIX) as link:
            link.connect(os.path.join(self.world, "radio"))
            link.sendall(how.encode())
            self.assertEqual(link.recv(1000).decode(), "done")

    def picture(self, name: str):
        """A picture for people to look at, where they want any."""
        if self.shown:
            count = len(os.listdir(self.shown)) + 1
            self.screen.picture(os.path.join(self.shown, f"{count:02}-{name}.png"))

    def state_file(self, name: str) -> dict:
        with open(os.path.join(self.desktop.state, name), encoding="utf-8") as file:
            return json.load(file)

    def plan(self) -> dict:
        """The active plan as it is saved."""
        settings = self.settings()
        return next(each for each in settings["profiles"] if each["id"] == settings["activeProfileID"])

    def wait_for_plan(self, condition, what: str):
        self.wait_until(lambda: condition(self.plan()), what)

    def wait_for_title(self, text: str, seconds: float = 20.0):
        """Waits for what the tray item says of itself."""
        self.wait_until(lambda: text in self.item.get("Title"), f"a tray item with \"{text}\"", seconds)

    def download(self, name: str, size: int, rate: int = 1_000_000):
        return self.enterContext(self.acting.downloading(name, size, rate))

    # --- getting around ----------------------------------------------------------------------------------------------

    def icon(self):
        """Where the program's tray item is: the last one. The notification daemon has one now and then."""
        icons = self.screen.difference(Panel.area(), self.bare)
        return icons and icons._replace(x=icons.x + icons.width - ICON, width=ICON)

    def panel(self):
        """The program's panel, opened at its tray item unless it is open."""
        def opened():
            # The item moves when the daemon's own comes or goes, also between the look and the click.
            if not self.is_panel_open():
                self.screen.click(self.icon())
            return self.is_panel_open()
        self.wait_until(opened, "an open panel", 30)
        return self.user.window("Quellon")

    def notification(self, title: str):
        """The notification of this title, once it shows."""
        def found():
            return next((each for each in self.daemon.tree.children if each.find("label", title)), None)
        return self.wait_until(found, f"a notification \"{title}\"", 30)

    def close_notification(self, title: str):
        """Closes it by the button in its corner, which some daemons draw outside of the window."""
        next(each for each in self.notification(title).all("push button") if not each.name).press()
        self.wait_until(lambda: not self.daemon.tree.find("label", title, lambda it: it.has("showing")),
                        "the end of the notification")

    def close_panel(self):
        self.screen.press("Escape")
        self.wait_until(lambda: not self.is_panel_open(), "a closed panel")

    def settings_page(self, page: str):
        """The settings, opened from the panel unless they are open, at this page."""
        if not self.user.has_window("Quellon Settings"):
            self.user.click(self.panel(), "Open settings")
        window = self.user.window("Quellon Settings")
        self.user.click(window, page, "page tab")
        self.user.see(window, "page tab", page, lambda it: it.has("selected"))
        return window

    def sheet(self, name: str):
        """What lies over the settings."""
        return self.user.see(self.user.window("Quellon Settings"), "dialog", name)

    def close_settings(self):
        self.user.window("Quellon Settings")
        self.screen.press("alt+F4")
        self.user.wait_for_no_window("Quellon Settings")

    def left(self, paused: list) -> list:
        """The command lines of what was not there before the program. Not counted are the shells that would have let
        the processes `paused` go on, had the program not: they outlast it on purpose, and do no harm.
        """
        expected = [["sleep", "1800", ""]]
        expected += [["/bin/sh", "-c", f"sleep 1800; kill -CONT {process} 2>/dev/null", ""] for process in paused]
        found = []
        for process in self.desktop.family.descendants() - self.before:
            with contextlib.suppress(OSError), open(f"/proc/{process}/cmdline", encoding="utf-8") as file:
                found.append(file.read().split("\0"))
        return [each for each in found if each not in expected]
