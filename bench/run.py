#!/usr/bin/env python3
"""Measures the work of the programs against floors and peers of the same run, and prints one table.

usage: script/bench [OPTION…] [SECTION…]
  SECTION        exchange, files, windows, list, start, waiting, transfers or counts (default: all); counts
                 are an ordinary test as well
  --quick        shorter transfers and fewer rounds
  --count N      parameters of a transfer (default: 200)
  --markdown     the table as Markdown
  --check        only compare the counts of instructions with bench/baseline.json: exit
                 status 1 when one has grown by more than 10 %
  --record       write each section's table into docs/performance.md, and the counts into bench/baseline.json

The exit status of a run is 1 when an aim was missed, and 77 when counts alone were asked for and there is
no valgrind to count them or nothing to compare them with.
"""
import argparse
import json
import os
import signal
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import line
import window

GROWTH = 1.10
LINEAR = 1.5
WORKS = {"start": "start of the window", "receive": "receiving 2000 parameters", "tree": "rebuilding the tree 10 times"}
PROJECT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BASELINE = os.path.join(PROJECT, "bench", "baseline.json")
# What a transfer may take: of the time that the line needs, and of the processor's for each exchange.
MOST_OF_FLOOR = 1.02
MOST_PROCESSOR_MS = 0.6
MOST_PROCESSOR_WITH_ECHO_MS = 1.0


class Awake:
    """Keeps every processor from resting. A virtual machine gives back a processor that rests, and it may take its
    host 0.3 ms to hand it out again. What keeps it busy gives way at once to everything else."""

    def __enter__(self):
        self.children = [self._spin(processor) for processor in os.sched_getaffinity(0)]

    def _spin(self, processor):
        child = os.fork()
        if child == 0:
            os.sched_setaffinity(0, {processor})
            os.sched_setscheduler(0, os.SCHED_IDLE, os.sched_param(0))
            parent = os.getppid()
            while os.getppid() == parent:
                pass
            os._exit(0)
        return child

    def __exit__(self, *_error):
        for child in self.children:
            os.kill(child, signal.SIGKILL)
            os.waitpid(child, 0)


class Table:
    """The rows so far."""

    HEADING = ("work", "floor or peer", "ours", "ratio", "aim", "met")

    def __init__(self):
        self.rows = []
        self.missed = False

    def add(self, work, floor, ours, ratio="", aim="", met=None):
        self.rows.append((work, floor, ours, ratio, aim, "" if met is None else "yes" if met else "NO"))
        self.missed = self.missed or met is False
        print(f"  {work}: {ours}", file=sys.stderr, flush=True)

    def text(self, markdown, first=0):
        """The rows from the one of that number on, as lines."""
        rows = [self.HEADING, *self.rows[first:]]
        widths = [max(len(row[i]) for row in rows) for i in range(len(self.HEADING))]
        edge = "| " if markdown else ""
        lines = []
        for number, row in enumerate(rows):
            cells = (" | " if markdown else "  ").join(cell.ljust(width) for cell, width in zip(row, widths))
            lines.append(edge + cells + (" |" if markdown else ""))
            if number == 0 and markdown:
                lines.append("|" + "|".join("-" * (width + 2) for width in widths) + "|")
        return "\n".join(lines)


def google_benchmark(program, *options):
    """The best time in milliseconds and the further results of each benchmark, and the fits."""
    command = [program, "--benchmark_format=json", *options]
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    best, fits = {}, {}
    for result in json.loads(output)["benchmarks"]:
        if result.get("error_occurred"):
            raise RuntimeError(f"{result['name']}: {result['error_message']}")
        name = re.sub(r"/(real_time|iterations:\d+)", "", result["run_name"])
        if result["run_type"] == "aggregate":
            if result["aggregate_name"] == "BigO":
                fits.setdefault(name, {})["coefficient"] = result["cpu_coefficient"]
            elif result["aggregate_name"] == "RMS":
                fits.setdefault(name, {})["rms"] = result["rms"]
            continue
        unit = {"ns": 1e-6, "us": 1e-3, "ms": 1}[result["time_unit"]]
        entry = dict(result, real=result["real_time"] * unit, cpu=result["cpu_time"] * unit)
        if name not in best or entry["real"] < best[name]["real"]:
            entry["cpu"] = min(entry["cpu"], best.get(name, entry)["cpu"])
            best[name] = entry
    return best, fits


