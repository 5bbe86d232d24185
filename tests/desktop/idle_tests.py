#!/usr/bin/python3
"""What the program does while it has nothing to do: in a network that is not metered, with its item in a panel and
nothing on the screen.
"""

import idle_wakes

import cases

SECONDS = 65.0


class Idle(cases.DesktopCase):
    needs_traffic = True  # that is, a network of the test's own

    @classmethod
    def stand(cls):
        cls.panel = cls.desktop.start_panel()

    def test_sleeps(self):
        self.save_settings(updateCheckConsent="denied")
        quellon = self.desktop.start_program()
        item = self.panel.wait_for_item()
        self.wait_until(lambda: "Idle" in item.get("Title"), lambda: f"an idle guard, not {item.get('Title')}")
        idle_wakes.settle(quellon.pid)
        wakes = idle_wakes.watch(quellon.pid, SECONDS)
        print("\n".join(f"{wake.at:5.1f} s: {wake.switches} switches" for wake in wakes))
        # It looks at the network every 30 seconds, and it would be no guard if it did not.
        self.assertIn(len(wakes), (2, 3))
        for earlier, later in zip(wakes, wakes[1:]):
            self.assertGreater(later.at - earlier.at, 25.0)


if __name__ == "__main__":
    cases.main()
