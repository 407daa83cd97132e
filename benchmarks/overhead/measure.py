"""Takes every measure of one bench on one private desktop."""

import json
import random
import subprocess
import time
from collections import defaultdict

from tavelle_desktop.processes import children
from tavelle_desktop.waiting import wait_until

from .events import Events, Teller
from .peers import Floor, Pipeline, Tavelle
from .run import Stage, text_of
from .usage import ForeignLoad, Orphans, memory, processor_seconds, wait_until_idle, wake_ups

SIZES = {"100 B": 100, "10 KB": 10_000, "1 MB": 1_000_000}
LARGE = {"types": 20, "bytes": 5_000_000}
MILLISECOND = 1e6
LAST_DEADLINE = 16.0  # seconds; threads of a pool end, and deadlines pass, so long after the last run


class Plan:
    """How much is measured."""

    def __init__(self, quick):
        self.starts = 5 if quick else 20
        self.warm_up = 1 if quick else 2
        self.runs = 6 if quick else 25
        self.large_runs = 1 if quick else 3
        self.openings = 3 if quick else 12
        self.letters = 5 if quick else 40
        self.idle_seconds = 5 if quick else 20
        self.is_quick = quick


class Bench:
    def __init__(self, desktop, programs, plan, tell):
        self.desktop = desktop
        self.plan = plan
        self.tell = tell
        self.values = defaultdict(list)  # (measure, peer's name): what was measured
        self.failures = []
        self.runs = defaultdict(int)
        self.foreign = []
        self._choice = random.Random(1)
        self._events = Events()
        self._orphans = Orphans()

        processes = desktop.processes
        model = Teller(processes, self._events, "model", "/usr/bin/python3", "-B", programs.model)
        observer = Teller(processes, self._events, "observer", programs.folder / "bench-observer")
        editor = Teller(processes, self._events, "editor", programs.folder / "bench-editor")
        self.stage = Stage(self._events, observer, editor, model, desktop.folder)
        url = f"http://127.0.0.1:{model.ready['port']}/v1/chat/completions"
        self.peers = [Floor(desktop, url, programs.folder / "bench-floor"), Tavelle(desktop, url, programs.tavelle)]
        if Pipeline.missing():
            tell(f"no pipeline: {', '.join(Pipeline.missing())} not installed")
        else:
            self.peers.append(Pipeline(desktop, url))
        self._known = set()

    def take_all(self):
        self.tell(f"{self.plan.starts} starts of each")
        self._measure_starts()
        self._known = children()
        self.tell(f"idle for {self.plan.idle_seconds} s, before any run")
        self._measure_idle("before")
        for label, size in SIZES.items():
            self.tell(f"{self.plan.runs} runs of each, {label}")
            self._measure_runs(label, text_of(size))
        self.tell(f"idle for {self.plan.idle_seconds} s, after the runs")
        self._measure_idle("after")
        self.tell("100 MB on the clipboard")
        self._measure_large()
        self._measure_memory("after 100 MB")

    def busy_elsewhere(self):
        """The share of the processors that other programs of the machine used during the runs."""
        return sum(self.foreign) / len(self.foreign)

    def _measure_starts(self):
        for peer in self.peers:
            peer.start()  # once not counted: the files it needs are in memory from here on
            self._wait_until_live(peer)
        for _ in range(self.plan.starts):
            for peer in self._shuffled():
                peer.stop()
                started = peer.start()
                self.values["start", peer.name].append((self._wait_until_live(peer) - started) / MILLISECOND)

    def _wait_until_live(self, peer):
        event = self.stage.observer.ask("live", "live", peer.keycode, 10_000, within=15)
        if not event["live"]:
            raise RuntimeError(f"the hotkey of {peer.name} never came to life; see {self.desktop.logs}")
        return event["t"]

    def _measure_idle(self, when):
        self.desktop.processes.run("dunstctl", "close-all")  # or each one's end is told to the tool that sent it
        self._settle(LAST_DEADLINE)
        residents = {peer: peer.resident(self._left_behind()) for peer in self.peers}
        before = {peer: (wake_ups(pids), sum(map(processor_seconds, pids))) for peer, pids in residents.items()}
        start = time.monotonic()
        time.sleep(self.plan.idle_seconds)
        seconds = time.monotonic() - start
        for peer, pids in residents.items():
            wakes, used = before[peer]
            self.values[f"wake-ups {when}", peer.name] = [(wake_ups(pids) - wakes) / seconds]
            self.values[f"idle processor {when}", peer.name] = [(sum(map(processor_seconds, pids)) - used) / seconds * 1000]
        self._measure_memory(when)

    def _measure_memory(self, when):
        self._settle(LAST_DEADLINE)
        for peer in self.peers:
            for kind, megabytes in memory(peer.resident(self._left_behind())).items():
                self.values[f"{kind} {when}", peer.name] = [megabytes]

    def _settle(self, quiet=1.5):
        """What the last run or start left to do is done."""
        wait_until_idle(lambda: [pid for peer in self.peers for pid in peer.resident(self._left_behind())], quiet)

    def _measure_runs(self, label, text):
        for number in range(-self.plan.warm_up, self.plan.runs):
            for peer in self._shuffled():
                outcome = self._run(peer, text, everyday_contents(number), number)
                if number < 0:
                    continue
                self.runs[label, peer.name] += 1
                if outcome.failure:
                    self.failures.append(f"{peer.name}, {label}, run {number + 1}: {outcome.failure}")
                    continue
                for name, value in outcome.values.items():
                    self.values[f"{name} {label}", peer.name].append(value)
                self.values["types lost", peer.name].append(outcome.lost_types)

    def _measure_large(self):
        contents = [(f"application/x-bench-{number}", self._choice.randbytes(LARGE["bytes"])) for number in range(LARGE["types"])]
        for number in range(self.plan.large_runs):
            for peer in self._shuffled():
                if not peer.keeps_all_formats:
                    continue
                outcome = self._run(peer, text_of(100), contents, number, within=30)
                self.values["large lost", peer.name].append(outcome.lost_bytes)
                if outcome.failure:
                    self.failures.append(f"{peer.name}, 100 MB, run {number + 1}: {outcome.failure}")
                    continue
                self.values["large", peer.name].append((outcome.values["copy sent"] + outcome.values["restore"]) / 1000)
                self.values["large read back", peer.name].append(outcome.values["read back"] / 1000)

    def _run(self, peer, text, contents, number, within=5.0):
        """One run of one tool, its processor time included; what else the machine did meanwhile is noted."""
        self._wait_until_over(peer)
        used = self._processor_seconds(peer)
        load = ForeignLoad(self.desktop.processes.marked)
        outcome = self.stage.run(peer, text, contents, number, within)
        self.foreign.append(load.share())
        self._wait_until_over(peer)
        outcome.values["processor"] = (self._processor_seconds(peer) - used) * 1000
        self.stage.check(text, outcome)
        self._events.forget()
        return outcome

    def _wait_until_over(self, peer):
        wait_until(lambda: not peer.is_busy(self._left_behind()), f"the run of {peer.name} is over", within=15)

    def _processor_seconds(self, peer):
        self._left_behind()
        return peer.processor_seconds(self._orphans.seconds)

    def _left_behind(self):
        return self._orphans.collect(self._known) if self._known else set()

    def _shuffled(self):
        return self._choice.sample(self.peers, len(self.peers))


def everyday_contents(number):
    """What somebody had copied from a page: text, markup, an image."""
    text = f"copied before run {number}, caf\u00e9"
    return [("UTF8_STRING", text.encode()), ("text/plain;charset=utf-8", text.encode()), ("text/plain", text.encode()),
            ("text/html", f"<p>copied <b>before</b> run {number}</p>".encode()), ("image/png", random.Random(number).randbytes(12_000))]  # fmt: skip


def edit_of_profiles(programs):
    """Milliseconds, one for each of some edits of one of 10,000 profiles."""
    printed = subprocess.run([programs.folder / "bench-settings", "--benchmark_format=json", "--benchmark_repetitions=20",
                              "--benchmark_min_time=0.01"], capture_output=True, text=True, check=True, cwd=programs.folder.parent)  # fmt: skip
    return [entry["real_time"] for entry in json.loads(printed.stdout)["benchmarks"] if entry["run_type"] == "iteration"]

