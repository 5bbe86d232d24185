#!/usr/bin/python3
"""The settings and the first-run window as a screen reader sees them, and used by keyboard alone."""

import os

import cases
from cases import controls
from notification_tests import RULE

PLAN = {"id": "6F9619FF-8B86-4D01-B42D-00CF4FC964FF", "name": "Phone", "planGB": 30, "usageProfile": "developer",
        "rules": [RULE | {"level": "notify", "thresholdBytes": 52_428_800}]}
OTHER = {"id": "C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11", "name": "Travel SIM", "planGB": 2.5, "rules": [],
         "budgetFile": "budget-travel.json"}
TABS = [("page tab", name) for name in ("Plan", "Rules", "Apps", "Log", "About")]


class SettingsCase(cases.DesktopCase):
    """The settings, opened from the panel by keyboard."""

    plans = [PLAN, OTHER]

    def setUp(self):
        self.save_settings(profiles=self.plans, activeProfileID=PLAN["id"], updateCheckConsent="denied",
                           sampleInterval=1, appPolicies={"mail": "always", "radio": "never"})
        self.quellon = self.desktop.start_program()
        self.desktop.bus.wait_for_owner("org.quellon.Quellon")
        self.start_again()
        self.wait_until(lambda: self.screen.active_title() == "Quellon", "a panel with the keyboard")
        self.tab_to("Open settings")
        self.screen.press("Return")
        self.wait_until(lambda: self.screen.active_title() == "Quellon Settings", "settings with the keyboard")
        self.window = self.quellon.tree.wait_for("frame", "Quellon Settings")

    def shown(self) -> list:
        """The controls of the page by role and name."""
        return controls(self.window)

    def turn_to(self, page: str):
        """Turns to a page by keyboard: from its neighbour's tab to its own, and so on."""
        names = [name for _, name in TABS]
        place = names.index(self.window.find("page tab", where=lambda it: it.has("selected")).name)
        self.tab_to(names[place], backwards=True)
        while names[place] != page:
            step = 1 if names.index(page) > place else -1
            place += step
            self.screen.press("Right" if step > 0 else "Left")
            self.window.wait_for("page tab", names[place], lambda it: it.has("selected"))


class SettingsControls(SettingsCase):
    """Each control of each page by its role and its label."""

    PAGES = {
        "Plan": [
            ("combo box", "Active plan profile"), ("text", "Rename this profile"),
            ("push button", "Add a plan profile"), ("push button", "Delete the active profile"),
            ("text", "Monthly plan in gigabytes"), ("text", "Billing cycle start day"),
            ("combo box", "Mainly used for"), ("push button", "Re-derive limits from plan")],
        "Rules": [
            ("check box", "Enable 1min rule"), ("text", "Limit in megabytes"), ("combo box", "Action for 1min rule"),
            ("push button", "Add rule"), ("combo box", "When stepping in")],
        "Apps": [
            ("push button", "Details for mail"), ("combo box", "Policy for mail"), ("push button", "Remove mail"),
            ("push button", "Details for radio"), ("combo box", "Policy for radio"), ("push button", "Remove radio"),
            ("push button", "Add an app to the policy list"),
            ("push button", "Block common development tools on hotspot")],
        "Log": [("list", "Log")],
        "About": [("push button", "Website"), ("push button", "Send feedback"), ("push button", "Copy diagnostics")]}
    # On a metered network, at the end of the page about plans.
    CYCLE = [("text", "Usage your carrier shows, in gigabytes"), ("push button", "Match")]

    def test_pages(self):
        for page, expected in self.PAGES.items():
            with self.subTest(page):
                self.turn_to(page)
                shown = self.shown()
                if page == "Plan" and "LAB_INTERNET" in os.environ:
                    expected = expected + self.CYCLE
                self.assertEqual(shown, TABS + expected)
        self.turn_to("Log")
        self.assertIn("Quellon Pro started", " ".join(each.name for each in self.window.all("list item")))

    def test_states(self):
        """What the controls say of the settings."""
        fields = {"Rename this profile": "Phone", "Monthly plan in gigabytes": "30", "Billing cycle start day": "1"}
        for name, text in fields.items():
            self.assertEqual(self.window.find("text", name).text, text)
        self.assertEqual(self.window.find("combo box", "Active plan profile").description, "Phone")
        self.assertTrue(self.window.find("page tab", "Plan").has("selected"))
        self.turn_to("Rules")
        self.assertTrue(self.window.find("check box", "Enable 1min rule").has("checked"))
        self.assertEqual(self.window.find("text", "Limit in megabytes").text, "50")
        self.assertEqual(self.window.find("combo box", "Action for 1min rule").description, "Notify me")
        self.assertEqual(self.window.find("combo box", "When stepping in").description, "暂停（可恢复）")


