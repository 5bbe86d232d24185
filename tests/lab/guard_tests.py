#!/usr/bin/env python3
"""The real guard and its probe, watching real programs download in the lab."""

import labs


class GuardCase(labs.SceneCase):
    def assert_within(self, measured: int, true: int, tolerance: float):
        print(f"{measured} of {true} bytes: {100 * (measured / true - 1):+.3f} %")
        self.assertLessEqual(abs(measured - true), tolerance * true)


class Download(GuardCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.seen = cls.play("download")

    def test_bytes_by_name(self):
        self.assert_within(self.seen["usage"]["curl"], 100_000_000, 0.005)
        self.assert_within(self.seen["usage"][self.seen["python"]], 10_000_000, 0.005)

    def test_program_that_ended(self):
        self.assert_within(self.seen["usage"]["brief"], 20_000_000, 0.005)

    def test_phone_itself_costs_nothing(self):
        self.assertEqual(set(self.seen["usage"]), {"curl", self.seen["python"], "brief"})

    def test_verdict(self):
        self.assertIn("wlan0 · gateway 172.20.10.1 (hotspot range)", self.seen["output"])


class ProbeKilled(GuardCase):
    def test_guard_goes_on(self):
        seen = self.play("probe_killed")
        self.assertEqual(len(set(seen["helpers"])), 3)
        self.assert_within(seen["usage"]["curl"], 20_000_000, 0.005)
        # Five seconds between samples; the request that was lost may cost one of them.
        gaps = [later - earlier for earlier, later in zip(seen["at"], seen["at"][1:])]
        self.assertLess(max(gaps), 14)
        self.assertLessEqual(sum(gap > 8 for gap in gaps), 1)


class StateFolder(GuardCase):
    def test_read_only(self):
        seen = self.play("state_lost")
        self.assertEqual(seen["files"], [])
        self.assert_within(seen["usage"]["curl"], 10_000_000, 0.005)

    def test_full(self):
        seen = self.play("disk_full")
        self.assertEqual((seen["free"], seen["hasLedger"]), (0, False))
        self.assert_within(seen["usage"]["curl"], 10_000_000, 0.005)


class Connections(GuardCase):
    def test_short_ones(self):
        seen = self.play("many_connections")
        self.assertEqual(seen["status"], 0)
        print(f"{seen['connections']} connections, {seen['received']} bytes")
        # Headers come on top: some 180 bytes each.
        self.assertGreaterEqual(seen["received"], 0.99 * 20_000_000)
        self.assertLessEqual(seen["received"], 1.02 * 20_000_000)
        program = seen["program"]
        owned = [owners for owners in seen["owners"] if owners == [program]]
        unknown = [owners for owners in seen["owners"] if owners == [0]]
        found_later = [owners for owners in seen["owners"] if owners == [0, program]]
        print(f"owner known: {len(owned)}, never known: {len(unknown)}, found later: {len(found_later)}")
        self.assertGreater(len(owned), 0)
        # Nobody else is charged, and an owner once known is not forgotten.
        self.assertEqual(len(owned) + len(unknown) + len(found_later), len(seen["owners"]))


if __name__ == "__main__":
    labs.main()
