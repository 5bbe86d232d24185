#!/usr/bin/python3
"""The desktop by itself: what stands on it is really there, and nothing of it is left."""

import os
import shutil
import subprocess
import sys
import unittest

import cases
from family import Family
from gi.repository import Gio, GLib
from panel import ITEM_INTERFACE, WATCHER, Panel
from waiting import wait_until

NOTIFICATIONS = ("org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.freedesktop.Notifications")
ITEM = f"""<node><interface name="{ITEM_INTERFACE}">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
</interface></node>"""


class RedSquare:
    """A tray item of the test's own: a red square that knows where it was clicked."""

    size = 22

    def __init__(self, bus):
        self.clicks = []
        pixels = bytes((255, 220, 20, 30)) * self.size * self.size
        self.properties = {
            "Category": GLib.Variant("s", "ApplicationStatus"), "Id": GLib.Variant("s", "square"),
            "Title": GLib.Variant("s", "Square"), "Status": GLib.Variant("s", "Active"),
            "IconPixmap": GLib.Variant("a(iiay)", [(self.size, self.size, pixels)])}
        interface = Gio.DBusNodeInfo.new_for_xml(ITEM).interfaces[0]
        bus.connection.register_object("/StatusNotifierItem", interface, self._called,
                                       lambda *call: self.properties.get(call[4]), None)

    def _called(self, _connection, _sender, _path, _interface, _method, arguments, invocation):
        self.clicks.append(arguments.unpack())
        invocation.return_value(None)


def name_of(process: int) -> str:
    """The name of a process; empty once it is gone."""
    try:
        with open(f"/proc/{process}/comm", encoding="ascii") as file:
            return file.read().strip()
    except OSError:
        return ""


def turn():
    """Lets what has arrived for objects of the test's own reach them."""
    while GLib.MainContext.default().iteration(False):
        pass


class Bench(cases.DesktopCase):
    def test_tray_item(self):
        panel = self.desktop.start_panel()
        empty = self.screen.settled(Panel.area())
        item = RedSquare(self.desktop.bus)
        self.desktop.bus.connection.call(*WATCHER, "RegisterStatusNotifierItem",
                                         GLib.Variant("(s)", ("/StatusNotifierItem",)), None, 0, 5000, None, None)

        def drawn():
            turn()
            return self.screen.difference(Panel.area(), empty)
        square = wait_until(drawn, "an item in the panel")
        self.assertEqual(self.screen.pixels(square), bytes((220, 20, 30)) * square.width * square.height)

        def clicked():
            turn()
            return item.clicks
        self.screen.click(square)
        self.assertEqual(wait_until(clicked, "the click"), [square.centre()])
        registered, = panel.items()
        self.assertEqual(registered.process, os.getpid())
        panel.end()
        self.assertFalse(self.desktop.bus.has_owner(WATCHER[0]))

    def test_notification(self):
        daemon = self.desktop.start_notifications()
        answers = []
        connection = self.desktop.bus.connection
        connection.signal_subscribe(None, NOTIFICATIONS[2], "ActionInvoked", None, None, Gio.DBusSignalFlags.NONE,
                                    lambda *call: answers.append(call[5].unpack()))
        content = ("square", 0, "", "A summary", "A body", ["pause", "Pause all"], {}, 0)
        number = self.desktop.bus.call(NOTIFICATIONS, "Notify", "(susssasa{sv}i)", *content)
        daemon.tree.wait_for("label", "A summary")
        self.screen.click(daemon.tree.wait_for("push button", "Pause all").area)

        def answered():
            turn()
            return answers
        self.assertEqual(wait_until(answered, "an answer"), [(number, "pause")])



class Ends(unittest.TestCase):
    """However the tests end, nothing is left of their desktop."""

    OPEN = """
import sys
from desktop import Desktop
with Desktop("/bin/true") as desktop:
    desktop.start_panel()
    desktop.start_notifications()
    # One that cuts itself loose, and one that can't take a signal.
    desktop.start("loose", "setsid", "--fork", "sleep", "1000")
    desktop.start("stopped", "sh", "-c", "kill -STOP $$")
    print(desktop.folder, flush=True)
    sys.stdin.readline()
    raise SystemExit(7)
"""

    def setUp(self):
        # What the tests lose becomes a child of this process, where it is seen.
        self.family = Family("")

    def open(self) -> tuple:
        """Tests with an open desktop: their process, and the desktop's folder."""
        process = subprocess.Popen([sys.executable, "-B", "-c", self.OPEN], cwd=os.path.dirname(__file__),
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        folder = process.stdout.readline().strip()
        self.assertTrue(os.path.isdir(folder))
        self.assertGreater(len(self.family.descendants()), 8)
        self.addCleanup(process.stdin.close)
        self.addCleanup(process.stdout.close)
        return process, folder

    def test_in_order(self):
        process, folder = self.open()
        process.stdin.write("\n")
        process.stdin.flush()
        self.assertEqual(process.wait(20), 7)
        self.assertEqual(self.family.descendants(), set())
        self.assertFalse(os.path.exists(folder))

    def test_killed(self):
        """What the desktop has started ends by itself; the rest is for the lab to end."""
        process, folder = self.open()
        self.addCleanup(shutil.rmtree, folder)
        self.addCleanup(self.family.end_all)
        process.kill()
        process.wait(20)

        def is_left():
            return {"Xvfb", "openbox", "dbus-daemon"} & {name_of(process) for process in self.family.descendants()}
        wait_until(lambda: not is_left(), "the end of the display and the bus")


if __name__ == "__main__":
    cases.main()