class SettingsKeyboard(SettingsCase):
    """Everything there is to set, without a mouse."""

    def plan(self) -> dict:
        """The active plan as it is saved."""
        settings = self.settings()
        return next(each for each in settings["profiles"] if each["id"] == settings["activeProfileID"])

    def wait_for_plan(self, **values):
        self.wait_until(lambda: self.plan() | values == self.plan(), f"a plan with {values}, not {self.plan()}")

    def replace(self, name: str, text: str):
        """Types a text in place of the one in a field, and Enter."""
        self.tab_to(name)
        self.screen.press("ctrl+a")
        self.screen.type(text)
        self.screen.press("Return")

    def test_plan(self):
        self.replace("Rename this profile", "Home")
        self.wait_for_plan(name="Home")
        self.replace("Monthly plan in gigabytes", "50")
        self.wait_for_plan(planGB=50)
        self.replace("Billing cycle start day", "15")
        self.wait_for_plan(billingCycleStartDay=15)
        self.replace("Billing cycle start day", "99")
        self.window.wait_for("text", "Billing cycle start day", lambda it: it.description)
        self.assertEqual(self.plan()["billingCycleStartDay"], 15)
        self.replace("Billing cycle start day", "16")
        self.wait_for_plan(billingCycleStartDay=16)
        self.choose("Mainly used for", "Down")
        self.wait_for_plan(usageProfile="heavy")
        self.tab_to("Re-derive limits from plan")
        self.screen.press("space")
        question = self.window.wait_for("dialog", "Replace your limits with the derived defaults?")
        self.assertEqual(sorted(controls(question)), [("push button", "Keep mine"), ("push button", "Replace")])
        self.tab_to("Keep mine")
        self.screen.press("Return")
        self.assertEqual(len(self.plan()["rules"]), 1)
        self.tab_to("Re-derive limits from plan")
        self.screen.press("space")
        self.tab_to("Replace")
        self.screen.press("Return")
        self.wait_until(lambda: len(self.plan()["rules"]) == 2, "the derived rules")

    def test_plans(self):
        self.tab_to("Add a plan profile")
        self.screen.press("Return")
        self.wait_until(lambda: len(self.settings()["profiles"]) == 3, "a third plan")
        self.choose("Active plan profile", "Home")
        self.wait_for_plan(name="Phone")
        self.tab_to("Delete the active profile")
        self.screen.press("space")
        self.wait_until(lambda: len(self.settings()["profiles"]) == 2, "two plans")

    def test_rules(self):
        self.turn_to("Rules")
        self.tab_to("Enable 1min rule")
        self.screen.press("space")
        self.wait_until(lambda: not self.plan()["rules"][0]["enabled"], "a rule that is off")
        self.replace("Limit in megabytes", "20")
        self.wait_until(lambda: self.plan()["rules"][0]["thresholdBytes"] == 20 * 1024 * 1024, "another limit")
        self.choose("Action for 1min rule", "Down")
        self.wait_until(lambda: self.plan()["rules"][0]["level"] == "ask", "another level")
        self.tab_to("Add rule")
        self.screen.press("space")
        self.window.wait_for("menu item", "1h")
        self.assertEqual([each.name for each in self.window.all("menu item")], ["1min", "5min", "15min", "1h"])
        self.screen.press("Down", "Down", "Return")
        self.wait_until(lambda: len(self.plan()["rules"]) == 2, "another rule")
        self.assertEqual(self.plan()["rules"][1]["windowSeconds"], 300)
        self.choose("When stepping in", "Down")
        self.wait_until(lambda: self.settings()["enforcementAction"] == "terminate", "another way to step in")

    def test_apps(self):
        self.turn_to("Apps")
        self.choose("Policy for mail", "Up")
        self.wait_until(lambda: "mail" not in self.settings()["appPolicies"], "mail without a policy")
        self.tab_to("Remove radio")
        self.screen.press("Return")
        self.wait_until(lambda: not self.settings()["appPolicies"], "no policies")
        self.tab_to("Block common development tools on hotspot")
        self.screen.press("space")
        self.wait_until(lambda: self.settings()["appPolicies"].get("npm") == "always", "blocked tools")
        self.tab_to("Details for npm")
        self.screen.press("space")
        self.window.wait_for("push button", "Close")
        self.screen.press("Escape")
        self.window.wait_for_none("push button", "Close")
        self.tab_to("Add an app to the policy list")
        self.screen.press("Return")
        self.window.wait_for("text", "Filter")
        self.screen.press("Escape")
        self.window.wait_for_none("text", "Filter")

    def test_about(self):
        self.turn_to("About")
        self.tab_to("Copy diagnostics")
        self.screen.press("Return")
        self.window.wait_for("push button", "Copied ✓")


