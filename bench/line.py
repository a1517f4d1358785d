"""Serial lines for measuring: when they are used, how long they take at least, and one without an answer."""
import ctypes
import os
import select
import struct
import subprocess
import threading
import time
import tty

PAUSE_S = 0.020
TIMEOUT_S = 0.4
REQUEST = len("#0102R1F000F\r")
REPLY = len("10102R04D220\r")
MOST_CHECKED = 1999  # a full table's last parameter begins unchecked and is not transferred
VERSION_REQUEST = len("#0102v00BC\r")
VERSION_REPLY = len("10102vAB1-04D2xx\r")
HEADING = "Version  Adressen  Definitionen  Anlagen  Kennung\r\n"


def write_definitions(folder, count, versions=("AB1-123.4",)):
    """An installation whose versions have `count` int parameters in 40 groups."""
    with open(os.path.join(folder, "VF.INI"), "w", encoding="cp1252", newline="") as table:
        table.write(HEADING + "".join(f"{version}  -  DEF.TXT  A B -  WR\r\n" for version in versions))
    with open(os.path.join(folder, "DEF.TXT"), "w", encoding="cp1252", newline="") as definitions:
        definitions.write("Heading\r\n")
        for i in range(count):
            definitions.write(f"Gruppe {i * 40 // count + 1}  Solltemperatur {i}  0  30000  {i}  °C  1  0  int  "
                              f"{0x1000 + 2 * i:04X}  _Parameter{i}  A B  Hilfe\\zu {i}\r\n")


def floor_s(count, rate):
    """Every character passes the line after the other (10 bits each), and a pause precedes each telegram. An
    echo costs nothing: the adapter returns the request while it is being sent. At 19200 baud the search for the
    rate costs one time-out."""
    character_s = 10 / rate
    exchanges = (VERSION_REQUEST + VERSION_REPLY + count * (REQUEST + REPLY)) * character_s
    search = TIMEOUT_S + PAUSE_S if rate == 19200 else 0
    return exchanges + (count + 1) * PAUSE_S + search


class Simulator:
    """kalivor-sim at the pace of a real line."""

    def __init__(self, programs, folder, rate, echo, version="AB1-123.4"):
        command = [os.path.join(programs, "kalivor-sim"), "--ini-path", folder, "--paced", "--rate", str(rate)]
        command += ["--controller", version] + (["--echo"] if echo else [])
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.device = self._process.stdout.readline().strip()

    def close(self):
        self._process.terminate()
        self._process.wait()
        self._process.stdout.close()


class DeadLine:
    """A line on which the version query is answered and nothing else."""

    def __init__(self):
        self._master, self._slave = os.openpty()
        tty.setraw(self._slave)
        self.device = os.ttyname(self._slave)
        self._open = True
        self._thread = threading.Thread(target=self._answer, daemon=True)
        self._thread.start()

    def _answer(self):
        text = b"10102vAB1-04D2"
        reply = text + b"%02X\r" % (sum(text) % 256)
        while self._open:
            if select.select([self._master], [], [], 0.1)[0] and b"v00" in os.read(self._master, 256):
                os.write(self._master, reply)

    def close(self):
        self._open = False
        self._thread.join()
        os.close(self._master)
        os.close(self._slave)


class Usage:
    """When programs open and close a device, in seconds of the monotonic clock."""

    _OPEN, _CLOSE = 0x20, 0x08
    _EVENT = struct.Struct("iIII")

    def __init__(self, device):
        libc = ctypes.CDLL(None, use_errno=True)
        self._notify = libc.inotify_init()
        if libc.inotify_add_watch(self._notify, device.encode(), self._OPEN | self._CLOSE) < 0:
            raise OSError(ctypes.get_errno(), "inotify_add_watch")
        self.opened, self.closed = [], []

    def wait(self, seconds):
        """Takes what comes within `seconds`; False when nothing does."""
        if not select.select([self._notify], [], [], seconds)[0]:
            return False
        events = os.read(self._notify, 4096)
        now = time.monotonic()
        at = 0
        while at < len(events):
            _, mask, _, length = self._EVENT.unpack_from(events, at)
            (self.opened if mask & self._OPEN else self.closed).append(now)
            at += self._EVENT.size + length
        return True

    def wait_for_closed(self, count, longest_s):
        end = time.monotonic() + longest_s
        while len(self.closed) < count:
            if time.monotonic() > end or not self.wait(end - time.monotonic()):
                raise RuntimeError(f"The line was used {len(self.closed)} times, not {count}.")

    def close(self):
        os.close(self._notify)


def processor_s(process):
    """Processor time of all threads of a process so far, in seconds."""
    total = 0
    for thread in os.listdir(f"/proc/{process}/task"):
        with open(f"/proc/{process}/task/{thread}/schedstat", encoding="ascii") as file:
            total += int(file.read().split()[0])
    return total / 1e9
