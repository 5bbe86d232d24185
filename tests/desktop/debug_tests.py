#!/usr/bin/python3
"""The debug panel of the real program: opened by the gesture, read, and used on isolated state."""

import os

import cases


class Debug(cases.DesktopCase):
    def setUp(self):
        self.save_settings(updateCheckConsent="denied")
        self.quellon = self.desktop.start_program()
        self.desktop.bus.wait_for_owner("org.quellon.Quellon")
        self.start_again()
        self.quellon.tree.find("push button", "Open settings").press()
        window = self.quellon.tree.wait_for("frame", "Quellon Settings")
        window.wait_for("page tab", "About").press()
        self.version = window.wait_for("label", where=lambda it: it.text.startswith("0."))

    def tap(self, times: int):
        for _ in range(times):
            self.screen.click(self.version.area)

    def panel(self):
        return self.quellon.tree.find("frame", "Quellon Debug")

    def open(self):
        self.tap(7)
        return self.quellon.tree.wait_for("frame", "Quellon Debug")

    def test_six_taps_open_nothing(self):
        self.tap(6)
        self.version.focus()
        self.assertIsNone(self.panel())
        self.tap(1)
        self.wait_until(self.panel, "the debug panel behind the seventh")

    def test_pages(self):
        panel = self.open()
        text = panel.wait_for("text", "Snapshot")
        self.assertTrue(text.text.startswith("# Quellon debug snapshot\n"), text.text)
        self.assertIn("[ISOLATED · explicitOverride]", text.text)
        self.assertIn("guard      running", text.text)
        self.click(panel.find("list").find("list item", "settings.json"))
        text = panel.wait_for("text", "settings.json", lambda it: "profiles" in it.text)
        self.assertIn("updateCheckConsent: denied", text.text)
        self.assertIn("name: ‹other, ", text.text)

    def test_notification_to_try(self):
        panel = self.open()
        panel.find("push button", "Test: blocked app").press()
        self.quellon.tree.wait_for("label", where=lambda it: "Quellon Test" in it.text)

    def test_failing_sample(self):
        if "LAB_INTERNET" not in os.environ:
            self.skipTest("no sample without the lab")
        panel = self.open()
        panel.find("push button", "Fail the next sample").press()
        self.click(panel.find("list").find("list item", "Sampling"))

        refresh = panel.find("push button", "Refresh").area

        def told():
            # By the mouse: a press by an assistive program takes a tenth of a second, and begins anew with the next.
            self.screen.click(refresh)
            text = panel.find("text", "Sampling")
            return text and not text.text.endswith("last failure    —")
        self.wait_until(told, "a failed sample")


if __name__ == "__main__":
    cases.main()
