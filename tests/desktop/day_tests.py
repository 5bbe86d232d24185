#!/usr/bin/python3
"""A whole day with the program, from its first start to quitting it, as its user sees it and as it really is.

Runs in the world of day_world.py. Everything is done with the pointer and the keys, seen in the accessibility tree, the
notification daemon and the panel's tray, and compared with the processes, the files and what the program's hosts heard.
"""

import json
import re
import subprocess
import time

import cases
from day_cases import DayCase

PICKER = "Apps seen using data"
QUESTION = "Replace your limits with the derived defaults?"
WARNED = "podcast-sync is using a lot of data"
ASKED = "photo-backup is using a lot of data"
PAUSED = "cloud-mirror was paused"
BLOCKED = "news-reader is reaching for the hotspot"
MEGABYTE = 1024 * 1024
LOOKUP = ("api.quellon.example", "/v1/explain")
EXPLANATION = {
    "recognized": True, "whatItIs": "Keeps a folder the same on several machines.",
    "whyTraffic": "It copies every file that has changed.", "category": "cloud-sync", "vendor": "Nobody in particular",
    "limitAdvice": "safe", "limitNote": "It catches up later."}


class Joining(DayCase):
    """The hotspot comes and goes, and nobody tells the program."""

    def setUp(self):
        self.save_settings(updateCheckConsent="denied")
        self.begin()

    def test_and_leaving(self):
        self.wait_for_title("Quellon: Idle · not a metered network")
        panel = self.panel()
        self.user.read(panel, "No default route — offline")
        self.radio("on")
        self.wait_for_title("Quellon: Guarding · 0% of the plan used", 40)
        self.user.read(panel, "wlan0 · gateway 172.20.10.1 (hotspot range)")
        self.radio("off")
        self.wait_for_title("Quellon: Idle · not a metered network")
        self.user.read(panel, "No default route — offline")


