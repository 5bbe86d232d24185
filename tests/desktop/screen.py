"""The desktop's display: its windows, the pointer, the keys, pictures."""

import os
import subprocess
from typing import NamedTuple

from waiting import wait_until

WIDTH, HEIGHT = 1280, 800
TIMEOUT = 10.0


class Area(NamedTuple):
    """A rectangle in pixels of the display."""

    x: int
    y: int
    width: int
    height: int

    def centre(self) -> tuple:
        return self.x + self.width // 2, self.y + self.height // 2

    def contains(self, other: "Area") -> bool:
        return (self.x <= other.x and other.x + other.width <= self.x + self.width
                and self.y <= other.y and other.y + other.height <= self.y + self.height)


class Screen:
    """What a user does and sees. `environment` names the display."""

    def __init__(self, environment: dict):
        self.environment = environment

    def run(self, *command: str, is_text: bool = True):
        return subprocess.run(command, env=self.environment, capture_output=True, text=is_text, timeout=TIMEOUT,
                              check=False)

    def xdotool(self, *arguments) -> str:
        """What xdotool says; empty when it finds nothing."""
        return self.run("xdotool", *(str(argument) for argument in arguments)).stdout.strip()

    # --- windows -----------------------------------------------------------------------------------------------------

    def is_managed(self) -> bool:
        """Whether a window manager is there."""
        return self.xdotool("get_num_desktops").isdigit()

    def windows(self, process: int = 0) -> dict:
        """Titles of the visible windows with a title, by id; only those of one process when given."""
        search = ["--pid", process] if process else []
        ids = self.xdotool("search", "--onlyvisible", "--all", *search, "--name", ".").split()
        return {window: self.xdotool("getwindowname", window) for window in ids}

    def active_window(self) -> str:
        """The id of the window that has the keyboard; empty: none."""
        return self.xdotool("getactivewindow")

    def active_title(self) -> str:
        return self.xdotool("getactivewindow", "getwindowname")

    def area(self, window: str) -> Area:
        """Where a window is."""
        lines = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", window).splitlines())
        return Area(int(lines["X"]), int(lines["Y"]), int(lines["WIDTH"]), int(lines["HEIGHT"]))

    # --- hands -------------------------------------------------------------------------------------------------------

    def move(self, point: tuple):
        self.xdotool("mousemove", *point)

    def click(self, place, button: int = 1):
        """Clicks at a point, or in the middle of an area."""
        point = place.centre() if isinstance(place, Area) else place
        self.xdotool("mousemove", *point, "click", button)

    def press(self, *keys: str):
        """Keys by their X names, such as "Tab" or "ctrl+c", in the window that has the keyboard."""
        self.xdotool("key", "--clearmodifiers", *keys)

    def type(self, text: str):
        self.xdotool("type", "--delay", "5", text)

    # --- pictures ----------------------------------------------------------------------------------------------------

    def picture(self, path: str):
        """Saves what the display shows."""
        self.run("import", "-silent", "-window", "root", path)

    def pixels(self, area: Area) -> bytes:
        """The colours of an area, three bytes for each pixel."""
        crop = f"{area.width}x{area.height}+{area.x}+{area.y}"
        command = ["import", "-silent", "-window", "root", "-crop", crop, "-depth", "8", "rgb:-"]
        return self.run(*command, is_text=False).stdout

    def settled(self, area: Area) -> bytes:
        """The same, once two looks in a row have seen the same."""
        looks = [self.pixels(area)]

        def is_settled():
            looks.append(self.pixels(area))
            return looks[-1] == looks[-2]
        wait_until(is_settled, "a display that has settled")
        return looks[-1]

    def difference(self, area: Area, before: bytes):
        """The part of an area that holds all pixels which have changed since `before`, once the area has settled; None
        when none has.
        """
        now = self.settled(area)
        row = area.width * 3
        rows = [y for y in range(area.height) if now[y * row:(y + 1) * row] != before[y * row:(y + 1) * row]]
        if not rows:
            return None
        columns = [x for y in rows for x in range(area.width)
                   if now[y * row + 3 * x:y * row + 3 * x + 3] != before[y * row + 3 * x:y * row + 3 * x + 3]]
        return Area(area.x + min(columns), area.y + rows[0], max(columns) - min(columns) + 1, rows[-1] - rows[0] + 1)

    def wait_for_change(self, area: Area, before: bytes, what: str) -> bytes:
        """The colours of an area as soon as they are others than `before`."""
        def changed():
            now = self.pixels(area)
            return now if now and now != before else None
        return wait_until(changed, what)


def everything() -> Area:
    return Area(0, 0, WIDTH, HEIGHT)


def start_display(family) -> str:
    """Starts a display of its own and gives its name."""
    reader, writer = os.pipe()
    family.start("display", ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-dpi", "96",
                             "-nolisten", "tcp", "-noreset", "-ac"], pass_fds=[writer])
    os.close(writer)
    with os.fdopen(reader, encoding="ascii") as answer:
        number = answer.readline().strip()
    if not number:
        raise AssertionError(f"no display: {family.log('display')}")
    return f":{number}"
