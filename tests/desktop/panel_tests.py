#!/usr/bin/python3
"""The program's panel as a screen reader sees it, and used by keyboard alone, while there is real traffic."""

import cases
from notification_tests import RULE

PLANS = [{"id": "6F9619FF-8B86-4D01-B42D-00CF4FC964FF", "name": "Phone", "planGB": 30,
          "rules": [RULE | {"level": "enforce", "thresholdBytes": 3_000_000}]},
         {"id": "C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11", "name": "Travel SIM", "planGB": 2.5, "rules": [],
          "budgetFile": "budget-travel.json"}]
FROZEN_ROW = "Explain photo-backup"


class PanelCase(cases.DesktopCase):
    """Two plans, a question about updates, one download that is frozen: all sections but the hint about a tether."""

    needs_traffic = True

    def setUp(self):
        import acting
        self.save_settings(profiles=PLANS, activeProfileID=PLANS[0]["id"], sampleInterval=1)
        self.quellon = self.desktop.start_program()
        self.baseline()
        # Below the limit: its row stays. What is frozen has one only while bytes that were on the way still come.
        self.enterContext(acting.downloading("radio", 2_000_000, 1_000_000))
        self.download = self.enterContext(acting.downloading("photo-backup", 60_000_000, 4_000_000))
        self.wait_until(self.download.is_frozen, "a frozen download")
        self.start_again()
        self.wait_until(lambda: self.screen.active_title() == "Quellon", "a panel with the keyboard")
        self.panel = self.quellon.tree.wait_for("frame", "Quellon")
        self.panel.wait_for("push button", "Explain radio")


class PanelControls(PanelCase):
    """Each control by its role, its label and its state."""

    CONTROLS = [
        ("check box", "Guard"), ("push button", "Allow daily update checks"), ("push button", "Decline update checks"),
        ("push button", "Switch plan profile"), ("push button", "Explain radio"), ("push button", "Resume all"),
        ("push button", "Resume"), ("push button", "Open settings"), ("push button", "Quit Quellon")]

    def test_all(self):
        self.assertEqual([each for each in cases.controls(self.panel) if each[1] != FROZEN_ROW], self.CONTROLS)
        self.assertTrue(self.panel.find("check box", "Guard").has("checked"))

    def test_texts(self):
        """What is read out beside the controls."""
        texts = [each.name for each in self.panel.all("label")]
        for text in ("Guarding", "Check for updates?", "This month", "Last 1min", "limit 2.9 MB", "Paused"):
            self.assertIn(text, texts)


class PanelKeyboard(PanelCase):
    """Everything in the panel without a mouse."""

    def press(self, name: str, key: str):
        """Goes to the control of this name by Tab, and presses it."""
        self.tab_to(name)
        self.screen.press(key)

    def keyboard_at(self) -> str:
        focused = self.quellon.tree.focused()
        return focused.name if focused else ""

    def test_order(self):
        """Tab goes through the controls as they are read, and around."""
        names = [name for _, name in PanelControls.CONTROLS]
        self.tab_to(names[0])
        for name in [*names[1:], names[0]]:
            self.screen.press("Tab")
            self.wait_until(lambda: self.keyboard_at() in (name, FROZEN_ROW), f"the keyboard at {name}")
            if self.keyboard_at() == FROZEN_ROW:
                self.screen.press("Tab")
                self.wait_until(lambda: self.keyboard_at() == name, f"the keyboard at {name}")
        self.screen.press("shift+Tab")
        self.wait_until(lambda: self.quellon.tree.focused().name == names[-1], f"the keyboard at {names[-1]}")

    def test_row(self):
        self.press("Explain radio", "Return")
        self.panel.wait_for("push button", "Open details for radio")
        self.press("Collapse radio", "space")
        self.panel.wait_for_none("push button", "Open details for radio")
        self.press("Explain radio", "space")
        self.press("Open details for radio", "Return")
        self.wait_until(lambda: self.screen.active_title() == "Quellon Settings", "settings with the keyboard")
        self.quellon.tree.wait_for("combo box", "Policy for radio")
        self.assertFalse(self.is_panel_open())

    def test_answers(self):
        self.press("Decline update checks", "Return")
        self.panel.wait_for_none("push button", "Decline update checks")
        self.wait_until(lambda: self.settings().get("updateCheckConsent") == "denied", "a saved answer")
        self.press("Resume", "space")
        self.wait_until(lambda: not self.download.is_frozen(), "a download that goes on")

    def test_resume_all(self):
        self.press("Resume all", "Return")
        self.wait_until(lambda: not self.download.is_frozen(), "a download that goes on")

    def test_switch(self):
        self.press("Guard", "space")
        self.wait_until(lambda: not self.panel.find("check box", "Guard").has("checked"), "a guard that is off")
        self.screen.press("Return")
        self.wait_until(lambda: self.panel.find("check box", "Guard").has("checked"), "a guard that is on")

    def test_profiles(self):
        self.press("Switch plan profile", "space")
        self.panel.wait_for("menu item", "Travel SIM")
        self.assertEqual([each.name for each in self.panel.all("menu item")], ["Phone", "Travel SIM"])
        self.screen.press("Down", "Down", "Return")
        self.wait_until(lambda: self.settings().get("activeProfileID") == PLANS[1]["id"], "the other plan")
        self.assertTrue(self.is_panel_open())

    def test_quit(self):
        self.press("Quit Quellon", "Return")
        self.assertEqual(self.quellon.wait(), 0)
        self.assertFalse(self.download.is_frozen())

    def test_escape(self):
        self.screen.press("Escape")
        self.wait_until(lambda: not self.is_panel_open(), "a closed panel")


if __name__ == "__main__":
    cases.main()
