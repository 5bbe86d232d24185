"""A real panel with a place for tray items, and the items as a panel sees them."""

import os
import signal

from screen import Area, WIDTH
from waiting import wait_until

WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher")
ITEM_INTERFACE = "org.kde.StatusNotifierItem"
MENU_INTERFACE = "com.canonical.dbusmenu"
HEIGHT = 30

CONFIGURATION = f"""<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="{HEIGHT}"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
"""


class Panel:
    """Along the top of the display. Its only plugin stands at its left end."""

    def __init__(self, desktop):
        self.desktop = desktop
        folder = os.path.join(desktop.family.environment["XDG_CONFIG_HOME"], "xfce4/xfconf/xfce-perchannel-xml")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "xfce4-panel.xml"), "w", encoding="utf-8") as file:
            file.write(CONFIGURATION)
        self.start()

    def start(self):
        screen = self.desktop.screen
        bare = screen.pixels(self.area())
        self.desktop.family.start("panel", ["xfce4-panel", "--disable-wm-check"])
        self.desktop.bus.wait_for_owner(WATCHER[0])
        wait_until(lambda: self.desktop.bus.get(WATCHER, "IsStatusNotifierHostRegistered"), "the panel's tray")
        wait_until(lambda: screen.difference(self.area(), bare) == self.area(), "the panel on the display")

    def end(self, number: int = signal.SIGTERM):
        """Ends the panel; its plugin is a process of its own that goes with it."""
        self.desktop.family.end("panel", number)
        self.desktop.bus.wait_for_no_owner(WATCHER[0])

    @staticmethod
    def area() -> Area:
        return Area(0, 0, WIDTH, HEIGHT)

    def items(self) -> list:
        """The tray items that the panel knows."""
        return [Item(self.desktop.bus, name) for name in self.desktop.bus.get(WATCHER, "RegisteredStatusNotifierItems")]

    def wait_for_item(self) -> "Item":
        return wait_until(lambda: next(iter(self.items()), None), "an item in the panel")

    def choose(self, item: "Item", icon: Area, title: str):
        """Opens the item's menu with the right button and clicks the line of this title. The panel's tray does not show
        its menus to screen readers, so the line is found by its place among the others.
        """
        screen = self.desktop.screen
        screen.click(icon, button=3)
        menu = wait_until(self.menu_area, "a menu below the panel")
        titles = list(item.menu())
        line = menu.height // len(titles)
        screen.click((menu.x + menu.width // 2, menu.y + line * titles.index(title) + line // 2))

    def menu_area(self):
        """Where a menu is open; None."""
        screen = self.desktop.screen
        areas = [screen.area(window) for window, title in screen.windows().items() if title.startswith("wrapper")]
        return next((area for area in areas if area.y >= HEIGHT and area.height > HEIGHT), None)


class Item:
    """A tray item by the name under which it is registered: a bus name, and maybe a path."""

    def __init__(self, bus, registered: str):
        name, _, path = registered.partition("/")
        self.bus = bus
        self.name = name
        self.place = (name, f"/{path}" if path else "/StatusNotifierItem", ITEM_INTERFACE)

    @property
    def process(self) -> int:
        return self.bus.owner_process(self.name)

    def get(self, name: str):
        """A property of it."""
        return self.bus.get(self.place, name)

    def activate(self, x: int, y: int):
        self.bus.call(self.place, "Activate", "(ii)", x, y)

    def menu(self) -> dict:
        """The titles of its menu, in order, and whether each can be chosen; separators left out."""
        place = (self.name, self.get("Menu"), MENU_INTERFACE)
        _, (_, _, entries) = self.bus.call(place, "GetLayout", "(iias)", 0, -1, [])
        lines = [properties for _, properties, _ in entries if properties.get("type") != "separator"]
        return {line["label"]: line.get("enabled", True) for line in lines}
