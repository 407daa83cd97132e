#!/usr/bin/python3
"""What Tavelle costs beside the least that does the job and beside what somebody would write in the shell instead."""

import argparse
import json
import os
import platform
import sys
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT / "benchmarks"), str(ROOT / "tests" / "desktop")]

from overhead.measure import Bench, Plan, edit_of_profiles  # noqa: E402
from overhead.report import TAVELLE, over_budget, table  # noqa: E402
from overhead.settings_window import WindowBench  # noqa: E402
from overhead.usage import adopt_orphans  # noqa: E402
from tavelle_desktop.session import Desktop, Options  # noqa: E402


@dataclass(frozen=True)
class Programs:
    folder: Path
    tavelle: Path
    model: Path = ROOT / "benchmarks" / "overhead" / "model.py"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true", help="few runs: three minutes, and numbers that are only a hint")
    parser.add_argument("--programs", type=Path, default=ROOT / "build" / "bench" / "bin", help="where the bench's programs are")
    parser.add_argument("--tavelle", type=Path, help="another Tavelle than the one beside them")
    parser.add_argument("--out", type=Path, default=ROOT / "out" / "bench")
    return parser.parse_args()


def main():
    options = arguments()
    programs = Programs(options.programs.resolve(), (options.tavelle or options.programs / "tavelle").resolve())
    options.out.mkdir(parents=True, exist_ok=True)
    started = time.monotonic()

    def tell(what):
        print(f"bench: [{time.monotonic() - started:4.0f} s] {what}", file=sys.stderr, flush=True)

    adopt_orphans()
    is_undisturbed = go_first()
    desktop_options = Options(keyring="unlocked", notifications=True, tray=True)
    with Desktop(desktop_options, options.out / "logs") as desktop:
        bench = Bench(desktop, programs, Plan(options.quick), tell)
        bench.take_all()
    window = WindowBench(programs, bench.plan, options.out / "logs", tell)
    window.take_all()
    bench.values.update(window.values)
    tell("10,000 profiles")
    bench.values["profiles", TAVELLE] = edit_of_profiles(programs)

    report = "\n".join(described(bench, options, is_undisturbed))
    (options.out / "table.md").write_text(report + "\n", encoding="utf-8")
    values = {f"{peer}: {measure}": numbers for (measure, peer), numbers in bench.values.items()}
    (options.out / "values.json").write_text(json.dumps(values, indent=1), encoding="utf-8")
    print(report)


def go_first():
    """Puts the bench and all that it starts before the other programs of this machine, where that is allowed."""
    try:
        os.sched_setscheduler(0, os.SCHED_RR, os.sched_param(1))
    except PermissionError:
        return False
    return True


def described(bench, options, is_undisturbed):
    runs = max(bench.runs.values())
    yield "# Overhead"
    yield ""
    yield (f"Median / p95 / greatest of {runs} runs after {bench.plan.warm_up} of warming up, the tools in shuffled turns on one "
           f"private desktop (Xvfb, openbox, dunst, a tray, a keyring, a GTK 3 editor); {bench.plan.starts} starts; idle for "
           f"{bench.plan.idle_seconds} s. {os.cpu_count()} processors, {platform.machine()}, Linux {platform.release()}. Other programs "
           f"used {bench.busy_elsewhere():.0%} of the processors during the runs; "
           f"{'all that is measured went before them (real-time class)' if is_undisturbed else 'they disturbed as they liked'}.")  # fmt: skip
    yield ""
    yield from (f"- {peer.name}: {peer.note}." for peer in bench.peers)
    yield ""
    yield from table(bench.values)
    yield ""
    over = over_budget(bench.values)
    yield f"Over budget: {len(over)}." if over else "Nothing is over its budget."
    yield from (f"- {what}" for what in over)
    for (label, name), count in bench.runs.items():
        failed = sum(failure.startswith(f"{name}, {label},") for failure in bench.failures)
        if failed:
            yield f"Failed: {failed} of {count} runs of {name} with {label}."
    yield from (f"- {failure}" for failure in bench.failures)
    if options.quick:
        yield "This was --quick: too few runs to go by."


if __name__ == "__main__":
    main()
