#!/usr/bin/env python3
"""Turns the results of the benchmark programs into the table of docs/performance.md.

report.py RESULTS FILE         writes the table between the markers of FILE
report.py --only NAME RESULTS  prints the rows of one benchmark program
report.py --check RESULTS      fails if a benchmark of ours did not run

RESULTS is the folder that bench/compare fills with one JSON file for each program. Every figure is a median.
"""
import datetime
import json
import pathlib
import platform
import statistics
import subprocess
import sys

BEGIN = "<!-- table: begin; bench/compare writes what stands here -->"
END = "<!-- table: end -->"
# Those that need what a machine may lack: a peer that is not installed.
PEERS = {"HardinfoToWindow", "HardinfoToFilledWindow", "LshwShort", "HwinfoShort", "Lspci"}
TO_MILLISECONDS = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


class Figure:
    """A median of one program (or what `pick` makes of its runs): a benchmark's time in milliseconds, or a counter."""

    def __init__(self, program, benchmark, field="real_time", unit="ms", of=1, pick=statistics.median):
        self.program, self.benchmark, self.field, self.unit = program, benchmark, field, unit
        self.of, self.pick = of, pick

    def value(self, results):
        values = []
        for run in results.get(self.program, []):
            # The name without what the options of the benchmark append to it.
            parts = [part for part in run["name"].split("/")
                     if not part.startswith(("iterations:", "manual_time", "process_time", "real_time", "repeats:"))]
            if run.get("run_type") != "iteration" or run.get("error_occurred") or "/".join(parts) != self.benchmark:
                continue
            scale = TO_MILLISECONDS[run["time_unit"]] if self.field in ("real_time", "cpu_time") else 1
            values.append(run[self.field] * scale / self.of)
        return self.pick(values) if values else None


def time(program, benchmark):
    return Figure(program, benchmark)


def cpu(program, benchmark):
    return Figure(program, benchmark, "cpu_time", "ms of CPU")


def of_each(program, benchmark, count):
    return Figure(program, benchmark, of=count)


def counter(program, benchmark, field, unit, pick=statistics.median):
    return Figure(program, benchmark, field, unit, pick=pick)


class Row:
    """One promise. `rule` tells which number the bound is for: "figure", "difference", "ratio", or "rate", the peer's
    time divided by ours. `least` turns the bound round."""

    def __init__(self, promise, figure, rule, bound, peer=None, peer_name="", least=False):
        self.promise, self.figure, self.rule, self.bound = promise, figure, rule, bound
        self.peer, self.peer_name, self.least = peer, peer_name, least

    def cells(self, results):
        ours = self.figure.value(results)
        peers = self.peer.value(results) if self.peer else None
        if ours is None or (self.peer and not peers):
            return [self.promise, "not measured", "", "", self.bound_text(), self.command(), "-"]
        ratio = (peers / ours if self.rule == "rate" else ours / peers) if self.peer else None
        judged = {"figure": ours, "difference": ours - peers if self.peer else None}.get(self.rule, ratio)
        holds = judged >= self.bound if self.least else judged <= self.bound
        ratio_text = "" if ratio is None else f"{ratio:.2f}"
        if self.rule == "difference":
            ratio_text += f" ({judged:+.1f} {self.figure.unit})"
        peer_text = "" if peers is None else f"{number(peers)} {self.peer.unit} ({self.peer_name})"
        return [self.promise, f"{number(ours)} {self.figure.unit}".strip(), peer_text, ratio_text, self.bound_text(),
                self.command(), "holds" if holds else "**does not hold**"]

    def bound_text(self):
        word = "at least" if self.least else "at most"
        unit = self.figure.unit if self.rule in ("figure", "difference") else {"ratio": "times", "rate": "of the rate"}[self.rule]
        return f"{word} {self.bound:g} {unit}{' more' if self.rule == 'difference' else ''}".strip()

    def command(self):
        return f"`bench/compare --only {self.figure.program}`"


def number(value):
    if abs(value) >= 100:
        return f"{value:.0f}"
    return f"{value:.3g}"