class Uncounted(Exception):
    """Why the instructions are not counted."""


class Bench:
    def __init__(self, options):
        self.options = options
        self.programs = os.path.join(options.build, "src")
        self.benches = os.path.join(options.build, "bench")
        self.table = Table()

    def bench(self, name):
        return os.path.join(self.benches, "bench-" + name)

    # In the process

    def exchange(self):
        repetitions = 3 if self.options.quick else 9
        best, _ = google_benchmark(self.bench("exchange"), f"--benchmark_repetitions={repetitions}",
                                   "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.1")
        ours, peer, bare = best["ReadInt"], best["Libmodbus"], best["Bare"]
        ratio = ours["real"] / peer["real"]
        self.table.add("exchange without pause", f"libmodbus {peer['real'] * 1000:.1f} µs (bare calls "
                       f"{bare['real'] * 1000:.1f} µs)", f"{ours['real'] * 1000:.1f} µs", f"{ratio:.2f}", "≤ 1.5",
                       ratio <= 1.5)
        self.table.add("  heap requests of it", f"libmodbus {peer['heap']:.0f}", f"{ours['heap']:.0f}")
        keep = best["Keep"]
        self.table.add("  keeping it for the list of telegrams", "", f"{keep['real'] * 1000:.2f} µs", "", "≤ 5 µs",
                       keep["real"] * 1000 <= 5)
        self.table.add("    heap requests of it", "", f"{keep['heap']:.0f}", "", "0", keep["heap"] == 0)

    def growth(self, work, best, fits, name, sizes, unit, limits=()):
        """The fit over all sizes, and the figures that have a limit (size, ms)."""
        per_item = [best[f"{name}/{size}"]["cpu"] / size for size in sizes]
        ratio = per_item[-1] / per_item[0]
        fit = fits[name]
        self.table.add(f"{work}, {sizes[0]} to {sizes[-1]} {unit}",
                       f"fit {fit['coefficient'] / 1000:.3f} µs each, off by {fit['rms'] * 100:.0f} %",
                       f"{best[f'{name}/{sizes[-1]}']['cpu']:.1f} ms", f"{ratio:.2f}", f"growth ≤ {LINEAR}",
                       ratio <= LINEAR)
        for size, limit_ms in limits:
            ours = best[f"{name}/{size}"]["cpu"]
            self.table.add(f"  {size} {unit}", "", f"{ours:.2f} ms", "", f"≤ {limit_ms} ms", ours <= limit_ms)

    def files(self):
        best, fits = google_benchmark(self.bench("core"), "--benchmark_repetitions=3", "--benchmark_min_time=0.05")
        parameters = (250, 500, 1000, 2000)
        # Start-up reads the definitions twice, in the order of the refresh levels.
        self.growth("definition file", best, fits, "DefinitionFiles", parameters, "lines", [(2000, 5)])
        self.growth("address list", best, fits, "AddressLists", (1000, 10000, 100000, 1000000), "lines",
                    [(100000, 25)])
        self.growth("value file, writing", best, fits, "ValueFileWriting", parameters, "parameters")
        self.growth("value file, reading", best, fits, "ValueFileReading", parameters, "parameters")
        self.growth("two sets of values compared", best, fits, "ValueSetComparing", parameters, "parameters",
                    [(2000, 2)])
        self.growth("rows of the list made, with a comparison", best, fits, "ListRowMaking", parameters, "parameters")
        self.growth("rows of the list sorted by name", best, fits, "ListRowSorting", parameters, "parameters",
                    [(2000, 16)])
        self.growth("a transfer handed to the history", best, fits, "DeedRecording", parameters, "parameters",
                    [(2000, 5)])
        self.growth("search in the history", best, fits, "EntryFiltering", (1250, 2500, 5000, 10000), "entries",
                    [(10000, 5)])

    def windows(self):
        best, fits = google_benchmark(self.bench("windows"), "--benchmark_filter=-^List", "--benchmark_min_time=0.1")
        parameters = (250, 500, 1000, 2000)
        self.growth("tree rebuilt and painted", best, fits, "TreeCollapsed", parameters, "parameters", [(2000, 15)])
        self.growth("the same, expanded", best, fits, "TreeExpanded", parameters, "parameters", [(2000, 15)])
        self.growth("taking back a receive", best, fits, "Undo", parameters, "parameters", [(2000, 10)])
        self.growth("report, Add", best, fits, "ReportAdd", (1250, 2500, 5000, 10000), "lines")
        self.growth("report, AddC", best, fits, "ReportAddC", (12500, 25000, 50000, 100000), "dots")
        for work, name, limit_ms in (("PDF of 60 pages", "Pdf", 200), ("preview, turning a page", "PreviewTurn", 16)):
            ours = best[name]["cpu"]
            self.table.add(work, "", f"{ours:.1f} ms", "", f"≤ {limit_ms} ms", ours <= limit_ms)

    def list(self):
        """The parameter list with 2000 parameters: in the process, and as a whole one."""
        best, _ = google_benchmark(self.bench("windows"), "--benchmark_filter=^List", "--benchmark_min_time=0.05")

        def worst(name):
            return max(result["cpu"] for key, result in best.items() if key.split("/")[0] == name)

        for work, name, limit_ms in (("list, a key in the search field until painted", "ListTyping", 16),
                                     ("list, Esc in the search field until painted", "ListClearing", 16),
                                     ("list, a click on a heading until painted", "ListSorting", 16),
                                     ("list, what every event costs while it is open", "ListUpdate", 3),
                                     ("list open, taking back a receive", "ListUndo", 10)):
            ours = worst(name)
            self.table.add(work, "", f"{ours:.1f} ms", "", f"≤ {limit_ms} ms", ours <= limit_ms)
        opened = [self.opened_list() for _ in range(3 if self.options.quick else 7)]
        processor_ms, memory_MiB = (min(figures) for figures in zip(*opened))
        self.table.add("list, opened for the first time until painted", "", f"{processor_ms:.0f} ms", "", "≤ 60 ms",
                       processor_ms <= 60)
        self.table.add("  resident memory more than before", "", f"{memory_MiB:.1f} MiB", "", "≤ 15 MiB",
                       memory_MiB <= 15)

    def opened_list(self):
        """The processor time in ms, and the resident memory in MiB, that opening the list takes."""
        display, dead = window.Display(), line.DeadLine()
        try:
            with tempfile.TemporaryDirectory() as folder:
                line.write_definitions(folder, 2000)
                program = window.Program(display, self.programs, folder, dead.device)
                try:
                    program.lead_to(window.RECEIVE)
                    processor, memory = line.processor_s(program.pid), window.resident_MiB(program.pid)
                    display.run("xdotool", "key", "ctrl+l")
                    program.window("Parameterliste")
                    time.sleep(2)
                    return ((line.processor_s(program.pid) - processor) * 1000,
                            window.resident_MiB(program.pid) - memory)
                finally:
                    program.close()
        finally:
            dead.close()
            display.close()

    def history(self):
        """Histories of years, each entry with a complete set of values."""
        sizes = (1000, 10000) if self.options.quick else (1000, 10000, 100000)
        found = {}
        for entries in sizes:
            output = subprocess.run([self.bench("history"), str(entries)], check=True, capture_output=True, text=True)
            found[entries] = {name: float(value) for name, value in map(str.split, output.stdout.splitlines())}
        for work, name, limit, unit in (("history, an entry of 1999 values added", "add_ms", None, "ms"),
                                        ("  room for a changed value, with all that belongs to it",
                                         "bytes_per_change", 300, "bytes")):
            smallest, largest = (found[entries][name] for entries in (sizes[0], sizes[-1]))
            met = largest / smallest <= LINEAR and (limit is None or largest <= limit)
            aim = f"growth ≤ {LINEAR}" + (f", ≤ {limit} {unit}" if limit else "")
            self.table.add(f"{work}, {sizes[0]} to {sizes[-1]} entries", "", f"{largest:.1f} {unit}",
                           f"{largest / smallest:.2f}", aim, met)
        for work, name, limit_ms in (("history of 10,000 entries, opened and read", "entries_ms", 150),
                                     ("  a parameter looked for", "entries_with_ms", 50),
                                     ("  a curve", "curve_ms", 50),
                                     ("  the values of an entry", "values_ms", 50)):
            ours = found[10000][name]
            if name == "entries_ms":
                ours += found[10000]["open_reading_ms"] + found[10000]["plants_ms"]
            self.table.add(work, "", f"{ours:.1f} ms", "", f"≤ {limit_ms} ms", ours <= limit_ms)
        checked = found[10000]
        self.table.add("  looked at as a whole at the writer's start", "", f"{checked['open_writing_ms']:.0f} ms")
        self.table.add("  every row and set looked at (history check)", "", f"{checked['check_ms'] / 1000:.1f} s")

    # Whole processes

    def start(self):
        with tempfile.TemporaryDirectory() as folder:
            line.write_definitions(folder, 2000)
            programs = {
                "minimal": [self.bench("minimal-window")],
                "cutecom": ["cutecom"],
                "ours": [os.path.join(self.programs, "kalivor"), "--ini-path", folder],
            }
            results = {name: [] for name in programs}
            display = window.Display()
            try:
                for number in range(4 if self.options.quick else 12):
                    for name, command in programs.items():
                        result = json.loads(display.run(self.bench("watch"), "start", *command))
                        # The first round brings the files into memory.
                        if number > 0:
                            results[name].append(result)
            finally:
                display.close()
        best = {name: min(result["main_ms"] for result in list_) for name, list_ in results.items()}
        middle = {name: statistics.median(result["main_ms"] for result in list_) for name, list_ in results.items()}
        first = min(result["first_ms"] for result in results["ours"])
        self.table.add("start to the drawn main window, 2000 parameters",
                       f"minimal {best['minimal']:.0f} ms (median {middle['minimal']:.0f})",
                       f"{best['ours']:.0f} ms (median {middle['ours']:.0f})",
                       f"{best['ours'] - best['minimal']:+.0f} ms", "≤ +60 ms", best["ours"] - best["minimal"] <= 60)
        self.table.add("  the same", f"cutecom {best['cutecom']:.0f} ms (median {middle['cutecom']:.0f})",
                       f"{best['ours']:.0f} ms", f"{best['ours'] / best['cutecom']:.2f}", "≤ 1",
                       best["ours"] <= best["cutecom"])
        used = {name: min(result["processor_ms"] for result in list_) for name, list_ in results.items()}
        self.table.add("  processor time until then", f"minimal {used['minimal']:.0f} ms, cutecom "
                       f"{used['cutecom']:.0f} ms", f"{used['ours']:.0f} ms",
                       f"{used['ours'] - used['minimal']:+.0f} ms")
        self.table.add("  start to the splash screen", "", f"{first:.0f} ms")
        memory = {name: min(result["memory_KiB"] for result in list_) / 1024 for name, list_ in results.items()}
        self.table.add("  resident memory after it", f"minimal {memory['minimal']:.0f} MiB, cutecom "
                       f"{memory['cutecom']:.0f} MiB", f"{memory['ours']:.0f} MiB",
                       f"{memory['ours'] / memory['minimal']:.2f}")

    def waiting(self):
        display = window.Display()
        try:
            self.dead_line(display)
            self.question(display)
        finally:
            display.close()

    def dead_line(self, display):
        """Every parameter costs three attempts and adds two lines to the report."""
        count, attempts = (3 if self.options.quick else 6), 3
        dead = line.DeadLine()
        with tempfile.TemporaryDirectory() as folder:
            line.write_definitions(folder, count)
            program = window.Program(display, self.programs, folder, dead.device)
            usage = line.Usage(dead.device)
            painting = window.Painting(display, self.bench("watch"), "Report")
            try:
                program.press(window.RECEIVE)
                usage.wait_for_closed(1, 20)
                while len(usage.opened) < 2:
                    usage.wait(10)
                # In the middle of the wait for the first parameter's reply.
                time.sleep(0.05)
                before = line.processor_s(program.pid)
                time.sleep(0.3)
                waiting = line.processor_s(program.pid) - before
                usage.wait_for_closed(1 + attempts * count, 2 * attempts * count)
                time.sleep(0.5)
                painted = painting.times()
            finally:
                painting.close()
                program.close()
                usage.close()
                dead.close()
        latest = 0
        for number in range(attempts, 1 + attempts * count, attempts):
            given_up = usage.closed[number]
            latest = max(latest, min((moment - given_up for moment in painted if moment >= given_up),
                                     default=float("inf")))
        self.table.add("dead line: a report line is painted after", "", f"{latest * 1000:.0f} ms", "", "≤ 100 ms",
                       latest <= 0.1)
        self.table.add("processor time while an answer is awaited, 0.3 s", "", f"{waiting * 1000:.2f} ms", "",
                       "nil (≤ 0.5 ms)", waiting <= 0.0005)

    def question(self, display):
        """Sending to a controller of another version asks what to do."""
        with tempfile.TemporaryDirectory() as folder:
            line.write_definitions(folder, 20, ("AB1-123.4", "AB1-124.0"))
            simulator = line.Simulator(self.programs, folder, 9600, False, "AB1-124.0")
            program = window.Program(display, self.programs, folder, simulator.device)
            try:
                usage = line.Usage(simulator.device)
                program.press(window.SEND)
                usage.wait_for_closed(1, 20)
                time.sleep(2)
                before = line.processor_s(program.pid)
                time.sleep(3)
                waiting = line.processor_s(program.pid) - before
                usage.wait(0.1)
                asked = len(usage.closed) == 1 and len(usage.opened) == 1
                usage.close()
            finally:
                program.close()
                simulator.close()
        if not asked:
            raise RuntimeError("The window went on without an answer.")
        self.table.add("processor time while a question is open, 3 s", "", f"{waiting * 1000:.2f} ms", "",
                       "nil (≤ 0.5 ms)", waiting <= 0.0005)

    def transfers(self):
        count = self.options.count or (100 if self.options.quick else 200)
        display = window.Display()
        try:
            with tempfile.TemporaryDirectory() as folder:
                line.write_definitions(folder, count)
                count = min(count, line.MOST_CHECKED)
                for rate in (9600, 19200):
                    for echo in (False,) if self.options.quick else (False, True):
                        for name, measure in (("kalivor-cli", self.transfer_cli), ("window", self.transfer_window)):
                            simulator = line.Simulator(self.programs, folder, rate, echo)
                            try:
                                with Awake():
                                    elapsed, processor = measure(display, folder, simulator.device, count, rate)
                            finally:
                                simulator.close()
                            self.add_transfer(f"{name}, {count} at {rate}{' with echo' if echo else ''}", count,
                                              line.floor_s(count, rate), elapsed, processor, echo)
        finally:
            display.close()

    def add_transfer(self, work, count, floor, elapsed, processor, echo):
        each_ms, most_ms = processor / count * 1000, MOST_PROCESSOR_WITH_ECHO_MS if echo else MOST_PROCESSOR_MS
        self.table.add(work, f"{floor:.3f} s", f"{elapsed:.3f} s", f"{elapsed / floor:.4f}", f"≤ {MOST_OF_FLOOR}",
                       elapsed / floor <= MOST_OF_FLOOR)
        self.table.add("  processor time an exchange", "", f"{each_ms:.3f} ms", f"{processor / elapsed:.2%}",
                       f"≤ {most_ms} ms", each_ms <= most_ms)

    def transfer_cli(self, display, folder, device, _count, _rate):
        """From the process's start to its end."""
        command = [os.path.join(self.programs, "kalivor-cli"), "--ini-path", folder, "--port", device, "receive"]
        start = time.monotonic()
        process = subprocess.Popen(command, env=display.environment, stdout=subprocess.DEVNULL)
        _, status, used = os.wait4(process.pid, 0)
        elapsed = time.monotonic() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise RuntimeError(f"kalivor-cli ended with {process.returncode}.")
        return elapsed, used.ru_utime + used.ru_stime

    def transfer_window(self, display, folder, device, count, rate):
        """From the first time that the transfer opens the line to the last time that it closes it, and the pause
        before."""
        program = window.Program(display, self.programs, folder, device)
        usage = line.Usage(device)
        try:
            program.lead_to(window.RECEIVE)
            before = line.processor_s(program.pid)
            program.press_led_to()
            # The search for the rate opens the line for a lost query and to set it.
            usage.wait_for_closed(count + (3 if rate == 19200 else 1), 30 + 3 * line.floor_s(count, rate))
            time.sleep(0.2)
            processor = line.processor_s(program.pid) - before
        finally:
            program.close()
            usage.close()
        return usage.closed[-1] - usage.opened[0] + line.PAUSE_S, processor

    # Counts

    def count(self, work):
        with tempfile.TemporaryDirectory() as folder:
            environment = dict(os.environ, QT_HASH_SEED="0", XDG_CONFIG_HOME=folder, XDG_RUNTIME_DIR=folder,
                               HOME=folder, LC_ALL="C.UTF-8", QT_ACCESSIBILITY="0")
            command = [self.bench("work"), work]
            # The first run fills the fonts' cache.
            subprocess.run(command, env=environment, check=True, capture_output=True)
            command = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out", *command]
            result = subprocess.run(command, env=environment, check=True, capture_output=True, text=True)
        return int(re.search(r"Collected : (\d+)", result.stderr)[1])

    def baseline(self):
        """All counts that were recorded, and the kind of build, compiler and toolkit that this build has."""
        with open(BASELINE, encoding="utf-8") as file:
            recorded = json.load(file)
        build = subprocess.run([self.bench("work"), "build"], check=True, capture_output=True, text=True).stdout
        return recorded, build.strip()

    def counts(self):
        if shutil.which("valgrind") is None:
            raise Uncounted("Instructions are not counted: valgrind is not installed.")
        recorded, build = self.baseline()
        if self.options.record:
            recorded.setdefault(build, {})
        if build not in recorded:
            raise Uncounted(f"Instructions are not counted: bench/baseline.json has none for {build}.")
        for work, text in WORKS.items():
            ours = self.count(work)
            before = recorded[build].get(work, ours)
            self.table.add(f"instructions: {text}", f"before {before / 1e6:.1f} million",
                           f"{ours / 1e6:.1f} million", f"{ours / before:.3f}", f"≤ {GROWTH:.2f}",
                           ours <= GROWTH * before)
            recorded[build][work] = ours
        if self.options.record:
            with open(BASELINE, "w", encoding="utf-8") as file:
                json.dump(recorded, file, indent=2)
                file.write("\n")


SECTIONS = ("exchange", "files", "windows", "list", "history", "start", "waiting", "transfers", "counts")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sections", nargs="*", metavar="SECTION")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--count", type=int)
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--record", action="store_true")
    parser.add_argument("--build", default="build/release")
    options = parser.parse_args()
    unknown = set(options.sections) - set(SECTIONS)
    if unknown:
        parser.error("unknown section: " + ", ".join(sorted(unknown)))

    options.build = os.path.abspath(options.build)
    bench = Bench(options)
    for section in ["counts"] if options.check else options.sections or SECTIONS:
        print(section, file=sys.stderr, flush=True)
        first = len(bench.table.rows)
        try:
            getattr(bench, section)()
        except Uncounted as reason:
            print(reason, file=sys.stderr)
            sys.exit(77 if options.sections == ["counts"] else 2)
        if options.record:
            subprocess.run(["script/release/record", "docs/performance.md", section], cwd=PROJECT, check=True,
                           input=bench.table.text(True, first), text=True)
    print(bench.table.text(options.markdown))
    sys.exit(1 if bench.table.missed else 0)


if __name__ == "__main__":
    main()
