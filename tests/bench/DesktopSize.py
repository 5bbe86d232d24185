#!/usr/bin/python3
"""What the desktop program costs while it runs: memory, and wakes while it is idle.

    DesktopSize.py memory|idle PROGRAM PEER

"memory" belongs behind a hotspot, "idle" into a network that is not metered. The real program with its item in a real
panel on a desktop of its own, without assistive technology; beside it, in the same run, a program that has nothing but
a tray item (PEER), and the desktop's own panel. Figures are of the process itself: resident size (RSS), and that with
its share of what it shares with others (PSS). This measures; it passes no judgement.
"""

import json
import os
import sys
import time

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TESTS, "desktop"))

import idle_wakes  # noqa: E402
from desktop import ACCESSIBILITY_STATUS, Desktop  # noqa: E402
from gi.repository import GLib  # noqa: E402
from panel import MENU_INTERFACE  # noqa: E402
from waiting import wait_until  # noqa: E402

APPLICATIONS = 40
CYCLES = 200
BETWEEN = 50
IDLE_SECONDS = 65.0
# Seconds since 1970 at which the program's dates begin.
EPOCH = 978_307_200
RULE = {"id": "3B0F5D5E-0D0D-4C53-9C7C-6D6C0B1B3A10", "windowSeconds": 3600, "thresholdBytes": 1 << 30,
        "level": "highlight", "enabled": True}
PLAN = {"id": "6F9619FF-8B86-4D01-B42D-00CF4FC964FF", "name": "Phone", "planGB": 30, "rules": [RULE]}


def size(process: int) -> tuple:
    """RSS and PSS in MB of 1,000,000 bytes, once they rest."""
    def look():
        lines = idle_wakes.read(f"/proc/{process}/smaps_rollup").splitlines()[1:]
        kilobytes = {line.split(":")[0]: int(line.split()[1]) for line in lines}
        return kilobytes["Rss"] * 1024 / 1e6, kilobytes["Pss"] * 1024 / 1e6
    looks = [look()]

    def rests():
        time.sleep(1.0)
        looks.append(look())
        return abs(looks[-1][0] - looks[-2][0]) < 0.1
    wait_until(rests, "a size that rests", 60.0)
    return looks[-1]


def tell(what: str, process: int, limit: str = ""):
    resident, proportional = size(process)
    print(f"{what:44} {resident:6.1f} {proportional:6.1f}  {limit}", flush=True)


def prepare(desktop: Desktop):
    """A user's second start, with much traffic in the hour before."""
    files = {
        "settings.json": {"onboarded": True, "updateCheckConsent": "denied", "profiles": [PLAN],
                          "activeProfileID": PLAN["id"]},
        "ledger.json": {"buckets": [{
            "at": time.time() - EPOCH - 60,
            "usage": {f"Some Program {i}": (i + 1) * 2_000_000 for i in range(APPLICATIONS)},
            "pids": {f"Some Program {i}": [100_000 + i] for i in range(APPLICATIONS)}}]}}
    for name, content in files.items():
        with open(os.path.join(desktop.state, name), "w", encoding="utf-8") as file:
            json.dump(content, file)


class Clicks:
    """The panel and the settings of the program, opened and closed from its item."""

    def __init__(self, desktop: Desktop, process: int, item):
        self.desktop = desktop
        self.process = process
        self.item = item

    def is_shown(self, title: str) -> bool:
        return title in self.desktop.screen.windows(self.process).values()

    def toggle(self, opens: bool):
        self.item.activate(11, 15)
        wait_until(lambda: self.is_shown("Quellon") == opens, "the panel" if opens else "no panel")
        if not opens:
            # The toolkit takes that long to believe that a window has lost the keyboard.
            time.sleep(0.5)

    def settings(self):
        place = (self.item.name, self.item.get("Menu"), MENU_INTERFACE)
        _, (_, _, entries) = self.desktop.bus.call(place, "GetLayout", "(iias)", 0, -1, [])
        line, = [number for number, properties, _ in entries if properties.get("label") == "Settings…"]
        self.desktop.bus.call(place, "Event", "(isvu)", line, "clicked", GLib.Variant("i", 0), 0)
        wait_until(lambda: self.is_shown("Quellon Settings"), "the settings")

    def close_settings(self):
        wait_until(lambda: self.desktop.screen.active_title() == "Quellon Settings", "settings with the keyboard")
        self.desktop.screen.press("alt+F4")
        wait_until(lambda: not self.is_shown("Quellon Settings"), "no settings")


def memory(desktop: Desktop, peer: str):
    print(f"{'In MB of 1,000,000 bytes':44}    RSS    PSS")
    panel = desktop.start_panel()
    desktop.start("peer", peer)
    panel.wait_for_item()
    tell("a program with a tray item and nothing else", desktop.family.processes["peer"].pid)
    tell("the desktop's panel (xfce4-panel)", desktop.family.processes["panel"].pid)
    desktop.family.end("peer")
    wait_until(lambda: not panel.items(), "a panel without items")

    prepare(desktop)
    quellon = desktop.start_program()
    clicks = Clicks(desktop, quellon.pid, panel.wait_for_item())
    wait_until(lambda: len(idle_wakes.family(quellon.pid)) > 1, "the program's helper")
    tell(f"Quellon, {APPLICATIONS} applications, panel never opened", quellon.pid, "limit 34")
    tell("  its helper", idle_wakes.family(quellon.pid)[1])
    clicks.toggle(True)
    tell("Quellon, panel open", quellon.pid)
    clicks.toggle(False)
    tell("Quellon, panel closed again", quellon.pid, "limit 45")
    for cycle in range(1, CYCLES + 1):
        clicks.toggle(True)
        clicks.toggle(False)
        if cycle % BETWEEN == 0:
            tell(f"Quellon, panel opened and closed {cycle} times", quellon.pid)
    clicks.settings()
    tell("Quellon, settings open", quellon.pid)
    clicks.close_settings()
    tell("Quellon, settings closed again", quellon.pid)
    for _ in range(10):
        clicks.settings()
        clicks.close_settings()
    tell("Quellon, settings closed for the 10th time", quellon.pid)


def idle(desktop: Desktop, _peer: str):
    panel = desktop.start_panel()
    prepare(desktop)
    quellon = desktop.start_program()
    item = panel.wait_for_item()
    wait_until(lambda: "Idle" in item.get("Title"), "an idle guard")
    idle_wakes.settle(quellon.pid)
    tell("Quellon, idle, panel never opened", quellon.pid, "limit 34")
    wakes = idle_wakes.watch(quellon.pid, IDLE_SECONDS)
    print(f"Wakes in {IDLE_SECONDS:g} seconds, idle: {len(wakes)}, with "
          f"{sum(wake.switches for wake in wakes)} switches of all threads of the program and its helper")


def main():
    what, program, peer = sys.argv[1:]
    with Desktop(program) as desktop:
        # Nobody reads the screen; what that costs is not what everybody pays.
        desktop.bus.set(ACCESSIBILITY_STATUS, "IsEnabled", GLib.Variant("b", False))
        {"memory": memory, "idle": idle}[what](desktop, peer)


if __name__ == "__main__":
    main()
