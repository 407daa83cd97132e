"""The table: what was measured beside the floor and the budget, a row over its budget marked plainly."""

import math
import statistics
from dataclasses import dataclass

from .measure import SIZES

FLOOR, TAVELLE, PIPELINE = "floor", "Tavelle", "pipeline"


@dataclass(frozen=True)
class Row:
    """One measure. Its budget is a limit on Tavelle's median, or on its ratio to the floor's, or on its distance from it."""

    what: str
    measure: str
    unit: str = "ms"
    digits: int = 1
    limit: float | None = None
    limit_ratio: float | None = None
    limit_beyond: float | None = None
    compares: bool = True


def rows():
    yield Row("hotkey press to copy seen by the application", "copy seen 100 B", limit_ratio=1.3)
    for size in SIZES:
        yield Row(f"press to text replaced, without the 150 ms wait and the server's time, {size}", f"replaced {size}",
                  limit_ratio=1.5 if size == "1 MB" else 1.3)  # fmt: skip
    for size in SIZES:
        yield Row(f"whole run, without the two waits and the server's time, {size}", f"whole {size}",
                  limit_ratio=1.5 if size == "1 MB" else 1.3)  # fmt: skip
    yield Row("press to copy sent, at the X server", "copy sent 100 B", limit_beyond=1)
    yield Row("answer sent by the server to paste sent, at the X server", "answer to paste 100 B", limit_beyond=1)
    yield Row("copy sent to request complete at the server, without the 150 ms wait", "copy to request 100 B")
    for size in SIZES:
        yield Row(f"processor time of a run, {size}", f"processor {size}", limit=10)
    yield Row("start of the process to hotkey live", "start", limit=60)
    for when in ("before", "after", "after 100 MB"):
        at = {"before": "before any run", "after": "after the runs", "after 100 MB": "after 100 MB on the clipboard"}[when]
        yield Row(f"idle memory {at}, private", f"private {when}", "MB", limit=3, compares=False)
        yield Row(f"idle memory {at}, of the private what it wrote", f"written {when}", "MB", compares=False)
        yield Row(f"idle memory {at}, proportional", f"proportional {when}", "MB", limit=15, compares=False)
    for when in ("before", "after"):
        yield Row(f"wake-ups when idle, {when} the runs", f"wake-ups {when}", "/s", 2, limit=0, compares=False)
    yield Row("types of the clipboard lost in a run", "types lost", "", 0, limit=0, compares=False)
    yield Row("100 MB in 20 types: snapshot and restore", "large", "s", 2, limit=1)
    yield Row("100 MB in 20 types: bytes lost", "large lost", "", 0, limit=0, compares=False)
    yield Row("100 MB in 20 types: read back by another program", "large read back", "s", 2)
    yield Row("click on \"Settings...\" to window drawn, the first time", "window first", limit=250)
    yield Row("click on \"Settings...\" to window drawn, after that", "window again", limit=50)
    yield Row("click on \"Settings...\" to window drawn, the first time, 1,000 profiles", "window many", compares=False)
    for when, at in (("before the window", "before the settings window was opened"), ("window open", "while it is open"),
                     ("window closed", "after it was closed"), ("renderer ended", "after its renderer has ended")):  # fmt: skip
        limits = {} if when == "window open" or when == "window closed" else {"private": 3, "proportional": 15}
        for kind in ("private", "written", "proportional"):
            label = "of the private what it wrote" if kind == "written" else kind
            yield Row(f"memory {at}, {label}", f"{kind} {when}", "MB", limit=limits.get(kind), compares=False)
    for kind in ("private", "written", "proportional"):
        label = "of the private what it wrote" if kind == "written" else kind
        yield Row(f"memory of the window's renderer, {label}", f"{kind} renderer open", "MB")
    for measure, what in (("drawn", "the letter drawn"), ("everywhere", "the letter drawn in the list too"), ("stored", "stored")):
        yield Row(f"key press in a name among 1,000 profiles to {what}", f"letter {measure}")
    yield Row("processor time of that, Tavelle itself", "letter processor")
    yield Row("processor time of that, the window's renderer", "letter processor of the renderer")
    yield Row("10,000 profiles stored, one edited", "profiles", limit=20)


def percentile(values, share):
    ordered = sorted(values)
    return ordered[max(0, math.ceil(share * len(ordered)) - 1)]


def summary(values, row):
    """median / p95 / greatest, or the one value."""
    if not values:
        return "-"
    parts = values if len(values) == 1 else [statistics.median(values), percentile(values, 0.95), max(values)]
    return " / ".join(f"{part:.{row.digits}f}" for part in parts)


def ratio(values, floor, row):
    if not row.compares or not values or not floor or statistics.median(floor) <= 0:
        return ""
    return f"{statistics.median(values) / statistics.median(floor):.2f}x"


def budget(row):
    if row.limit is not None:
        return f"{row.limit:g} {row.unit}".strip() if row.limit else "none"
    if row.limit_ratio is not None:
        return f"{row.limit_ratio:g}x floor"
    return f"floor + {row.limit_beyond:g} {row.unit}" if row.limit_beyond is not None else ""


def verdict(row, tavelle, floor):
    if not tavelle or not budget(row):
        return ""
    if row.limit == 0:
        return "ok" if max(tavelle) == 0 else "**OVER**"
    median = statistics.median(tavelle)
    if row.limit is not None:
        return "ok" if median <= row.limit else "**OVER**"
    if not floor:
        return ""
    base = statistics.median(floor)
    limit = base * row.limit_ratio if row.limit_ratio is not None else base + row.limit_beyond
    return "ok" if median <= limit else "**OVER**"


def table(values):
    lines = ["| what | budget | floor | Tavelle | of floor | pipeline | of floor | |", "|---|---|---|---|---|---|---|---|"]
    for row in rows():
        floor, tavelle, pipeline = (values.get((row.measure, name), []) for name in (FLOOR, TAVELLE, PIPELINE))
        if not tavelle:
            continue
        unit = f" ({row.unit})" if row.unit else ""
        lines.append(f"| {row.what}{unit} | {budget(row)} | {summary(floor, row)} | {summary(tavelle, row)} | "
                     f"{ratio(tavelle, floor, row)} | {summary(pipeline, row)} | {ratio(pipeline, floor, row)} | "
                     f"{verdict(row, tavelle, floor)} |")  # fmt: skip
    return lines


def over_budget(values):
    return [row.what for row in rows()
            if "OVER" in verdict(row, values.get((row.measure, TAVELLE), []), values.get((row.measure, FLOOR), []))]  # fmt: skip
