#!/usr/bin/python3
"""The tray item in a real panel: drawn, clicked, its menu opened, and there again after the panel was."""

import os
import signal
import time

import cases
from panel import Panel
from screen import everything


class TrayCase(cases.DesktopCase):
    """A panel, and the program with its item in it."""

    @classmethod
    def stand(cls):
        cls.panel = cls.desktop.start_panel()
        cls.bare = cls.desktop.screen.settled(Panel.area())

    def setUp(self):
        self.wait_until(lambda: not self.panel.items(), "a panel without items")
        self.save_settings(updateCheckConsent="denied")
        self.screen.move((640, 400))  # off the panel, which lights up what is pointed at
        self.quellon = self.desktop.start_program()
        self.item = self.panel.wait_for_item()
        self.icon = self.wait_until(lambda: self.screen.difference(Panel.area(), self.bare), "an icon in the panel")

    def open(self):
        self.screen.click(self.icon)
        self.wait_until(self.is_panel_open, "the program's panel")


class Tray(TrayCase):
    def test_item(self):
        self.assertEqual(self.item.process, self.quellon.pid)
        self.assertEqual(self.item.get("Category"), "ApplicationStatus")
        self.assertIn("Quellon", self.item.get("Title"))
        # One of the panel's icons, in its only place.
        self.assertLessEqual(self.icon.width, 24)
        self.assertLessEqual(self.icon.height, 24)
        self.assertGreaterEqual(self.icon.width, 10)
        self.assertFalse(self.is_panel_open())
        self.assertEqual(self.screen.windows(self.quellon.pid), {})

    def test_click_opens_and_closes(self):
        self.open()
        window, = self.screen.windows(self.quellon.pid)
        self.assertEqual(self.screen.active_window(), window)
        area = self.screen.area(window)
        self.assertEqual(area.width, 340)
        # At the item, as far to the left as the display goes, right below the panel with its border.
        self.assertEqual(area.x, 0)
        self.assertIn(area.y - Panel.area().height, (0, 1))
        self.screen.click(self.icon)
        self.wait_until(lambda: not self.is_panel_open(), "a closed panel")
        self.assertEqual(self.screen.windows(self.quellon.pid), {})

    def test_tool_tip(self):
        """Shown by the panel's tray, to whoever points at the item."""
        bare = self.screen.settled(everything())
        self.screen.move(self.icon.centre())
        self.wait_until(lambda: self.tool_tip(bare), "a tool tip")
        _, _, title, text = self.item.get("ToolTip")
        self.assertEqual(title, self.item.get("Title"))
        self.assertIn("This month" if "LAB_INTERNET" in os.environ else "gateway", text)

    def tool_tip(self, bare: bytes):
        """What has changed below the panel since `bare`; None for next to nothing."""
        changed = self.screen.difference(everything(), bare)
        return changed if changed and changed.y + changed.height > 2 * Panel.area().height else None

    def test_click_reopens(self):
        """At once, however soon after Escape the click comes."""
        self.open()
        for _ in range(3):
            self.screen.press("Escape")
            self.wait_until(lambda: not self.is_panel_open(), "a closed panel")
            self.open()
            self.assertTrue(self.stays_open())

    def stays_open(self) -> bool:
        """Whether it is open and has the keyboard for longer than the display takes to tell of a lost keyboard."""
        ends = time.monotonic() + 1.0
        while time.monotonic() < ends:
            if not self.is_panel_open():
                return False
        return self.screen.active_window() in self.screen.windows(self.quellon.pid)

    def test_click_elsewhere_closes(self):
        self.open()
        self.screen.click((1000, 600))
        self.wait_until(lambda: not self.is_panel_open(), "a closed panel")

    def test_state_is_drawn(self):
        before = self.screen.settled(self.icon)
        self.open()
        self.quellon.tree.find("check box", "Guard").press()
        self.screen.wait_for_change(self.icon, before, "an icon of another state")
        self.wait_until(lambda: "Off" in self.item.get("Title"), "a title of another state")


class TrayMenu(TrayCase):
    def choose(self, title: str):
        self.panel.choose(self.item, self.icon, title)

    def test_lines(self):
        titles = list(self.item.menu())
        self.assertEqual(titles[:1] + titles[2:],
                         ["Open Quellon", "Pause guarding", "Resume all", "Settings…", "Quit Quellon"])
        self.assertIn(titles[1], self.item.get("Title"))
        self.assertEqual([title for title, enabled in self.item.menu().items() if not enabled],
                         [titles[1], "Resume all"])

    def test_settings(self):
        self.choose("Settings…")
        self.quellon.tree.wait_for("frame", "Quellon Settings")
        self.wait_until(lambda: self.screen.active_title() == "Quellon Settings", "settings with the keyboard")

    def test_open(self):
        self.choose("Open Quellon")
        self.wait_until(self.is_panel_open, "the program's panel")

    def test_pause_and_start(self):
        self.choose("Pause guarding")
        self.wait_until(lambda: "Off" in self.item.get("Title"), "a guard that is off")
        self.choose("Start guarding")
        self.wait_until(lambda: "Off" not in self.item.get("Title"), "a guard that is on")

    def test_quit(self):
        self.choose("Quit Quellon")
        self.assertEqual(self.quellon.wait(), 0)


class TrayRestart(TrayCase):
    """The panel goes and comes again; so does the item."""

    def restart(self, number: int):
        self.panel.end(number)
        self.panel.start()
        self.item = self.panel.wait_for_item()
        self.assertEqual(self.item.process, self.quellon.pid)
        self.icon = self.wait_until(lambda: self.screen.difference(Panel.area(), self.bare), "an icon in the panel")

    def test_ended(self):
        self.restart(signal.SIGTERM)
        self.open()

    def test_killed(self):
        self.restart(signal.SIGKILL)
        self.open()


if __name__ == "__main__":
    cases.main()
