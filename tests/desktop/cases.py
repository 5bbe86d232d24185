"""What the tests on a desktop share: the desktop, settings, reports of failures, and the command line.

    NAME_tests.py CLASS PROGRAM [PICTURES]

runs the tests of one class with the program under test. Pictures of the display after failures go to the folder
PICTURES. Exit status 77: some of them could not run here.
"""

import functools
import json
import os
import sys
import unittest

from desktop import Desktop
from screen import everything
from waiting import wait_until

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SKIPPED = 77
CONTROLS = ("push button", "toggle button", "check box", "radio button", "combo box", "text", "spin button", "link",
            "page tab", "list", "menu item")
MOST_STEPS = 60

program = ""
pictures = ""


def reporting(function):
    """The function, with a report of the desktop when it fails."""
    @functools.wraps(function)
    def wrapper(self):
        try:
            function(self)
        except unittest.SkipTest:
            raise
        except BaseException:
            self.desktop.report(pictures, self.id().replace("__main__.", ""))
            raise
    return wrapper


def controls(root) -> list:
    """What can be seen and used below `root`, by role and name, in the order of the tree."""
    return [(each.role, each.name) for each in root.all(where=lambda it: it.role in CONTROLS)]


class DesktopCase(unittest.TestCase):
    """Tests on one desktop; each begins without the program under test and with an empty state folder. What a test
    starts ends with it.
    """

    with_bus = True
    needs_traffic = False
    maxDiff = None

    def __init_subclass__(cls):
        for name, value in list(vars(cls).items()):
            if callable(value) and (name.startswith("test_") or name == "setUp"):
                setattr(cls, name, reporting(value))

    @classmethod
    def setUpClass(cls):
        if cls.needs_traffic and "LAB_INTERNET" not in os.environ:
            raise unittest.SkipTest("no traffic without the lab")
        cls.desktop = cls.enterClassContext(Desktop(program, cls.with_bus))
        cls.stand()
        cls.standing = set(cls.desktop.family.processes)
        if cls.needs_traffic:
            sys.path.insert(0, os.path.join(TESTS, "lab"))

    @classmethod
    def stand(cls):
        """For what stands on the desktop in all tests of the class."""

    def run(self, result=None):
        try:
            return super().run(result)
        finally:
            self.reset()

    def reset(self):
        """Ends the program under test, and whatever else the test has started by a name of its own."""
        for name in [name for name in self.desktop.family.processes if name not in self.standing]:
            self.desktop.family.end(name)
        for file in os.listdir(self.desktop.state):
            os.remove(os.path.join(self.desktop.state, file))

    @property
    def screen(self):
        return self.desktop.screen

    def settings(self) -> dict:
        """The settings as they are saved; empty before that."""
        try:
            with open(os.path.join(self.desktop.state, "settings.json"), encoding="utf-8") as file:
                return json.load(file)
        except FileNotFoundError:
            return {}

    def save_settings(self, **values):
        """Settings of somebody who has seen the first-run window."""
        with open(os.path.join(self.desktop.state, "settings.json"), "w", encoding="utf-8") as file:
            json.dump({"onboarded": True} | values, file)

    def baseline(self):
        """Waits for the guard's first sample, which charges nobody; what connects later is charged in full."""
        wait_until(lambda: os.path.exists(os.path.join(self.desktop.state, "ledger.json")), "the first sample")

    def click(self, control):
        """Clicks a control with the mouse, once it stands still."""
        self.screen.settled(everything())
        self.screen.click(control.area)

    def start_again(self):
        """Starts the program a second time, which brings up the panel of the first."""
        self.assertEqual(self.desktop.start_program(name="quellon-again").wait(), 0)
        self.wait_until(self.is_panel_open, "the program's panel")

    def is_panel_open(self) -> bool:
        return self.quellon.tree.find("push button", "Quit Quellon") is not None

    def tab_to(self, name: str, backwards: bool = False):
        """Presses Tab until the control of this name has the keyboard; the names of those on the way."""
        passed = []
        for _ in range(MOST_STEPS):
            focused = self.quellon.tree.focused()
            if focused and focused.name == name:
                return passed
            passed.append(focused.name if focused else "")
            self.press_tab(focused, backwards)
        raise AssertionError(f"Tab does not reach \"{name}\", only {passed}")

    def choose(self, name: str, *keys: str):
        """Opens the list of a box by keyboard, goes on from the present choice by these keys, and chooses."""
        self.tab_to(name)
        box = self.quellon.tree.focused()
        self.screen.press("Down")
        self.wait_until(lambda: box.find("list"), f"the list of \"{name}\"")
        self.screen.press(*keys, "Return")
        self.wait_until(lambda: not box.find("list"), f"the end of the list of \"{name}\"")

    def press_tab(self, focused, backwards: bool = False):
        """Presses Tab and waits until another control than `focused` has the keyboard."""
        before = focused and (focused.name, focused.area)

        def is_elsewhere():
            now = self.quellon.tree.focused()
            return now is not None and (now.name, now.area) != before
        self.screen.press("shift+Tab" if backwards else "Tab")
        self.wait_until(is_elsewhere, "the keyboard at another control")

    def wait_until(self, condition, what: str, seconds: float = 20.0):
        return wait_until(condition, what, seconds)


def main():
    """Runs the class of tests that the command line names."""
    global program, pictures
    chosen, program, pictures = (sys.argv[1:] + [""])[:3]
    result = unittest.main(module="__main__", argv=[sys.argv[0], chosen], exit=False, verbosity=2,
                           warnings="ignore").result
    for _, reason in result.skipped:
        print(f"skipped: {reason}")
    if not result.wasSuccessful() or result.testsRun + len(result.skipped) == 0:
        sys.exit(1)
    sys.exit(SKIPPED if result.skipped else 0)
