#!/usr/bin/python3
"""A real notification daemon tells the user what the guard sees in real traffic, and the user's answers act on it."""

import signal

import cases

RULE = {"id": "0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F01", "windowSeconds": 60, "thresholdBytes": 1_000_000, "level": "ask",
        "enabled": True}
TITLE = "photo-backup is using a lot of data"
PAUSED = "photo-backup was paused"


class NotificationCase(cases.DesktopCase):
    """The guard on a hotspot, with one rule that asks."""

    needs_traffic = True
    level = "ask"

    def setUp(self):
        self.daemon = self.desktop.start_notifications()
        self.save_settings(rules=[RULE | {"level": self.level}], sampleInterval=1, updateCheckConsent="denied")
        self.quellon = self.desktop.start_program()
        self.baseline()

    def download(self):
        """A runaway download that goes on for about half a minute."""
        import acting  # knows the state folder from the environment, which is the desktop's by now
        return self.enterContext(acting.downloading("photo-backup", 30_000_000, 1_000_000))

    def assert_goes_on(self, download):
        """More bytes come in."""
        self.wait_until(lambda: not download.is_frozen(), "a download that is not frozen")
        before = download.received()
        self.wait_until(lambda: download.received() > before, "a download that goes on")

    def notification(self, title: str):
        """The window of the notification with this title, once it shows."""
        def found():
            for window in self.daemon.tree.children:
                if window.find("label", title):
                    return window
            return None
        return self.wait_until(found, f"a notification \"{title}\"", 30)

    def answer(self, title: str, button: str):
        """Clicks a button of a notification with the mouse."""
        self.click(self.notification(title).wait_for("push button", button))


class Notification(NotificationCase):
    def test_pause(self):
        """Frozen by the notification, thawed by the panel."""
        download = self.download()
        window = self.notification(TITLE)
        buttons = [each.name for each in window.all("push button") if each.name]
        self.assertEqual(buttons, ["Snooze 15 min", "Pause", "Never limit", "Show details"])
        self.assertFalse(download.is_frozen())
        self.answer(TITLE, "Pause")
        self.wait_until(download.is_frozen, "a frozen download")
        self.start_again()
        resume = self.quellon.tree.wait_for("push button", "Resume")
        self.click(resume)
        self.assert_goes_on(download)

    def test_show_details(self):
        self.download()
        self.answer(TITLE, "Show details")
        self.quellon.tree.wait_for("combo box", "Policy for photo-backup")
        self.wait_until(lambda: self.screen.active_title() == "Quellon Settings", "settings with the keyboard")

    def test_daemon_killed(self):
        """The next daemon is told what comes then, and its answers count."""
        self.kill_daemon()
        self.daemon = self.desktop.start_notifications()
        download = self.download()
        self.answer(TITLE, "Pause")
        self.wait_until(download.is_frozen, "a frozen download")

    def test_daemon_gone(self):
        """Without a daemon the toasts tell and ask, and leave the keyboard where it is."""
        self.kill_daemon()
        download = self.download()
        before = self.screen.active_window()
        self.click(self.quellon.tree.wait_for("alert", TITLE).wait_for("push button", "Pause"))
        self.wait_until(download.is_frozen, "a frozen download")
        self.assertEqual(self.screen.active_window(), before)

    def kill_daemon(self):
        self.daemon.end(signal.SIGKILL)
        self.desktop.bus.wait_for_no_owner("org.freedesktop.Notifications")


class Frozen(NotificationCase):
    """The guard steps in by itself."""

    level = "enforce"

    def test_resume(self):
        download = self.download()
        self.answer(PAUSED, "Resume + snooze")
        self.assert_goes_on(download)


if __name__ == "__main__":
    cases.main()