EMPTY = "empty Qt window"
ROWS = [
    Row("`quorvane-list`, whole process, beside `lshw -short`", time("tools", "QuorvaneList"), "ratio", 0.35,
        time("tools", "LshwShort"), "lshw"),
    Row("`quorvane-list`, whole process, beside `hwinfo --short`", time("tools", "QuorvaneList"), "ratio", 0.35,
        time("tools", "HwinfoShort"), "hwinfo"),
    Row("`quorvane-db build` from the ID files", time("tools", "BuildDatabase"), "figure", 2000),
    Row('program start to "Status: Done"', time("start", "ProgramToDone"), "difference", 250,
        time("start", "EmptyWindowToFirstPaint"), EMPTY + " to first paint"),
    Row('program start to "Status: Done", beside hardinfo', time("start", "ProgramToDone"), "ratio", 2,
        time("start", "HardinfoToWindow"), "hardinfo to its window, empty"),
    Row("the same, beside hardinfo to its filled window", time("start", "ProgramToDone"), "ratio", 2,
        time("start", "HardinfoToFilledWindow"), "hardinfo to its filled window"),
    Row("program start to its window, beside hardinfo", time("start", "ProgramToWindow"), "ratio", 2,
        time("start", "HardinfoToWindow"), "hardinfo to its window, empty"),
    Row("the same start with 1,000,000 hardware IDs", time("start", "ProgramToDoneWithLargeDatabase"), "difference", 40,
        time("start", "ProgramToDone"), "default database"),
    # The store's page cache is 2 MiB at most, and a large database fills it.
    Row("resident memory with 1,000,000 hardware IDs", counter("start", "ProgramToDoneWithLargeDatabase", "resident_MiB", "MiB"),
        "difference", 2, counter("start", "ProgramToDone", "resident_MiB", "MiB"), "default database"),
    Row("resident memory after the first scan", counter("start", "ProgramToDone", "resident_MiB", "MiB"), "difference", 25,
        counter("start", "EmptyWindowToFirstPaint", "resident_MiB", "MiB"), EMPTY),
    Row("idle: wake-ups (the 250 ms timer of the tab captions: 4)", counter("start", "ProgramIdle", "wake_ups_per_s", "a second"),
        "figure", 5),
    Row("idle: load", counter("start", "ProgramIdle", "percent_of_a_core", "% of a core"), "figure", 0.5),
    Row("scan of 10,000 devices, all four lists, a device", of_each("scan", "WholeScan/10000", 10_000), "figure", 0.4),
    Row("scan of 10,000 devices beside 1,000, a device", of_each("scan", "WholeScan/10000", 10_000), "ratio", 1.2,
        of_each("scan", "WholeScan/1000", 1000), "1,000 devices"),
    Row("memory in use that 100 scans leave behind", counter("scan", "HundredScans", "more_KiB", "KiB"), "figure", 16),
    Row("a list of 10,000 rows: column click and repaint", time("lists", "ColumnClick"), "figure", 100),
    Row("a list of 10,000 rows: scroll step and repaint", time("lists", "ScrollStep"), "figure", 16),
    Row("a click while scanning 10,000 devices, 99 of 100", counter("clicks", "ClickWhileScanning", "p99_ms", "ms"), "figure", 50),
    Row("a click while searching, 99 of 100", counter("clicks", "ClickWhileSearching", "p99_ms", "ms"), "figure", 50),
    Row("a click while downloading, 99 of 100", counter("clicks", "ClickWhileDownloading", "p99_ms", "ms"), "figure", 50),
    Row("a click while unpacking, 99 of 100", counter("clicks", "ClickWhileUnpacking", "p99_ms", "ms"), "figure", 50),
    Row("refresh of a title bar 1,920 pixels wide", time("controls", "TitelBarRefresh"), "figure", 2),
    Row("paint of a button of 200 by 32", time("button", "PaintButton/3"), "figure", 0.2),
    Row("gradient over 1,920 by 1,080 at 315 degrees", time("controls", "Gradient/315"), "ratio", 4,
        time("controls", "GradientOfTheToolkit/315"), "QLinearGradient"),
    *(Row(f"`{name}`, {kind}", cpu("controls", f"{ours}/{arg}"), "rate", 3, cpu("controls", f"{ours}Plain/{arg}"),
          "plain routine", least=True)
      for name, ours in (("ModifyHLS", "ModifyHls"), ("Lighten", "Lighten"))
      for kind, arg in (("noise", 0), ("smooth picture", 1))),
    Row("`CodeAlphaBlend`", cpu("controls", "CodeAlphaBlend"), "rate", 0.5,
        cpu("controls", "ConstantAlphaOfTheToolkit"), "QPainter with opacity", least=True),
    *(Row(f"`Resample` to {percent} %", cpu("controls", f"Resample/{percent}"), "ratio", 1,
          cpu("controls", f"SmoothScalingOfTheToolkit/{percent}"), "QImage::scaled")
      for percent in (200, 130, 50, 10)),
    Row("scheme change with six windows open, 28 values saved", time("scheme", "SchemeChange"), "figure", 100),
    Row("repaints that five setters of a button cause", counter("button", "Setters", "paints_a_round", ""), "figure", 1),
    Row("search: 8 IDs of 3 entries in 1,000,000 IDs", cpu("database", "SearchOneDevice"), "ratio", 3,
        cpu("database", "SearchOneDeviceRaw"), "raw prepared statements"),
    Row("10,000 questions whether a device is known", time("database", "AskFor10000Rows"), "figure", 1000),
    Row("addition of a device", counter("database", "AddDevice", "own_ms", "ms"), "rate", 0.5,
        counter("database", "AddDevice", "raw_ms", "ms"),
        "raw statements, same durability", least=True),
    Row("download of 256 MiB, labels live", time("download", "DownloadWithLiveLabels"), "rate", 0.5,
        counter("download", "DownloadWithLiveLabels", "curl_ms", "ms"), "curl", least=True),
    Row("more memory during the download", counter("download", "DownloadWithLiveLabels", "more_MiB", "MiB", pick=max), "figure", 16),
    Row("unpacking of a database of 200 MiB", time("download", "UnpackDatabase"), "ratio", 1.3,
        counter("download", "UnpackDatabase", "engine_ms", "ms"), "7za alone"),
]


