"""Somebody who uses the program: looks for what is on the display by what it says, and clicks, types and chooses."""

from waiting import holds_for, wait_until


def showing(control) -> bool:
    return control.has("showing")


class User:
    """`quellon` is the program, `screen` the display that it is on."""

    def __init__(self, quellon, screen):
        self.quellon = quellon
        self.screen = screen

    # --- looking -----------------------------------------------------------------------------------------------------

    def window(self, title: str):
        """The window of this title, once it has the keyboard."""
        wait_until(lambda: self.screen.active_title() == title, f"a window \"{title}\" with the keyboard")
        return self.see(self.quellon.tree, "frame", title)

    def has_window(self, title: str) -> bool:
        return title in self.screen.windows(self.quellon.pid).values()

    def wait_for_no_window(self, title: str):
        wait_until(lambda: not self.has_window(title), f"no window \"{title}\"")

    def see(self, place, role: str, name: str = "", where=None):
        """A control of the place that shows."""
        return place.wait_for(role, name, lambda it: showing(it) and (where is None or where(it)))

    def wait_for_none(self, place, role: str, name: str):
        """Waits until no such control of the place shows."""
        wait_until(lambda: not place.find(role, name, showing), f"the end of {role} \"{name}\"")

    def read(self, place, text: str, role: str = ""):
        """A text of the place: what stands there, all of it or in part."""
        def says(control) -> bool:
            return showing(control) and text in control.text
        return place.wait_for(role, "", says)

    def texts(self, place) -> list:
        """All that the place says, in its order."""
        return [each.text for each in place.all(where=lambda it: showing(it) and it.text)]

    def toast(self, title: str, seconds: float = 20.0):
        """The toast of this title, once it shows."""
        return self.quellon.tree.wait_for("alert", title, showing, seconds)

    # --- acting ------------------------------------------------------------------------------------------------------

    def click(self, place, name: str, role: str = "push button"):
        """Clicks a control as soon as it stands still."""
        control = self.see(place, role, name)
        areas = [control.area]

        def is_still():
            areas.append(control.area)
            return areas[-1] == areas[-2]
        wait_until(is_still, f"\"{name}\" in its place")
        self.screen.click(areas[-1])
        return control

    def answer(self, toast, button: str, condition, what: str):
        """Presses a button of a toast as a screen reader does, since notifications may cover it; once more when that
        was too early: what has just moved can't be pressed for a moment.
        """
        for _ in range(5):
            if control := toast.find("push button", button, showing):
                control.press()
            if holds_soon(condition):
                return
        raise AssertionError(f"\"{button}\" was pressed, and not: {what}")

    def replace(self, place, name: str, text: str, ending: str = ""):
        """Types a text in place of the one in a field, and a key behind it."""
        field = self.click(place, name, "text")
        wait_until(lambda: field.has("focused"), f"\"{name}\" with the keyboard")
        self.screen.press("ctrl+a")
        self.screen.type(text)
        if ending:
            self.screen.press(ending)

    def choose(self, place, name: str, title: str):
        """Opens a list of choices and takes one."""
        box = self.click(place, name, "combo box")
        choices = self.see(box, "list")
        wanted = [each.name for each in choices.all("list item")].index(title)
        self.screen.press("Home", *["Down"] * wanted, "Return")
        wait_until(lambda: not choices.has("showing"), f"\"{title}\" chosen")


def holds_soon(condition, seconds: float = 2.0) -> bool:
    """Whether `condition` becomes true within so many seconds."""
    return not holds_for(lambda: not condition(), seconds)
