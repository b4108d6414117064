"""Waiting for something to become true."""

import time


def wait_until(condition, limit_seconds, what):
    """Gives the condition's first true value; fails, saying what was waited for, after the limit."""
    deadline = time.monotonic() + limit_seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {limit_seconds} s in vain for {what}")
        time.sleep(0.02)
