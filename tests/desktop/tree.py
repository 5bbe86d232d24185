"""What a screen reader sees: the controls of a program by role and name, what they say, and acting on them."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from screen import Area  # noqa: E402
from waiting import wait_until  # noqa: E402

TIMEOUT = 5000
# What calls itself focused beside the control that has the keyboard: its window, and the current line of any list.
BESIDE = ("application", "frame", "window", "list item")


class Control:
    """A control, or whatever else has a place in the tree. What is asked for is asked anew, nothing is remembered. What
    is looked for below it is looked for among what can be seen.
    """

    def __init__(self, accessible: Atspi.Accessible):
        self.accessible = accessible

    @property
    def name(self) -> str:
        return self.accessible.get_name() or ""

    @property
    def description(self) -> str:
        return self.accessible.get_description() or ""

    @property
    def role(self) -> str:
        """As AT-SPI spells it, such as "push button"."""
        return self.accessible.get_role_name()

    @property
    def states(self) -> set:
        """Such as "checked", "enabled", "focused", "showing"."""
        return {state.value_nick for state in self.accessible.get_state_set().get_states()}

    def has(self, state: str) -> bool:
        return state in self.states

    def offers(self, interface: str) -> bool:
        """Whether it has this side to it: "Action", "Component", "EditableText", "Text", "Value" …"""
        return interface in self.accessible.get_interfaces()

    @property
    def area(self) -> Area:
        extents = Atspi.Component.get_extents(self.accessible, Atspi.CoordType.SCREEN)
        return Area(extents.x, extents.y, extents.width, extents.height)

    @property
    def text(self) -> str:
        """What stands in a text field or label; its name where it has no text."""
        if not self.offers("Text"):
            return self.name
        return Atspi.Text.get_text(self.accessible, 0, Atspi.Text.get_character_count(self.accessible))

    @property
    def value(self):
        """The number that a bar or a number field shows; None for what has none."""
        return Atspi.Value.get_current_value(self.accessible) if self.offers("Value") else None

    @property
    def children(self) -> list:
        found = (self.accessible.get_child_at_index(index) for index in range(self.accessible.get_child_count()))
        return [Control(child) for child in found if child]

    @property
    def process(self) -> int:
        return self.accessible.get_process_id()

    @property
    def actions(self) -> list:
        if not self.offers("Action"):
            return []
        count = Atspi.Action.get_n_actions(self.accessible)
        return [Atspi.Action.get_action_name(self.accessible, index) for index in range(count)]

    def press(self, action: str = ""):
        """Does what the control is for: its first action, or the one of this name."""
        index = self.actions.index(action) if action else 0
        if not Atspi.Action.do_action(self.accessible, index):
            raise AssertionError(f"{self!r} refuses its action")

    def focus(self):
        Atspi.Component.grab_focus(self.accessible)

    def write(self, text: str):
        """Puts a text in place of the one that is there."""
        if not Atspi.EditableText.set_text_contents(self.accessible, text):
            raise AssertionError(f"{self!r} takes no text")

    def everything(self) -> list:
        """The control and all below it that can be seen, in order; what goes away meanwhile is left out."""
        found = [self]
        try:
            for child in self.children:
                if child.has("showing"):
                    found += child.everything()
        except GLib.Error:
            pass
        return found

    def all(self, role: str = "", name: str = "", where=None) -> list:
        """Of these, all with this role, this name, and for which `where` is true."""
        return [control for control in self.everything() if matches(control, role, name, where)]

    def find(self, role: str = "", name: str = "", where=None):
        """The first of them in reading order; None."""
        return next(iter(self.all(role, name, where)), None)

    def wait_for(self, role: str = "", name: str = "", where=None, seconds: float = 20.0) -> "Control":
        def what():
            return f"{role} \"{name}\" in\n{self.outline()}"
        return wait_until(lambda: self.find(role, name, where), what, seconds)

    def wait_for_none(self, role: str = "", name: str = ""):
        wait_until(lambda: self.find(role, name) is None, f"the end of {role} \"{name}\"")

    def focused(self):
        """The control below that has the keyboard: the innermost that says so; None."""
        return next(iter(reversed(self.all(where=lambda it: it.has("focused") and it.role not in BESIDE))), None)

    def outline(self, depth: int = 0) -> str:
        """The tree as text, a line for each, what can't be seen among them."""
        line = "  " * depth + repr(self)
        try:
            return "\n".join([line, *(child.outline(depth + 1) for child in self.children)])
        except GLib.Error:
            return line

    def __repr__(self) -> str:
        try:
            text = self.text
            more = f" = {text!r}" if text != self.name else ""
            value = "" if self.value is None else f" value {self.value:g}"
            states = " ".join(sorted(self.states & {"checked", "focused", "expanded", "selected", "showing"}))
            return f"{self.role} {self.name!r}{more}{value} ({states})"
        except GLib.Error:
            return "(gone)"


def matches(control: Control, role: str, name: str, where) -> bool:
    try:
        return ((not role or control.role == role) and (not name or control.name == name)
                and (where is None or bool(where(control))))
    except GLib.Error:
        return False


def programs() -> list:
    """The programs that a screen reader sees."""
    Atspi.set_timeout(TIMEOUT, TIMEOUT)
    return Control(Atspi.get_desktop(0)).children


def program(process: int):
    """The program with this process id, once it can be seen."""
    def found():
        for candidate in programs():
            try:
                if candidate.process == process:
                    return candidate
            except GLib.Error:
                pass
        return None
    return wait_until(found, f"process {process} on the accessibility bus")