class Day(DayCase):
    def setUp(self):
        self.begin()

    def test_from_the_first_start_to_quitting(self):
        steps = (self.first_start, self.plans, self.limits, self.joining, self.warning, self.asking, self.stepping_in,
                 self.resuming, self.calibrating, self.blocking, self.looking_up, self.updating, self.quitting)
        for step in steps:
            begun = time.monotonic()
            step()
            self.picture(f"after-{step.__name__}")
            print(f"{step.__name__}: {time.monotonic() - begun:.1f} s", flush=True)

    def set_level(self, title: str, level: str):
        """Lets the rule of a minute do something else."""
        window = self.settings_page("Rules")
        self.user.choose(window, "Action for 1min rule", title)
        self.wait_for_plan(lambda plan: plan["rules"][0]["level"] == level, f"a rule at {level}")
        self.close_settings()

    # --- the day -----------------------------------------------------------------------------------------------------

    def first_start(self):
        window = self.user.window("Welcome to Quellon")
        self.user.read(window, "Daily budget 1.00 GB")
        self.picture("welcome")
        self.user.replace(window, "Monthly plan in gigabytes", "1")
        self.user.read(window, "Daily budget 34.1 MB")
        self.user.read(window, "Over 1.5 MB")
        self.user.choose(window, "Mainly used for", "Light — mail, docs, browsing")
        self.user.read(window, "Over 1.0 MB")
        texts = self.user.texts(window)
        at = texts.index("Over 1.0 MB")
        self.assertEqual(texts[at:at + 6], ["Over 1.0 MB", "in 1min", "Notify me", "Over 8.5 MB", "in 1h", "Ask me"])
        self.assertFalse(self.settings().get("onboarded", False))
        self.user.click(window, "Start guarding")
        self.user.wait_for_no_window("Welcome to Quellon")
        self.wait_until(lambda: self.settings().get("onboarded"), "settings of somebody who has seen it")
        self.assertEqual(self.screen.windows(self.quellon.pid), {})
        plan, = self.settings()["profiles"]
        self.assertEqual((plan["planGB"], plan["usageProfile"]), (1, "light"))
        self.assertEqual([(rule["windowSeconds"], rule["level"]) for rule in plan["rules"]],
                         [(60, "notify"), (3600, "ask")])

    def plans(self):
        """While there is no network yet: a second plan."""
        panel = self.panel()
        self.user.read(panel, "Idle · not a metered network")
        self.user.read(panel, "No default route — offline")
        self.assertEqual(self.item.get("Title"), "Quellon: Idle · not a metered network")
        self.picture("idle")
        window = self.settings_page("Plan")
        self.user.click(window, "Add a plan profile")
        self.wait_until(lambda: len(self.settings()["profiles"]) == 2, "a second plan")
        self.user.replace(window, "Rename this profile", "Travel SIM")
        self.wait_for_plan(lambda plan: plan["name"] == "Travel SIM", "a plan with a name of its own")
        self.user.read(window, "Each profile keeps its own monthly ledger.")
        self.picture("second-plan")
        self.user.choose(window, "Active plan profile", "My plan")
        self.wait_for_plan(lambda plan: plan["name"] == "My plan", "the first plan again")

    def limits(self):
        """The limits changed by hand, and derived anew."""
        derived = [rule["thresholdBytes"] for rule in self.plan()["rules"]]
        window = self.settings_page("Rules")
        self.user.replace(window, "Limit in megabytes", "20", "Return")
        self.wait_for_plan(lambda plan: plan["rules"][0]["thresholdBytes"] == 20 * MEGABYTE, "a limit of 20 MB")
        self.picture("rules")
        window = self.settings_page("Plan")
        self.user.click(window, "Re-derive limits from plan")
        question = self.sheet(QUESTION)
        self.user.read(question, "1min 20.0 MB → 1.0 MB")
        self.picture("question")
        self.user.click(question, "Replace")
        self.wait_for_plan(lambda plan: [rule["thresholdBytes"] for rule in plan["rules"]] == derived,
                           "the derived limits")
        self.user.wait_for_none(window, "dialog", QUESTION)
        self.close_settings()

    def joining(self):
        """Not waiting for the guard to look for networks again, which it does twice a minute, but by its switch."""
        self.radio("on")
        panel = self.panel()
        self.user.click(panel, "Guard", "check box")
        self.user.read(panel, "Off")
        self.wait_for_title("Quellon: Off")
        self.user.click(panel, "Guard", "check box")
        self.wait_for_title("Quellon: Guarding · 0% of the plan used")
        self.user.read(panel, "Guarding")
        self.user.read(panel, "wlan0 · gateway 172.20.10.1 (hotspot range)")
        self.user.see(panel, "push button", "Switch plan profile")
        self.picture("joined")
        self.close_panel()

    def warning(self):
        self.reader = self.download("news-reader", 10_000_000, 12_000)  # too little to be warned about
        download = self.download("podcast-sync", 8_000_000)
        # Both go by themselves.
        toast = self.user.toast(WARNED, 30)
        self.assertRegex("\n".join(self.user.texts(toast)) + toast.description, r"\d\.\d MB in 1min · limit 1\.0 MB")
        self.assertEqual([each.name for each in toast.all("push button")], ["Dismiss"])
        self.notification(WARNED)
        self.assertRegex(self.item.get("Title"), r"Quellon: Guarding · podcast-sync \d\.\d MB")
        self.assertEqual(download.finish(), {"status": 0, "intact": True})

    def asking(self):
        """A rule that asks, answered on its toast."""
        self.set_level("Ask me", "ask")
        self.backup = self.download("photo-backup", 60_000_000)
        toast = self.user.toast(ASKED, 30)
        self.assertEqual([each.name for each in toast.all("push button")],
                         ["Snooze 15 min", "Pause", "Never limit", "Show details", "Dismiss"])
        self.notification(ASKED)
        self.assertFalse(self.backup.is_frozen())
        self.picture("asked")
        self.user.answer(toast, "Pause", self.backup.is_frozen, "a frozen download")
        self.user.wait_for_none(self.quellon.tree, "alert", ASKED)
        self.close_notification(ASKED)
        self.wait_for_title("1 paused")
        self.assertEqual([each["pids"] for each in self.acting.suspended()], [[self.backup.pid]])

    def stepping_in(self):
        """A rule that acts by itself."""
        self.set_level("Step in automatically", "enforce")
        self.mirror = self.download("cloud-mirror", 60_000_000, 300_000)
        self.wait_until(self.mirror.is_frozen, "a frozen download", 30)
        toast = self.user.toast(PAUSED)
        self.assertEqual([each.name for each in toast.all("push button")], ["Resume", "Resume + snooze", "Dismiss"])
        self.close_notification(PAUSED)
        self.wait_for_title("2 paused")
        # Enough of it: what still comes in for the paused may cross the limit once more.
        self.set_level("Highlight only", "highlight")

    def resuming(self):
        panel = self.panel()
        rows = panel.all(where=lambda it: it.find("label", "cloud-mirror") and it.find("push button", "Resume"))
        self.picture("paused")
        self.user.click(rows[-1], "Resume")  # the innermost that has both
        self.wait_until(lambda: not self.mirror.is_frozen(), "a download that goes on")
        before = self.mirror.received()
        self.wait_until(lambda: self.mirror.received() > before, "bytes that come in")
        self.assertTrue(self.backup.is_frozen())
        self.wait_for_title("1 paused")
        self.close_panel()
        self.mirror.end()

    def calibrating(self):
        window = self.settings_page("Plan")
        self.user.replace(window, "Usage your carrier shows, in gigabytes", "0.5")
        self.user.click(window, "Match")
        # What came in since the guard last looked comes on top.
        self.assertRegex(self.user.read(window, " MB (50%)").text, r"^51[2-9]\.\d MB \(50%\)$")
        self.assertRegex(self.user.read(window, "Adjusted by +").text, r"Adjusted by \+\d+\.\d MB this cycle\.")
        budget = self.plan()["budgetFile"]
        self.wait_until(lambda: self.state_file(budget).get("calibrationOffsetBytes", 0) > 400 * MEGABYTE,
                        "a budget that is saved")

    def blocking(self):
        """An application picked from those that were seen, to be stopped whenever it comes back."""
        window = self.settings_page("Apps")
        self.user.read(window, "Every app follows the global rules")
        self.user.click(window, "Add an app to the policy list")
        picker = self.sheet(PICKER)
        self.user.read(picker, "photo-backup")
        self.picture("picker")
        self.user.replace(picker, "Filter", "News")
        self.user.wait_for_none(picker, "label", "photo-backup")
        self.user.click(picker, "Always block news-reader on hotspot")
        self.user.wait_for_none(window, "dialog", PICKER)
        self.user.see(window, "push button", "Remove news-reader")
        self.wait_until(lambda: self.settings()["appPolicies"] == {"news-reader": "always"}, "a policy that is saved")
        toast = self.user.toast(BLOCKED, 30)
        self.assertIn("you set this app to always block", "\n".join(self.user.texts(toast)) + toast.description)
        self.notification(BLOCKED)
        self.picture("blocked")
        self.user.answer(toast, "Stop it", lambda: self.reader.process.poll() is not None, "a program that has ended")
        self.assertNotEqual(self.reader.process.returncode, 0)

    def looking_up(self):
        """An application that the program does not know, explained by a server that was asked with consent only."""
        self.hosts.reply(*LOOKUP, EXPLANATION, held=True)
        window = self.settings_page("Apps")
        self.user.click(window, "Details for news-reader")
        details = self.sheet("news-reader")
        self.user.read(details, "Not in the knowledge pack yet.")
        self.user.click(details, "Look up news-reader online")
        self.user.read(details, "Look up unknown apps online?")
        self.assertEqual(self.hosts.requests, [])
        self.picture("consent")
        self.user.click(details, "Allow online app lookups")
        self.user.read(details, "Looking it up…")
        host, first, header, body = self.hosts.wait_for_request(1)
        self.assertEqual((host, first), (LOOKUP[0], f"POST {LOOKUP[1]} HTTP/1.1"))
        self.assertEqual(set(header), {"Host", "User-Agent", "Content-Type", "Content-Length"})
        self.assertEqual(json.loads(body), {"label": "news-reader"})
        self.hosts.release(*LOOKUP)
        self.user.read(details, "Looked up online · AI-written, not human-reviewed.")
        self.user.read(details, "Cloud sync · Nobody in particular")
        for text in (EXPLANATION["whatItIs"], EXPLANATION["whyTraffic"], EXPLANATION["limitNote"]):
            self.user.read(details, text)
        self.assertEqual(self.settings()["explainConsent"], "granted")
        self.assertIn(EXPLANATION["whatItIs"], json.dumps(self.state_file("explanations.json")))
        self.picture("answer")
        self.user.click(details, "Close")
        self.user.wait_for_none(window, "dialog", "news-reader")
        self.close_settings()

    def updating(self):
        told = subprocess.run([cases.program, "--version"], capture_output=True, text=True, check=True).stdout
        version = re.search(r"\d+\.\d+\.\d+", told).group()
        path = f"/quellon/appcast/{version}.json"
        self.hosts.reply("updates.quellon.example", path, {
            "latestVersion": "99.1.0", "downloadURL": "https://updates.quellon.example/quellon-99.1.0.tar.xz"})
        panel = self.panel()
        self.user.read(panel, "Check for updates?")
        self.user.read(panel, " / 1.00 GB")
        self.picture("consent")
        self.assertEqual(len(self.hosts.requests), 1)
        self.user.click(panel, "Allow daily update checks")
        self.user.read(panel, "Version 99.1.0 is available")
        host, first, header, body = self.hosts.wait_for_request(2)
        self.assertEqual((host, first, body), ("updates.quellon.example", f"GET {path} HTTP/1.1", b""))
        self.assertEqual(set(header), {"Host", "User-Agent"})
        self.picture("available")
        self.user.click(panel, "Dismiss update notice")
        self.user.wait_for_none(panel, "label", "Version 99.1.0 is available")
        self.wait_until(lambda: "updateLastCheckedAt" in self.settings(), "the time of the check")
        self.assertEqual(self.settings()["updateCheckConsent"], "granted")

    def quitting(self):
        """What was still paused goes on."""
        self.assertTrue(self.backup.is_frozen())
        self.user.click(self.user.window("Quellon"), "Quit Quellon")
        self.assertEqual(self.quellon.wait(), 0)
        self.assertFalse(self.backup.is_frozen())
        before = self.backup.received()
        self.wait_until(lambda: self.backup.received() > before, "bytes that come in")
        self.backup.end()
        self.assertEqual(self.acting.all_frozen(), [])
        self.assertEqual(self.acting.suspended() or [], [])
        self.wait_until(lambda: not self.bar.items(), "a panel without items")
        paused = [self.backup.pid, self.mirror.pid]
        self.wait_until(lambda: not self.left(paused), lambda: f"the end of {self.left(paused)}")
        self.assertEqual(len(self.hosts.requests), 2)


if __name__ == "__main__":
    cases.main()
