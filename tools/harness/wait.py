"""Waits for conditions."""

import time


def wait_until(condition, limit_seconds, what):
    """Returns the condition's first true value; raises after the limit, naming what was waited for."""
    deadline = time.monotonic() + limit_seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {limit_seconds} s for {what}")
        time.sleep(0.02)
