"""Runs a test until it ends, or until it is plain that it will not."""

import os
import signal
import subprocess
import time

POLL_SECONDS = 0.25
CLOCK_TICKS = os.sysconf("SC_CLK_TCK")


class Runner:
    """Runs one command at a time, in a session of its own, which can be ended from another thread."""

    def __init__(self):
        self.session = None
        self.stopped = False

    def run(self, command, seconds, idle_seconds=None, **options):
        """(status, output) of the command, or (None, output) if it took too long or stood still.

        A process stands still when none of its session has run or could have for `idle_seconds`: a deadlock shows long
        before any time limit that a busy machine needs."""
        with subprocess.Popen(command, start_new_session=True, stdin=subprocess.DEVNULL, **options) as process:
            self.session = process.pid
            try:
                return self.wait(process, seconds, idle_seconds)
            finally:
                self.kill()
                self.session = None

    def wait(self, process, seconds, idle_seconds):
        end = time.monotonic() + seconds
        used, since = -1, time.monotonic()
        while True:
            if self.stopped:
                return None, ""
            try:
                output, _ = process.communicate(timeout=POLL_SECONDS)
                return process.returncode, output or ""
            except subprocess.TimeoutExpired:
                now = time.monotonic()
            if now > end:
                return None, ""
            if idle_seconds is not None:
                ticks, could_run = session_activity(process.pid)
                if could_run or ticks != used:
                    used, since = ticks, now
                elif now - since > idle_seconds:
                    return None, ""

    def kill(self):
        """Ends all of the session, death tests and what they started as well."""
        try:
            os.killpg(self.session, signal.SIGKILL)
        except (ProcessLookupError, TypeError):
            pass

    def stop(self):
        self.stopped = True
        self.kill()


def session_activity(session):
    """The processor time, in ticks, that the session's processes have used, and whether a thread of theirs could run."""
    total, could_run = 0, False
    for name in os.listdir("/proc"):
        if not name.isdigit():
            continue
        try:
            fields = stat_fields(f"/proc/{name}/stat")
            if int(fields[3]) != session:
                continue
            total += int(fields[11]) + int(fields[12])
            could_run = could_run or any(stat_fields(f"/proc/{name}/task/{thread}/stat")[0] in "RD"
                                         for thread in os.listdir(f"/proc/{name}/task"))
        except OSError:
            could_run = True  # it ended just now
    return total, could_run


def stat_fields(file):
    """What follows the command's name: the state is the first, the session the fourth, the times the twelfth and thirteenth."""
    with open(file, encoding="utf-8", errors="replace") as stat:
        return stat.read().rpartition(") ")[2].split()
