# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Waiting for conditions, never for time."""

import time


class Timeout(AssertionError):
    """What was waited for did not come."""


def wait_until(condition, what, seconds=20):
    """Asks again and again until the condition holds something true, and returns that."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise Timeout(f"waited {seconds} s in vain for {what}")
        time.sleep(0.02)
