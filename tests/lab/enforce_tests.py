#!/usr/bin/env python3
"""The real guard, stepping in on real programs in the lab."""

import labs


class EnforceCase(labs.SceneCase):
    script = "enforce_scene.py"

    def assert_line(self, lines: list, kind: str, text: str) -> str:
        """Exactly one line of the activity is of this kind and matches the regular expression; that line."""
        found = [line for line in lines if line.split()[1] == kind]
        self.assertEqual(len(found), 1, lines)
        self.assertRegex(found[0], text)
        return found[0]

    def assert_whole(self, download: dict):
        self.assertEqual((download["status"], download["intact"]), (0, True))


class Freeze(EnforceCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.seen = cls.play("freeze")

    def test_stands_still(self):
        self.assertEqual(self.seen["state"], "T")
        self.assertGreater(self.seen["received"], 0)
        self.assertEqual(self.seen["grown"], 0)

    def test_is_told(self):
        self.assert_line(self.seen["lines"], "enforced", r"photo-backup used \d+\.\d MB in 1min → 暂停（可恢复）$")
        self.assertRegex(self.seen["notice"][1], r"^\d+\.\d MB in 1min$")
        self.assertEqual(self.seen["notice"][0], "photo-backup was paused")
        self.assertEqual(self.seen["notice"][2:],
                         ["It is frozen, not closed — resume and it picks up where it left off.",
                          "[Resume] [Resume + snooze]"])

    def test_is_on_record(self):
        entry, = self.seen["entries"]
        self.assertEqual((entry["app"], entry["pids"]), ("photo-backup", [self.seen["pid"]]))
        self.assertEqual([bool(start) for start in entry["starts"]], [True])

    def test_goes_on_when_the_guard_ends(self):
        self.assert_whole(self.seen)
        self.assertEqual((self.seen["guard"], self.seen["left"]), (0, []))


class ResumeByKey(EnforceCase):
    def test_every_byte_arrives(self):
        seen = self.play("resume_by_key")
        self.assert_whole(seen)
        self.assertEqual((seen["guard"], seen["left"]), (0, []))


class Terminate(EnforceCase):
    def test_obeyed(self):
        seen = self.play("terminate")
        self.assertEqual(seen["status"], -15)
        self.assertLess(seen["after"], 4)
        self.assert_line(seen["lines"], "enforced", r"updater used \d+\.\d MB in 1min → 退出$")
        self.assertEqual(seen["notice"][-1], "[Show details]")
        self.assertFalse(seen["left"])

    def test_ignored(self):
        seen = self.play("terminate_ignored")
        self.assertEqual(seen["status"], -9)
        self.assertGreater(seen["after"], 4)
        self.assert_line(seen["lines"], "enforced", r"→ 退出$")
        self.assertEqual(seen["guard"], 0)


class Kill(EnforceCase):
    def test_at_once(self):
        seen = self.play("kill")
        self.assertEqual(seen["status"], -9)
        self.assertLess(seen["after"], 4)
        self.assert_line(seen["lines"], "enforced", r"→ 强制结束$")
        self.assertFalse(seen["left"])


class LoopBreaker(EnforceCase):
    def test_third_time(self):
        seen = self.play("loop")
        self.assertEqual((seen["ended"], seen["runs"]), ([-9, -9], 3))
        lines = [line for line in seen["lines"] if line.split()[1] == "enforced"]
        self.assertEqual(len(lines), 3, lines)
        self.assertTrue(all(line.endswith("→ 强制结束") for line in lines[:2]), lines)
        self.assertRegex(lines[2], r"→ 暂停（可恢复） \(kill loop breaker\)$")
        self.assertRegex(seen["notice"][1], r"^3 times in 6 h · ≥\d+\.\d MB spent retrying$")
        self.assertEqual((seen["guard"], seen["thawed"]), (0, True))


class AlwaysBlocked(EnforceCase):
    def test_asked_about_and_left_alone(self):
        seen = self.play("always_blocked")
        self.assertLessEqual(seen["rounds"], 2)
        self.assert_line(seen["lines"], "warning",
                         r"mail reached for the hotspot \(\d+\.\d MB\) — set to always block$")
        self.assertEqual(seen["notice"][-1], "[Stop it] [Allow until done] [Stop asking today] [Show details]")
        self.assertNotIn("T", seen["states"])
        self.assert_whole(seen)
        self.assertFalse(seen["left"])


class Family(EnforceCase):
    def test_all_that_load(self):
        seen = self.play("family")
        print(f"{seen['children']} processes")
        self.assertGreater(seen["children"], 3)
        # The one that started them moves nothing itself.
        self.assertNotEqual(seen["parent"], "T")
        self.assertEqual(seen["guard"], 0)
        # Whichever of them the guard had on its list by then: each is there, and none stands still.
        self.assertEqual(len(seen["states"]), seen["children"])
        self.assertNotIn("T", seen["states"].values())
        self.assertNotIn("", seen["states"].values())


class Protected(EnforceCase):
    def test_stay_running(self):
        seen = self.play("protected")
        self.assertEqual(seen["frozen"], [])
        for app, reason in (("ssh", "protected tool (ssh)"), ("archive", "part of a protected session"),
                            ("radio", "set to never limit")):
            with self.subTest(app):
                self.assertTrue([line for line in seen["lines"]
                                 if f" {app} used " in line and line.endswith(f"→ protected [{reason}]")], seen["lines"])
        self.assert_whole(seen["ssh"])
        self.assert_whole(seen["radio"])
        self.assertEqual((seen["shell"], seen["archive"]), (0, 6_000_000))
        self.assertFalse([line for line in seen["lines"] if line.split()[1] in ("enforced", "notice")])
        self.assertFalse(seen["left"])


if __name__ == "__main__":
    labs.main()
