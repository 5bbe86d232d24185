#!/usr/bin/python3
"""Toasts on a real display: seen wherever the user goes, and in nobody's way."""

import cases


class Toasts(cases.DesktopCase):
    """Nothing but a display and a bus: what the program has to say comes by itself."""

    def test_follow_to_every_desktop(self):
        self.screen.xdotool("set_num_desktops", 2)
        self.save_settings(updateCheckConsent="denied")
        self.quellon = self.desktop.start_program()
        toast, = self.wait_until(lambda: self.screen.windows(self.quellon.pid), "a toast", 40)
        self.screen.xdotool("set_desktop", 1)
        self.wait_until(lambda: self.screen.xdotool("get_desktop") == "1", "the other desktop")
        self.assertIn(toast, self.screen.windows(self.quellon.pid))
        self.assertNotEqual(self.screen.active_window(), toast)
        area = self.screen.area(toast)
        self.screen.click((area.x + area.width - 18, area.y + 18))
        self.wait_until(lambda: not self.screen.windows(self.quellon.pid), "a toast that was closed", 3)


if __name__ == "__main__":
    cases.main()
