"""Waiting for something to have happened: always for an event, always with a bound."""

import time


class TimedOut(AssertionError):
    """What was waited for did not happen in time."""


def wait_until(condition, what, within=10.0, every=0.01):
    """Returns the first true value of condition(); `what` says in the failure's line what was missing.

    `what` may be a function, for a line that tells how things stood at the end.
    """
    end = time.monotonic() + within
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() >= end:
            raise TimedOut(f"not within {within:g} s: {what() if callable(what) else what}")
        time.sleep(every)


def stays(condition, what, during):
    """Watches that condition() holds the whole time; for what must not happen."""
    end = time.monotonic() + during
    while time.monotonic() < end:
        if not condition():
            raise AssertionError(what() if callable(what) else what)
        time.sleep(0.01)
