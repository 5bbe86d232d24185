#!/usr/bin/env python3
"""Nothing stays frozen, however the real guard ends in the lab."""

import signal

import labs


class ThawCase(labs.SceneCase):
    script = "thaw_scene.py"

    def assert_whole(self, download: dict):
        self.assertEqual((download["status"], download["intact"]), (0, True))


class OrderlyEnds(ThawCase):
    def assert_thawed(self, seen: dict):
        self.assertEqual((seen["guard"], seen["left"]), (0, []))
        self.assertNotEqual(seen["state"], "T")
        self.assert_whole(seen)

    def test_time_is_up(self):
        self.assert_thawed(self.play("duration"))

    def test_terminated(self):
        self.assert_thawed(self.play("terminated"))

    def test_interrupted(self):
        self.assert_thawed(self.play("interrupted"))


class NextStart(ThawCase):
    def test_recovers(self):
        seen = self.play("recovery")
        self.assertEqual((seen["killed"], seen["state"]), (-signal.SIGKILL, "T"))
        told = [line for line in seen["lines"] if "unclean" in line]
        self.assertEqual([line.split(maxsplit=2)[1:] for line in told],
                         [["warning", "Recovered from an unclean shutdown — resumed photo-backup"]])
        self.assertIsNone(seen["left"])
        self.assertEqual(seen["guard"], 0)
        self.assert_whole(seen)


class TwoFreezes(ThawCase):
    """Of one application, the second of other processes than the first."""

    def assert_both(self, seen: dict):
        self.assertEqual((seen["both"], seen["listed alone"]), ([True, True], True))
        for download in seen["downloads"]:
            self.assert_whole(download)

    def test_the_guard_is_terminated(self):
        seen = self.play("two_freezes_terminated")
        self.assert_both(seen)
        self.assertNotEqual(seen["second"], "T")
        self.assertEqual((seen["guard"], seen["recovered"]), (0, False))

    def test_the_guard_is_killed(self):
        seen = self.play("two_freezes_killed")
        self.assert_both(seen)
        self.assertEqual(seen["second"], "T")
        self.assertEqual((seen["guard"], seen["recovered"]), (-signal.SIGKILL, True))


class Watchdog(ThawCase):
    def test_outlives_guard_and_terminal(self):
        seen = self.play("watchdog")
        self.assertEqual((seen["session"], seen["terminal"]), (True, 0))
        self.assertEqual(seen["streams"], ["/dev/null"] * 3)
        self.assertEqual((seen["state"], seen["alive"]), ("T", True))
        print(f"thawed after {seen['after']:.1f} seconds")
        self.assertGreater(seen["after"], seen["delay"] - 2)
        self.assert_whole(seen)


class PrivateFiles(ThawCase):
    def test_modes(self):
        modes = self.play("private_files")
        folders = {name: modes.pop(name) for name in ("fresh", "state")}
        self.assertEqual(set(folders.values()), {"0o700"})
        self.assertLessEqual({"suspended.json", "enforcement-history.json", "ledger.json"}, modes.keys())
        # The guard does not save the settings that somebody else has put there.
        self.assertEqual({mode for name, mode in modes.items() if name != "settings.json"}, {"0o600"})


class AtOnce(ThawCase):
    def test_killed_as_soon_as_something_is_frozen(self):
        seen = self.play("killed_at_once")
        print(f"killed before the freeze was on record in {seen['unlisted']} of {seen['rounds']} rounds")
        self.assertGreater(seen.pop("unlisted"), 0)
        self.assertEqual(seen, {"rounds": 10, "frozen": 10, "stayed": 0})


class AtRandom(ThawCase):
    def test_killed_200_times(self):
        seen = self.play("killed_at_random", timeout=840)
        print(f"{seen['rounds']} rounds in {seen['seconds']:.0f} seconds: something was left frozen in "
              f"{seen['frozen']}, thawed by the next start in {seen['thawed']}")
        self.assertEqual(seen["rounds"], 200)
        self.assertEqual(seen["unknown"], [])
        self.assertGreater(seen["frozen"], 0)
        self.assertGreater(seen["thawed"], 0)
        self.assertEqual((seen["frozen at the end"], seen["left"], seen["guard"]), ([], [], 0))
        self.assertLessEqual({"enforcement-history.json", "ledger.json", "liveness.json", "settings.json",
                              "suspended.json"}, set(seen["files"]))
        # The bystander was thawed once: by the test itself, to see that it counts.
        self.assertEqual(seen["counted"], 1)


if __name__ == "__main__":
    labs.main()
