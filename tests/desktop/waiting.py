"""Waiting for what has to happen, by looking at it; never for a time."""

import contextlib
import time

SECONDS = 20.0


def wait_until(condition, what, seconds: float = SECONDS):
    """What `condition` gives as soon as that is true; fails when it takes too long. `what` tells what was waited for: a
    text, or what gives it then.
    """
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds:g} seconds: {what() if callable(what) else what}")
        time.sleep(0.02)


def holds_for(condition, seconds: float) -> bool:
    """Whether `condition` is true now and whenever one looks, for so many seconds."""
    with contextlib.suppress(AssertionError):
        wait_until(lambda: not condition(), "", seconds)
        return False
    return True
