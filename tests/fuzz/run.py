#!/usr/bin/python3
"""The fuzzers: each target over its seeds, and then a number of runs that are the same every time.

One line a target as it ends, a count at the end; the exit status tells whether all passed. What breaks one is kept in
out/fuzzers/TARGET/.
  run.py [--longer] [--seconds N] [--jobs N] [--list] [TARGET...]

    cmake --preset fuzz && cmake --build --preset fuzz && tests/fuzz/run.py --seconds 600 JSON
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
PROGRAMS = ROOT / "build" / "fuzz" / "bin"
FINDINGS = ROOT / "out" / "fuzzers"

# As many runs as a target makes in about three seconds.
RUNS = {
    "Answer": 12_000,
    "Characters": 40_000,
    "CommandLine": 8_000,
    "JSON": 50_000,
    "LineBuffer": 80_000,
    "NotificationText": 100_000,
    "OrderLine": 30_000,
    "Profiles": 10_000,
    "Property": 150_000,
    "ReportLine": 35_000,
    "SettingsEvents": 300,
    "SettingsFile": 30_000,
    "SignInLink": 80_000,
    "Token": 30_000,
    "TransferFrames": 3_000,
    "URL": 80_000,
    "WindowClass": 100_000,
}
LONGER = 20  # times as many

OPTIONS = ["-seed=1", "-max_len=2048", "-timeout=20", "-rss_limit_mb=2048"]


def environment():
    """That of the sanitizers, with what names the functions in a report, where it is there."""
    symbolizer = next(filter(None, map(shutil.which, ("llvm-symbolizer-19", "llvm-symbolizer-14"))), None)
    return {**os.environ, **({"ASAN_SYMBOLIZER_PATH": symbolizer} if symbolizer else {})}


def run(target, limit):
    """The target, what it printed (nothing where it found nothing), and its seconds."""
    findings = FINDINGS / target
    shutil.rmtree(findings, ignore_errors=True)
    findings.mkdir(parents=True)
    started = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="tavelle-fuzz-") as scratch:  # where libFuzzer keeps what it comes upon
        ended = subprocess.run([PROGRAMS / f"fuzz-{target}", *OPTIONS, limit, f"-artifact_prefix={findings}/", scratch,
                                HERE / "corpus" / target], env=environment(), cwd=scratch, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT)  # fmt: skip
    said = ended.stdout.decode(errors="replace")
    (findings / "log").write_text(said)
    is_through = ended.returncode == 0 and "Done " in said
    return target, "" if is_through else said or f"ended with status {ended.returncode}", time.monotonic() - started


def last_words(said):
    """What the sanitizer or the target says, without the progress before it."""
    lines = [line for line in said.splitlines() if not line.startswith(("#", "\tNEW_FUNC", "INFO:"))]
    return "\n".join(lines[-60:])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("targets", nargs="*", metavar="TARGET", help="only these")
    parser.add_argument("--longer", action="store_true", help=f"{LONGER} times as many runs")
    parser.add_argument("--seconds", type=int, help="so long for each target, instead of a number of runs")
    parser.add_argument("--jobs", type=int, default=2, help="how many targets at once (2)")
    parser.add_argument("--list", action="store_true", help="only name the targets")
    options = parser.parse_args()

    if options.list:
        print(*RUNS, sep="\n")
        return 0
    unknown = set(options.targets) - set(RUNS)
    if unknown:
        sys.exit(f"fuzzers: no such target: {', '.join(sorted(unknown))}")

    def limit(target):
        if options.seconds:
            return f"-max_total_time={options.seconds}"
        return f"-runs={RUNS[target] * (LONGER if options.longer else 1)}"

    targets = options.targets or list(RUNS)
    failed = 0
    with ThreadPoolExecutor(options.jobs) as pool:
        for target, trouble, seconds in pool.map(lambda target: run(target, limit(target)), targets):
            print(f"{'FAILED' if trouble else 'passed'}  {target}  ({seconds:.1f} s)", flush=True)
            if trouble:
                failed += 1
                print("    " + last_words(trouble).strip().replace("\n", "\n    "), flush=True)
                print(f"    to see it again: {PROGRAMS}/fuzz-{target} {FINDINGS}/{target}/*-*", flush=True)

    print(f"fuzzers: {len(targets) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