class Sheets(SettingsCase):
    """What opens inside the settings, with an application that has used the network."""

    needs_traffic = True

    def setUp(self):
        import acting
        super().setUp()
        self.baseline()
        self.enterContext(acting.downloading("photo-backup", 60_000_000, 1_000_000))
        self.turn_to("Apps")
        self.tab_to("Add an app to the policy list")
        self.screen.press("Return")
        self.picker = self.window.wait_for("dialog", "Apps seen using data")
        self.picker.wait_for("push button", "Details for photo-backup")

    def test_picker(self):
        rows = [row for row in controls(self.picker) if "photo-backup" in row[1]]
        self.assertEqual(rows, [("push button", "Details for photo-backup"),
                                ("push button", "Always block photo-backup on hotspot"),
                                ("push button", "Never limit photo-backup")])
        self.assertEqual(controls(self.picker)[0], ("text", "Filter"))
        self.assertEqual(controls(self.picker)[-1], ("push button", "Cancel"))

    def test_filter_and_block(self):
        self.tab_to("Filter")
        self.screen.type("no such program")
        self.picker.wait_for_none("push button", "Details for photo-backup")
        self.screen.press("ctrl+a")
        self.screen.type("PHOTO")
        self.picker.wait_for("push button", "Details for photo-backup")
        self.tab_to("Always block photo-backup on hotspot")
        self.screen.press("space")
        self.window.wait_for_none("dialog", "Apps seen using data")
        self.wait_until(lambda: self.settings()["appPolicies"].get("photo-backup") == "always", "a blocked program")
        self.window.wait_for("combo box", "Policy for photo-backup")

    def test_details(self):
        self.tab_to("Details for photo-backup")
        self.screen.press("Return")
        sheet = self.window.wait_for("dialog", "photo-backup")
        self.assertEqual(controls(sheet), [("combo box", "Policy for photo-backup"),
                                           ("push button", "Look up photo-backup online"), ("push button", "Close")])
        self.tab_to("Look up photo-backup online")
        self.screen.press("space")
        sheet.wait_for("push button", "Allow online app lookups")
        self.tab_to("Decline online app lookups")
        self.screen.press("Return")
        self.wait_until(lambda: self.settings()["explainConsent"] == "denied", "a saved answer")
        sheet.wait_for("push button", "Look up photo-backup online")
        self.choose("Policy for photo-backup", "Home")
        self.wait_until(lambda: self.settings()["appPolicies"].get("photo-backup") == "never", "a saved policy")
        self.tab_to("Close")
        self.screen.press("space")
        self.window.wait_for_none("dialog", "photo-backup")

    def test_carrier(self):
        self.screen.press("Escape")
        self.window.wait_for_none("dialog", "Apps seen using data")
        self.turn_to("Plan")
        self.tab_to("Usage your carrier shows, in gigabytes")
        self.screen.type("1.5")
        self.tab_to("Match")
        self.screen.press("space")
        self.window.wait_for("label", where=lambda it: it.name.startswith("Adjusted by +1."))
        self.tab_to("Clear")
        self.screen.press("Return")
        self.window.wait_for_none("push button", "Clear")


class Onboarding(cases.DesktopCase):
    """The first run."""

    def setUp(self):
        self.quellon = self.desktop.start_program()
        self.wait_until(lambda: self.screen.active_title() == "Welcome to Quellon", "the first-run window")
        self.window = self.quellon.tree.wait_for("frame", "Welcome to Quellon")

    def test_controls(self):
        self.assertEqual(controls(self.window), [
            ("text", "Monthly plan in gigabytes"), ("text", "Billing cycle start day"),
            ("combo box", "Mainly used for"), ("push button", "Start guarding")])

    def test_by_keyboard(self):
        self.tab_to("Monthly plan in gigabytes")
        self.screen.press("ctrl+a")
        self.screen.type("10")
        self.screen.press("Return")
        self.window.wait_for("label", "Daily budget 341.3 MB")
        self.assertFalse(self.settings().get("onboarded", False))
        self.choose("Mainly used for", "Up")
        self.tab_to("Start guarding")
        self.screen.press("space")
        self.wait_until(lambda: self.settings().get("onboarded"), "settings of somebody who has seen it")
        self.wait_until(lambda: not self.screen.windows(self.quellon.pid), "no window")
        profile, = self.settings()["profiles"]
        self.assertEqual((profile["planGB"], profile["usageProfile"]), (10, "light"))

    def test_closed_comes_again(self):
        self.screen.press("alt+F4")
        self.wait_until(lambda: not self.screen.windows(self.quellon.pid), "no window")
        self.assertTrue(self.quellon.is_running())
        self.quellon.end()
        self.setUp()


if __name__ == "__main__":
    cases.main()
