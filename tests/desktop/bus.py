"""The desktop's message bus: starting it, asking on it."""

import os

from gi.repository import Gio, GLib

from waiting import wait_until

# Services that may be started by a call. No notification daemon is among them: which one runs is the test's choice.
SERVICES = ("org.a11y.Bus", "org.xfce.Xfconf")
SERVICE_FOLDER = "/usr/share/dbus-1/services"

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
PROPERTIES = "org.freedesktop.DBus.Properties"
TIMEOUT = 5000


def prepare(folder: str) -> tuple:
    """Writes what a bus in `folder` needs: the command that runs it, and its address."""
    os.makedirs(f"{folder}/services")
    for service in SERVICES:
        source = f"{SERVICE_FOLDER}/{service}.service"
        if os.path.exists(source):
            os.symlink(source, f"{folder}/services/{service}.service")
    configuration = f"{folder}/bus.conf"
    with open(configuration, "w", encoding="utf-8") as file:
        file.write(CONFIGURATION.format(folder=folder))
    return ["dbus-daemon", f"--config-file={configuration}", "--nofork"], f"unix:path={folder}/bus"


class Bus:
    """A connection of the test's own to the bus at `address`."""

    def __init__(self, address: str):
        def connect():
            try:
                return Gio.DBusConnection.new_for_address_sync(
                    address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                    | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
            except GLib.Error:
                return None
        self.connection = wait_until(connect, "the message bus")

    def call(self, place: tuple, method: str, signature: str = "()", *arguments):
        """Calls a method of a (name, path, interface) and gives its answer: a value, a tuple, or None for nothing."""
        answer = self.connection.call_sync(*place, method, GLib.Variant(signature, arguments), None,
                                           Gio.DBusCallFlags.NO_AUTO_START, TIMEOUT, None).unpack()
        return answer[0] if len(answer) == 1 else answer or None

    def get(self, place: tuple, name: str):
        """A property."""
        return self.call((place[0], place[1], PROPERTIES), "Get", "(ss)", place[2], name)

    def set(self, place: tuple, name: str, value: GLib.Variant):
        self.call((place[0], place[1], PROPERTIES), "Set", "(ssv)", place[2], name, value)

    def has_owner(self, name: str) -> bool:
        return self.call(BUS, "NameHasOwner", "(s)", name)

    def owner_process(self, name: str) -> int:
        """The id of the process that owns the name."""
        return self.call(BUS, "GetConnectionUnixProcessID", "(s)", name)

    def start_service(self, name: str):
        self.call(BUS, "StartServiceByName", "(su)", name, 0)

    def wait_for_owner(self, name: str):
        wait_until(lambda: self.has_owner(name), f"an owner of {name}")

    def wait_for_no_owner(self, name: str):
        wait_until(lambda: not self.has_owner(name), f"nobody who owns {name}")

    def close(self):
        self.connection.close_sync(None)
