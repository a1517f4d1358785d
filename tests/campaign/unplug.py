#!/usr/bin/env python3
"""Pulls the line out of running transfers and puts it in again, at random moments.

usage: unplug.py cli|window [--times N] [--seed S] [--workers W]

A controller on a pseudo-terminal vanishes at a random moment of each transfer, also in the middle of a reply, and
comes back after a random while or when the transfer is over. Programs come from the environment: KALIVOR_CLI, and
for the window also what tests/e2e/window needs. After each transfer the report has to hold known lines only, the
values have to be the controller's wherever no failure is reported, and the program has to be ready for the next one.
"""
import argparse
import collections
import os
import random
import re
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time
import tty

COUNT = 20
FIRST_ADDRESS = 0x1000
VERSION = "AB1-04D2"
LONGEST_S = 120
FAILURES = (r"ERROR: (kein Empfang|COM 1 nicht verfügber|ungültiger Empfang:  \(.*\)\."
            r"|unvollständige Antwort: .*)")


def write_definitions(folder):
    with open(os.path.join(folder, "VF.INI"), "w", encoding="cp1252") as table:
        table.write("Version  Adressen  Definitionen  Anlagen  Kennung\r\nAB1-123.4  -  DEF.TXT  A -  WR\r\n")
    with open(os.path.join(folder, "DEF.TXT"), "w", encoding="cp1252") as definitions:
        definitions.write("Heading\r\n")
        for i in range(COUNT):
            definitions.write(f"Gruppe  Parameter {i}  0  30000  {standard(i)}  -  0  0  int  {address(i)}  V{i}  A  -\r\n")


def address(i):
    return f"{FIRST_ADDRESS + 2 * i:04X}"


def standard(i):
    return 100 + i


def other(i):
    return 5000 + i


def summed(text):
    return f"{text}{sum(text.encode()) % 256:02X}\r".encode()


class Controller:
    """Answers on a pseudo-terminal behind a link, until it is pulled out."""

    def __init__(self, folder):
        self.device = os.path.join(folder, "line")
        self.words = {}
        self._lock = threading.Lock()
        self._master = self._slave = -1
        self._plan = None
        self._requests = 0
        self._began = 0
        self._ended = False
        self._wake, self._waker = os.pipe()
        self.plug()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def plug(self):
        with self._lock:
            if self._master >= 0:
                return
            self._master, self._slave = os.openpty()
            tty.setraw(self._slave)
            os.set_blocking(self._master, False)
            if os.path.islink(self.device):
                os.unlink(self.device)
            os.symlink(os.ttyname(self._slave), self.device)
        os.write(self._waker, b"x")

    def _unplug(self):
        os.unlink(self.device)
        os.close(self._slave)
        os.close(self._master)
        self._master = self._slave = -1
        self.unplugged = True

    def begin(self, values, plan):
        """A transfer begins. `plan`: ("time", seconds after the first request, back) or ("byte", number of the
        request, characters of its reply that still go out, back); back in seconds, or None for later."""
        with self._lock:
            self.words = dict(values)
            self._plan = plan
            self._requests = 0
            self._began = 0
            self.unplugged = False
        os.write(self._waker, b"x")

    def end(self):
        """The transfer is over. Everything is in its place again."""
        with self._lock:
            self._plan = None
            self._back_at = None
        self.plug()

    def close(self):
        with self._lock:
            self._ended = True
        os.write(self._waker, b"x")
        self._thread.join()

    _back_at = None

    def _run(self):
        request = b""
        while not self._ended:
            with self._lock:
                watched = [self._wake] + ([self._master] if self._master >= 0 else [])
                plan = self._plan
            timeout = None
            now = time.monotonic()
            if self._back_at is not None:
                timeout = max(0, self._back_at - now)
            elif plan and plan[0] == "time" and self._began:
                timeout = max(0, self._began + plan[1] - now)
            ready = select.select(watched, [], [], timeout)[0]
            if self._wake in ready:
                os.read(self._wake, 100)
            if self._back_at is not None and time.monotonic() >= self._back_at:
                self._back_at = None
                self.plug()
                continue
            with self._lock:
                if self._master < 0:
                    request = b""
                    continue
                data = b""
                if self._master in ready:
                    try:
                        data = os.read(self._master, 1000)
                    except OSError:
                        data = b""
                plan = self._plan
                if plan and plan[0] == "time" and self._began and time.monotonic() >= self._began + plan[1]:
                    self._vanish(plan[2])
                    request = b""
                    continue
                for byte in data:
                    request += bytes([byte])
                    if byte != 13:
                        continue
                    reply = self._reply(request.decode("ascii"))
                    request = b""
                    self._began = self._began or time.monotonic()
                    self._requests += 1
                    if plan and plan[0] == "byte" and plan[1] == self._requests:
                        os.write(self._master, reply[: plan[2]])
                        self._vanish(plan[3])
                        break
                    os.write(self._master, reply)

    def _vanish(self, back_s):
        self._plan = None
        self._unplug()
        if back_s is not None:
            self._back_at = time.monotonic() + back_s

    def _reply(self, request):
        body = request[5:-3]
        assert summed(request[:-3]) == request.encode(), request
        if body == "v00":
            return summed("10102v" + VERSION)
        if body[0] == "R":
            return summed(f"10102R{self.words[body[1:5]]:04X}")
        self.words[body[1:5]] = int(body[5:9], 16)
        return summed("10102W")


