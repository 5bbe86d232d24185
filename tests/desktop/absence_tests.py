#!/usr/bin/python3
"""What a desktop may lack: a tray, a message bus. The program runs all the same, and can be reached."""

import signal

import cases
from notification_tests import PAUSED, RULE, TITLE

NAME = "org.quellon.Quellon"
NO_TRAY = "Quellon is running"


class SecondStart(cases.DesktopCase):
    """Nothing but a display and a bus."""

    def start(self):
        self.save_settings(updateCheckConsent="denied")
        self.quellon = self.desktop.start_program()
        self.desktop.bus.wait_for_owner(NAME)

    def test_opens_the_panel_of_the_first(self):
        self.start()
        self.assertFalse(self.is_panel_open())
        for _ in range(2):
            self.start_again()
            self.wait_until(lambda: self.screen.active_title() == "Quellon", "a panel with the keyboard")
        self.assertTrue(self.quellon.is_running())
        self.screen.press("Escape")
        self.wait_until(lambda: not self.is_panel_open(), "a closed panel")

    def test_after_the_first_has_ended(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            self.start()
            self.start_again()
            self.assertEqual(self.desktop.bus.owner_process(NAME), self.quellon.pid)
            self.assertEqual(self.quellon.end(number), 0 if number == signal.SIGTERM else -number)
            self.desktop.bus.wait_for_no_owner(NAME)


class NoTray(cases.DesktopCase):
    def test_is_told_once(self):
        daemon = self.desktop.start_notifications()
        self.save_settings(updateCheckConsent="denied")
        self.quellon = self.desktop.start_program()
        daemon.tree.wait_for("label", NO_TRAY, seconds=40)
        self.assertEqual(len(daemon.tree.all("label", NO_TRAY)), 1)
        self.assertFalse(self.is_panel_open())


class NoBus(cases.DesktopCase):
    """Without a message bus there is no tree either: what is seen is windows, and what is heard keys."""

    with_bus = False
    needs_traffic = True

    def test_guard_goes_on_and_toasts_show(self):
        import acting
        self.save_settings(rules=[RULE | {"level": "enforce"}], sampleInterval=1, updateCheckConsent="denied")
        quellon = self.desktop.start_program()
        self.baseline()
        with acting.downloading("photo-backup", 30_000_000, 1_000_000) as download:
            self.wait_until(download.is_frozen, "a frozen download")
            toast, = self.wait_until(lambda: self.screen.windows(quellon.pid), "a toast")
            area = self.screen.area(toast)
            self.assertEqual((area.width, area.x + area.width), (340, 1280 - 12))
            self.assertEqual(area.y, 8)
            self.assertTrue(quellon.is_running())
            self.assertEqual(quellon.end(), 0)
            self.wait_until(lambda: not download.is_frozen(), "a download that goes on")


if __name__ == "__main__":
    cases.main()
