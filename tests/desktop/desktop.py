"""A desktop of a test's own: display, message bus, window manager, accessibility; panel and notifications on demand.

    with Desktop(program) as desktop:
        desktop.start_panel()
        quellon = desktop.start_program()
        quellon.tree.find("push button", "Settings…").press()

It lives in a folder of its own, shares nothing with the user's desktop, and all its processes end with it. One for each
process, since the library that reads the accessibility tree looks for its bus only once.
"""

import os
import shutil
import signal
import tempfile

from gi.repository import GLib

import bus
import panel
from bus import Bus
from family import Family
from screen import Screen, start_display
from waiting import wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
NOTIFICATIONS = "org.freedesktop.Notifications"
ACCESSIBILITY = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus")
ACCESSIBILITY_STATUS = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status")
NOTIFICATION_DAEMONS = ("/usr/lib/notification-daemon/notification-daemon", "/usr/libexec/notification-daemon")
# What is kept of the environment that the test was started in.
KEPT = ("PATH", "TZ", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "LAB_GATEWAY", "LAB_INTERNET",
        "LAB_INTERNET6")


class Program:
    """A running program, the one under test above all."""

    def __init__(self, desktop: "Desktop", name: str):
        self.desktop = desktop
        self.name = name
        self.process = desktop.family.processes[name]

    @property
    def pid(self) -> int:
        return self.process.pid

    @property
    def tree(self):
        """What a screen reader sees of it."""
        import tree  # only once the desktop is there: the library looks for its bus when it is loaded
        return tree.program(self.pid)

    @property
    def output(self) -> str:
        return self.desktop.family.log(self.name)

    def is_running(self) -> bool:
        return self.process.poll() is None

    def wait(self, seconds: float = 20.0) -> int:
        """Its exit status, once it has ended by itself."""
        status = self.process.wait(seconds)
        self.desktop.family.processes.pop(self.name, None)
        return status

    def end(self, number: int = signal.SIGTERM) -> int:
        return self.desktop.family.end(self.name, number)


class Desktop:
    """See above. `program` is the path of the program under test; without `with_bus` there is no message bus."""

    def __init__(self, program: str, with_bus: bool = True):
        self.program = program
        self.with_bus = with_bus
        self.folder = tempfile.mkdtemp(prefix="desktop-")
        self.state = os.path.join(self.folder, "state")
        self.home = os.path.join(self.folder, "home")
        self.family = Family(self.folder)
        self.screen = None
        self.bus = None

    def __enter__(self) -> "Desktop":
        try:
            self._open()
        except BaseException:
            print(self.family.logs())
            self._close()
            raise
        return self

    def __exit__(self, *_):
        self._close()

    def _open(self):
        os.mkdir(self.state, 0o700)
        self.family.environment = self._environment()
        self.family.environment["DISPLAY"] = start_display(self.family)
        self.screen = Screen(self.family.environment)
        if self.with_bus:
            self._open_bus()
        os.environ.clear()
        os.environ.update(self.family.environment)
        self.family.start("openbox", ["openbox", "--sm-disable"])
        wait_until(self.screen.is_managed, "the window manager")

    def _environment(self) -> dict:
        kept = {name: value for name, value in os.environ.items() if name in KEPT}
        folders = {"HOME": "home", "XDG_RUNTIME_DIR": "runtime", "XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data",
                   "XDG_CACHE_HOME": "cache", "XDG_STATE_HOME": "own-state", "TMPDIR": "tmp"}
        for folder in folders.values():
            os.mkdir(os.path.join(self.folder, folder), 0o700)
        return kept | {name: os.path.join(self.folder, folder) for name, folder in folders.items()} | {
            "QUELLON_STATE_DIR": self.state, "LANG": "C.UTF-8", "QT_QPA_PLATFORM": "xcb", "GDK_BACKEND": "x11",
            "GSETTINGS_BACKEND": "memory", "GIO_USE_VFS": "local", "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "XDG_CONFIG_DIRS": "/etc/xdg", "ATSPI_NO_CACHE": "1",
            # There is nobody at these: no session's bus but the desktop's own, and none of the system.
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/no-bus",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.folder}/no-bus"}

    def _open_bus(self):
        command, address = bus.prepare(self.folder)
        self.family.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.family.start("bus", command)
        self.bus = Bus(address)
        self.bus.start_service(ACCESSIBILITY[0])
        self.bus.call(ACCESSIBILITY, "GetAddress")
        # As a screen reader does when it starts: programs show their trees from now on.
        self.bus.set(ACCESSIBILITY_STATUS, "IsEnabled", GLib.Variant("b", True))

    def _close(self):
        if self.bus:
            self.bus.close()
        self.family.end_all()
        shutil.rmtree(self.folder, ignore_errors=True)

    # --- what stands on it -------------------------------------------------------------------------------------------

    def start_panel(self) -> panel.Panel:
        """A panel that has nothing but a place for tray items; it is there when this returns."""
        return panel.Panel(self)

    def start_notifications(self) -> Program:
        """A notification daemon; it is there when this returns."""
        daemon = next((path for path in NOTIFICATION_DAEMONS if os.path.exists(path)), None)
        assert daemon, "no notification daemon: package notification-daemon"
        self.family.start("notifications", [daemon])
        self.bus.wait_for_owner(NOTIFICATIONS)
        return Program(self, "notifications")

    def start_program(self, *arguments: str, name: str = "quellon", **environment: str) -> Program:
        """The program under test."""
        self.family.start(name, [self.program, *arguments], environment=environment)
        return Program(self, name)

    def start(self, name: str, *command: str) -> Program:
        self.family.start(name, list(command))
        return Program(self, name)

    # --- after a failure ---------------------------------------------------------------------------------------------

    def report(self, folder: str, name: str):
        """Prints what is known about the desktop, and saves a picture of it."""
        print(self.family.logs())
        if self.with_bus:
            import tree  # see above
            for program in tree.programs():
                print(program.outline())
        if folder:
            path = os.path.join(folder, f"{name}.png")
            self.screen.picture(path)
            print(f"the display: {path}")