def read_results(folder):
    results, context = {}, None
    for file in sorted(pathlib.Path(folder).glob("*.json")):
        try:
            content = json.loads(file.read_text())
        except json.JSONDecodeError as error:
            sys.exit(f"{file.name} is not whole: {error}")
        results[file.stem] = content["benchmarks"]
        context = context or content["context"]
    return results, context


def table(rows, results):
    heads = ["promise", "figure", "peer's figure", "ratio", "bound", "command", "verdict"]
    lines = ["| " + " | ".join(heads) + " |", "|" + "---|" * len(heads)]
    lines += ["| " + " | ".join(row.cells(results)) + " |" for row in rows]
    return "\n".join(lines)


def versions():
    names = ["lshw", "hwinfo", "hardinfo", "curl", "p7zip-full", "7zip", "libqt6core6", "libsqlite3-0"]
    found = []
    for name in names:
        got = subprocess.run(["dpkg-query", "-W", "-f=${Version}", name], capture_output=True, text=True, check=False)
        if got.returncode == 0 and got.stdout:
            found.append(f"{name} {got.stdout}")
    return ", ".join(found)


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def machine(context):
    day = datetime.date.fromisoformat(context["date"][:10])
    return (f"Measured on {day}, {context['num_cpus']} cores of {processor()} at {context['mhz_per_cpu']} MHz, load "
            f"{', '.join(f'{load:.1f}' for load in context['load_avg'])} at the start, Linux {platform.release().split('-')[0]}; "
            f"{versions()}.")


def check(results):
    broken = [f"bench_{program} {run['name']}: {run['error_message']}" for program, runs in results.items()
              for run in runs if run.get("error_occurred") and run["name"].split("/")[0] not in PEERS]
    missing = sorted({row.figure.program for row in ROWS} - set(results))
    for text in broken + [f"bench_{name}: no results" for name in missing]:
        print(text, file=sys.stderr)
    return 1 if broken or missing else 0


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--check":
        return check(read_results(arguments[1])[0])
    if len(arguments) == 3 and arguments[0] == "--only":
        results, _ = read_results(arguments[2])
        print(table([row for row in ROWS if row.figure.program == arguments[1]], results))
        return 0
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    results, context = read_results(arguments[0])
    file = pathlib.Path(arguments[1])
    text = file.read_text()
    before, _, rest = text.partition(BEGIN)
    _, _, after = rest.partition(END)
    if not rest or END not in text:
        sys.exit(f"{file} has no place for the table")
    file.write_text(f"{before}{BEGIN}\n{machine(context)}\n\n{table(ROWS, results)}\n{END}{after}")
    print(table(ROWS, results))
    return check(results)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