def random_plan(chance):
    back_s = chance.choice([None, chance.random() * 0.3, chance.random() * 2])
    if chance.random() < 0.5:
        return ("time", chance.random() * 0.55, back_s)
    return ("byte", chance.randint(1, COUNT + 1), chance.randint(0, 13), back_s)


def check_report(text, begin, done, aborted):
    """The parameters whose failure it reports, and whether the transfer came to its end."""
    # A cut reply may hold control characters, but no line break.
    lines = text.split("\n")
    assert lines[-1] == "" and len(lines) >= 3, text
    assert re.fullmatch(re.escape(begin) + r"\.*", lines[0]), text
    assert lines[-2] in (done, aborted), text
    if lines[-2] == aborted:
        assert len(lines) == 4, text
        assert re.fullmatch("(Unbekannte ReglerVersion: )?" + FAILURES, lines[1]), text
        return set(), False
    failed = set()
    middle = lines[1:-2]
    assert len(middle) % 2 == 0, text
    for error, failure in zip(middle[::2], middle[1::2]):
        assert re.fullmatch(FAILURES, error), text
        match = re.fullmatch(r"Fehler bei: V(\d+)\.+", failure)
        assert match, text
        failed.add(int(match[1]))
    dots = sum(len(line) - len(line.rstrip(".")) for line in [lines[0], *middle[1::2]]) - 2
    assert dots == COUNT, text
    return failed, True


