"""The programs of one desktop: each started in a session of its own, remembered, and ended by its process id."""

import contextlib
import os
import signal
import subprocess

from .waiting import TimedOut, wait_until

MARK = "TAVELLE_DESKTOP"


class Processes:
    """What one desktop started.

    Every process carries the desktop's mark in its environment, so that those which the session bus or an
    application started on its own behalf are found as well when the desktop ends.
    """

    def __init__(self, environment, logs):
        self.environment = environment
        self.logs = logs
        self._started = []

    def start(self, name, *command, env=None, output=None, **options):
        """Starts a program; its output goes to `name`.log unless `output` takes it."""
        if output is None:
            with open(self.logs / f"{name}.log", "ab") as log:
                return self._start(command, env, stdout=log, stderr=subprocess.STDOUT, **options)
        return self._start(command, env, stdout=output, stderr=output, **options)

    def start_reading(self, text, name, *command):
        """Starts a program that finds this text in its standard input, and the end of it."""
        reads, writes = os.pipe()
        os.write(writes, text.encode())
        os.close(writes)
        try:
            return self.start(name, *command, stdin=reads)
        finally:
            os.close(reads)

    def _start(self, command, env, **options):
        options.setdefault("stdin", subprocess.DEVNULL)
        process = subprocess.Popen([str(part) for part in command], env={**self.environment, **(env or {})},
                                   cwd=self.environment["HOME"], start_new_session=True, **options)
        self._started.append(process)
        return process

    def run(self, *command, text=None, within=10.0, check=True):
        """Runs a short command on the desktop and returns what it printed."""
        result = subprocess.run([str(part) for part in command], env=self.environment, input=text, text=True,
                                capture_output=True, timeout=within, check=False)
        if check and result.returncode != 0:
            raise RuntimeError(f"{command[0]} ended with {result.returncode}: {result.stderr.strip()}")
        return result.stdout

    def end(self, process, within=5.0):
        """Ends one program and what it started: asks first, then insists."""
        for number in (signal.SIGTERM, signal.SIGKILL):
            if process.poll() is not None:
                break
            _signal_session(process.pid, number)
            try:
                process.wait(within)
            except subprocess.TimeoutExpired:
                continue
        _signal_session(process.pid, signal.SIGKILL)
        if process in self._started:
            self._started.remove(process)

    def end_all(self):
        for process in reversed(list(self._started)):
            if process.poll() is None:
                _signal(process.pid, signal.SIGTERM)
        try:
            wait_until(lambda: not self._alive(), "all programs of the desktop have ended", within=3.0)
        except TimedOut:
            for pid in self._alive():
                _signal(pid, signal.SIGKILL)
        for process in self._started:
            process.wait()
        self._started.clear()

    def _alive(self):
        running = {process.pid for process in self._started if process.poll() is None}
        return running | self.marked()

    def marked(self):
        """The processes of this desktop, whoever started them."""
        mark = f"{MARK}={self.environment[MARK]}".encode()
        found = set()
        for entry in os.listdir("/proc"):
            if not entry.isdigit() or int(entry) == os.getpid():
                continue
            try:
                with open(f"/proc/{entry}/environ", "rb") as environ:
                    if mark in environ.read().split(b"\0"):
                        found.add(int(entry))
            except OSError:
                continue  # it has ended, or it is another person's
        return found

    def find(self, program):
        """A process of this desktop that runs the program, or none."""
        for pid in self.marked():
            try:
                with open(f"/proc/{pid}/comm", encoding="ascii") as name:
                    if name.read().rstrip("\n") == program[:15]:  # the kernel keeps fifteen letters
                        return pid
            except OSError:
                continue  # it has ended
        return None


def children(parent=None):
    """The processes that a process has started, this one unless it is said, and that have not been waited for."""
    found = set()
    for task in os.listdir(f"/proc/{parent or os.getpid()}/task"):
        with contextlib.suppress(OSError):  # the thread has just ended
            with open(f"/proc/{parent or os.getpid()}/task/{task}/children", encoding="ascii") as listed:
                found |= {int(pid) for pid in listed.read().split()}
    return found


def wait_for_end(process, what, within=10.0):
    """The exit status of a program that is expected to end by itself."""
    wait_until(lambda: process.poll() is not None, what, within)
    return process.returncode


def _signal(pid, number):
    try:
        os.kill(pid, number)
    except ProcessLookupError:
        pass


def _signal_session(pid, number):
    try:
        os.killpg(pid, number)
    except (ProcessLookupError, PermissionError):
        pass
