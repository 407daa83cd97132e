"""What processes use: processor time, memory, wake-ups."""

import contextlib
import ctypes
import os
import time

from tavelle_desktop.processes import children
from tavelle_desktop.waiting import wait_until

SET_CHILD_SUBREAPER = 36


def adopt_orphans():
    """From here on what a tool's children leave behind is ours to wait for, with the time it used."""
    if ctypes.CDLL(None, use_errno=True).prctl(SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


class Orphans:
    """Processor time of those programs that ended and that nobody else waits for."""

    def __init__(self):
        self.seconds = 0.0

    def collect(self, known):
        """`known` are the processes that somebody does wait for. Returns those that still run."""
        running = set()
        for pid in children() - known:
            ended, _status, usage = os.wait4(pid, os.WNOHANG)
            if ended:
                self.seconds += usage.ru_utime + usage.ru_stime
            else:
                running.add(pid)
        return running


def processor_seconds(pid):
    """Of all threads that it has or had, to the nanosecond; its children are not counted."""
    clock_of_process = (~pid << 3) | 2
    return time.clock_gettime(clock_of_process)


def memory(pids):
    """Megabytes of the processes together; what was written is a part of what is private."""
    sums = {"private": 0, "written": 0, "proportional": 0}
    for pid in pids:
        with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as rollup:
            fields = dict(line.split(":", 1) for line in rollup if line.endswith("kB\n"))
        size = {name: int(value.split()[0]) * 1024 / 1e6 for name, value in fields.items()}
        sums["private"] += size["Private_Clean"] + size["Private_Dirty"]
        sums["written"] += size["Anonymous"]
        sums["proportional"] += size["Pss"]
    return sums


def wait_until_idle(pids, quiet=1.5):
    """Until none of the processes that `pids()` tells has used the processor for so many seconds."""
    def used():
        seconds = 0.0
        for pid in pids():
            with contextlib.suppress(OSError):  # it has just ended
                seconds += processor_seconds(pid)
        return seconds

    last = [used(), time.monotonic()]

    def is_quiet():
        now = used()
        if now - last[0] > 0.0005:
            last[:] = now, time.monotonic()
        return time.monotonic() - last[1] > quiet

    wait_until(is_quiet, "the programs are idle", within=120, every=0.1)


def wake_ups(pids):
    """How often the threads of the processes have gone to sleep of their own accord, and so have woken."""
    total = 0
    for pid in pids:
        for task in os.listdir(f"/proc/{pid}/task"):
            with open(f"/proc/{pid}/task/{task}/status", encoding="utf-8", errors="replace") as status:
                total += sum(int(line.split()[1]) for line in status if line.startswith("voluntary_ctxt_switches"))
    return total


class ForeignLoad:
    """What other programs use of the processors, from its making on. `own()` are those that are no others."""

    def __init__(self, own):
        self._own = own
        self._start = time.monotonic()
        self._before = self._used()

    def share(self):
        """Of all processors, 0 to 1."""
        after, own = self._used(), self._own() | {os.getpid()}
        used = sum(seconds - self._before.get(pid, 0.0) for pid, seconds in after.items() if pid not in own)
        return max(0.0, used) / (time.monotonic() - self._start) / os.cpu_count()

    def _used(self):
        used = {}
        for entry in os.listdir("/proc"):
            if entry.isdigit():
                try:
                    used[int(entry)] = processor_seconds(int(entry))
                except OSError:
                    continue  # it has ended
        return used
