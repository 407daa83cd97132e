#!/usr/bin/python3
"""The desktop tests: Tavelle on a private virtual desktop, in applications that people use.

One line a test as it ends, a count at the end; the exit status tells whether all passed.
  run.py [--program FILE] [--heavy] [--jobs N] [--logs FOLDER] [--list] [NAME...]
A NAME is a part of a test's name. --heavy adds the large applications and the long tests.
"""

import argparse
import os
import signal
import subprocess
import sys
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
LONGEST = 1800  # seconds for one test, far beyond any of them


def tests_of(suite):
    for item in suite:
        if isinstance(item, unittest.TestSuite):
            yield from tests_of(item)
        else:
            yield item


def is_heavy(test):
    return getattr(test, "heavy", False) or getattr(getattr(test, test._testMethodName, None), "heavy", False)


def chosen(names, heavy):
    loader = unittest.defaultTestLoader
    found = list(tests_of(loader.discover(str(HERE), pattern="test_*.py", top_level_dir=str(HERE))))
    broken = [test for test in found if type(test).__name__ == "_FailedTest"]
    if broken:
        sys.exit(f"desktop tests: cannot be loaded:\n{broken[0]._exception}")
    if names:
        return [test for test in found if any(name in test.id() for name in names)]
    return [test for test in found if heavy or not is_heavy(test)]


class Runner:
    """Runs each test in a process of its own."""

    def __init__(self, logs):
        self._logs = logs
        self._running = set()

    def run(self, test):
        """The test, what it printed (nothing where it passed), and its seconds."""
        environment = {**os.environ, "TAVELLE_LOGS": str(self._logs), "PYTHONPATH": str(HERE), "PYTHONDONTWRITEBYTECODE": "1"}
        started = time.monotonic()
        process = subprocess.Popen(["/usr/bin/python3", "-m", "unittest", test.id()], cwd=HERE, env=environment, text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)  # fmt: skip
        self._running.add(process)
        try:
            said, _ = process.communicate(timeout=LONGEST)
            trouble = "" if process.returncode == 0 else said
        except subprocess.TimeoutExpired:
            process.terminate()  # it still takes its desktop down
            said, _ = process.communicate()
            trouble = f"did not end in {LONGEST} s\n{said}"
        self._running.discard(process)
        return test, trouble, time.monotonic() - started

    def stop(self):
        for process in list(self._running):
            process.terminate()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("names", nargs="*", metavar="NAME", help="run only the tests whose name has this in it")
    parser.add_argument("--program", type=Path, help="the Tavelle to test; else the newest build")
    parser.add_argument("--heavy", action="store_true", help="the large applications and the long tests too")
    parser.add_argument("--jobs", type=int, default=2, help="how many desktops at once (2)")
    parser.add_argument("--logs", type=Path, default=ROOT / "out" / "desktop-tests")
    parser.add_argument("--list", action="store_true", help="only name the tests")
    options = parser.parse_args()

    tests = chosen(options.names, options.heavy)
    if options.list:
        print(*(test.id() for test in tests), sep="\n")
        return 0
    if options.program:
        os.environ["TAVELLE_PROGRAM"] = str(options.program.resolve())

    signal.signal(signal.SIGTERM, signal.default_int_handler)
    failed = []
    runner = Runner(options.logs)
    with ThreadPoolExecutor(options.jobs) as pool:
        try:
            for test, trouble, seconds in pool.map(runner.run, tests):
                print(f"{'FAILED' if trouble else 'passed'}  {test.id()}  ({seconds:.1f} s)", flush=True)
                if trouble:
                    failed.append(test)
                    print("    " + trouble.strip().replace("\n", "\n    "), flush=True)
        except KeyboardInterrupt:
            for number in (signal.SIGINT, signal.SIGTERM):
                signal.signal(number, signal.SIG_IGN)
            pool.shutdown(wait=False, cancel_futures=True)
            runner.stop()
            print("desktop tests: interrupted")
            return 130

    print(f"desktop tests: {len(tests) - len(failed)} passed, {len(failed)} failed; logs in {options.logs}")
    return 1 if failed or not tests else 0


if __name__ == "__main__":
    sys.exit(main())