def values_of(path):
    """The numbers in a value file, without its first record."""
    with open(path, "rb") as file:
        image = file.read()
    return [struct.unpack_from("<i", image, 62 * (i + 1))[0] for i in range(len(image) // 62 - 1)]


class Outcomes(collections.Counter):
    def note(self, command, failed, finished, unplugged):
        self["transfers"] += 1
        self[f"{command}: " + ("finished" if finished else "given up")] += 1
        self["parameters reported as failed"] += len(failed)
        self["unplugged in the transfer"] += unplugged


COMMANDS = {
    "receive": ("Empfangen..", "Empfangen beendet", "Empfangen abgebrochen"),
    "compare": ("Vergleichen..", "Vergleich beendet", "Vergleich abgebrochen"),
    "send": ("Senden..", "Senden beendet", "Senden abgebrochen"),
}


def check_controller(controller, failed, finished):
    """After sending: every word is the sent one, unless a failure is reported."""
    for i in range(COUNT):
        word = controller.words[address(i)]
        assert word == standard(i) or (word == other(i) and (i in failed or not finished)), (i, word)


def run_cli(chance, folder, times):
    controller = Controller(folder)
    outcomes = Outcomes()
    saved = os.path.join(folder, "saved.qpf")
    environment = dict(os.environ, XDG_CONFIG_HOME=folder)
    try:
        for number in range(times):
            command = chance.choice(list(COMMANDS))
            same = command == "compare"
            controller.begin({address(i): standard(i) if same else other(i) for i in range(COUNT)}, random_plan(chance))
            arguments = [os.environ["KALIVOR_CLI"], "--ini-path", folder, "--port", controller.device, command]
            if command == "receive":
                arguments += ["--save", saved]
            result = subprocess.run(arguments, env=environment, capture_output=True, timeout=LONGEST_S, check=False)
            controller.end()
            text = result.stdout.decode()
            try:
                failed, finished = check_report(text, *COMMANDS[command])
                assert result.stderr == b"", result.stderr
                assert result.returncode == (3 if not finished else 1 if failed else 0), result.returncode
                if command == "receive" and finished:
                    for i, value in enumerate(values_of(saved)):
                        assert value == (standard(i) if i in failed else other(i)), (i, value)
                if command == "send":
                    check_controller(controller, failed, finished)
            except AssertionError as error:
                raise AssertionError(f"transfer {number}, {command}, status {result.returncode}:\n{text}") from error
            outcomes.note(command, failed, finished, controller.unplugged)
    finally:
        controller.close()
    return outcomes


def usage_of(process):
    """Memory in KiB and descriptors of a process."""
    with open(f"/proc/{process}/status", encoding="utf-8") as status:
        memory = next(int(line.split()[1]) for line in status if line.startswith("VmRSS:"))
    return memory, len(os.listdir(f"/proc/{process}/fd"))


def patient(question):
    """`question` for wait_for: after many rebuilt trees the toolkit gives controls other names on the bus, and one
    that has just been found may be unknown, or without actions."""

    def ask():
        try:
            return question()
        except (AssertionError, KeyError, AttributeError, ValueError):
            return None

    return ask


def look_again(program):
    """Finds the controls anew."""
    program.main = program.window("KALIVOR")
    program._buttons = {button.name: button for button in program.main.find_all("push button")}
    program._state = program.main.find("label", description="Zustand")
    program.tree.control = program.main.find("tree", "Parameter")
    program._report = None
    return len(program._buttons) == 4 and program.state == "Ready" and program.main.enabled


def pressed(program, caption):
    """Presses a button of the main window as soon as it can be pressed."""
    if not look_again(program) or not program.button(caption).enabled:
        return False
    program.press(caption)
    return True


def parameter_rows(program):
    """The texts of the parameters' rows."""
    look_again(program)
    rows = [row.name for row in program.tree.rows()[-COUNT:]]
    return rows if len(rows) == COUNT and all(row.startswith("Parameter ") for row in rows) else None


def ended(program, make_report):
    """The report's text when the transfer is over."""
    # One question only while it runs: the program takes half a second for each answer then.
    if program.state != "Ready":
        return None
    text = make_report(program.find_window("Report")).text
    return text if text.endswith(("beendet\n", "abgebrochen\n")) else None


def closed(program, make_report):
    """Closes the report; true when it is closed and the window ready."""
    window = program.find_window("Report")
    if window is not None:
        make_report(window).button("OK").press()
        # A button that is pressed over the bus clicks a tenth of a second later, and begins anew when it is pressed
        # again before.
        time.sleep(0.5)
        return False
    return look_again(program)


def run_window(chance, folder, times):
    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e", "window"))
    import Scenario  # noqa: F401 starts the desktop
    from Bus import wait_for
    from Window import Program, Report

    captions = {"receive": "Empfangen", "compare": "Vergleichen", "send": "Senden"}
    controller = Controller(folder)
    controller.begin({address(i): standard(i) for i in range(COUNT)}, None)
    outcomes = Outcomes()
    program = Program(controller.device, ini_path=folder)
    try:
        program.activate(program.main)
        program.tree.expand_all()
        first = None
        for number in range(times):
            command = chance.choice(list(captions))
            wait_for(patient(lambda: pressed(program, "Standard")), "the standard values")
            same = command == "compare"
            controller.begin({address(i): standard(i) if same else other(i) for i in range(COUNT)}, random_plan(chance))
            wait_for(patient(lambda: pressed(program, captions[command])), "the start of the transfer")
            text = wait_for(patient(lambda: ended(program, Report)), "the end of the transfer")
            controller.end()
            try:
                failed, finished = check_report(text, *COMMANDS[command])
                if command == "receive" and finished:
                    rows = wait_for(patient(lambda: parameter_rows(program)), "the parameters")
                    for i, row in enumerate(rows):
                        expected = standard(i) if i in failed else other(i)
                        assert re.match(rf"Parameter {i}\.+ +{expected} ", row), row
                if command == "send":
                    check_controller(controller, failed, finished)
            except AssertionError as error:
                raise AssertionError(f"transfer {number}, {command}:\n{text}") from error
            wait_for(patient(lambda: closed(program, Report)), "the window ready")
            outcomes.note(command, failed, finished, controller.unplugged)
            memory, descriptors = usage_of(program.process.pid)
            if number == min(20, times // 2):
                first = memory, descriptors
            if first:
                assert descriptors <= first[1], f"{descriptors} descriptors instead of {first[1]}"
        # Whatever has happened, a whole transfer goes through now.
        controller.begin({address(i): other(i) for i in range(COUNT)}, None)
        wait_for(patient(lambda: pressed(program, "Empfangen")), "the start of the transfer")
        text = wait_for(patient(lambda: ended(program, Report)), "the end of the transfer")
        assert text == "Empfangen.." + "." * COUNT + "\nEmpfangen beendet\n", text
        print(f"the window: VmRSS {first[0]} KiB after its first transfers, {memory} KiB at last; "
              f"{first[1]} descriptors, then never more, {descriptors} at last", flush=True)
    finally:
        program.close()
        controller.close()
    return outcomes


def run(options):
    folder = tempfile.mkdtemp(prefix="kalivor-unplug-")
    try:
        write_definitions(folder)
        body = run_cli if options.program == "cli" else run_window
        outcomes = body(random.Random(options.seed), folder, options.times)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    for what, count in sorted(outcomes.items()):
        print(f"{count:7d}  {what}", flush=True)


def run_workers(options):
    """Shares the transfers among processes of this program, each with a seed of its own."""
    command = [sys.executable, "-B", os.path.abspath(__file__), options.program]
    share = -(-options.times // options.workers)
    workers = [
        subprocess.Popen(command + ["--times", str(share), "--seed", str(options.seed + i)], stdout=subprocess.PIPE)
        for i in range(options.workers)
    ]
    failed = False
    totals = collections.Counter()
    for i, worker in enumerate(workers):
        output = worker.communicate()[0].decode()
        for line in output.splitlines():
            match = re.fullmatch(r" *(\d+)  (.*)", line)
            if match:
                totals[match[2]] += int(match[1])
            else:
                print(line)
        if worker.returncode != 0:
            failed = True
            print(f"seed {options.seed + i} failed; replay with --times {share} --seed {options.seed + i}")
    for what, count in sorted(totals.items()):
        print(f"{count:7d}  {what}")
    sys.exit(1 if failed else 0)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", choices=("cli", "window"))
    parser.add_argument("--times", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--workers", type=int, default=1)
    options = parser.parse_args()
    if options.workers > 1:
        run_workers(options)
    else:
        run(options)


if __name__ == "__main__":
    main()
