"""Programs for Windows under Wine, with serial ports that are pseudo-terminals."""
import contextlib
import fcntl
import os
import shutil
import subprocess
import tempfile
import termios
import time

HERE = os.path.dirname(os.path.abspath(__file__))
UNDER_WINE = os.path.join(HERE, "under_wine")
PREPARED = os.environ.get("WINEPREFIX", os.path.normpath(os.path.join(HERE, "../../build/windows/wine")))


def windows_path(path):
    """The name of one of this system's files as a program under Wine knows it."""
    return "Z:" + os.path.abspath(path).replace("/", "\\")


class Wine(contextlib.AbstractContextManager):
    """A Wine of its own, in a temporary folder: a copy of the prepared one."""

    def __init__(self):
        subprocess.run([UNDER_WINE, "cmd", "/c", "exit"], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        self.folder = tempfile.mkdtemp(prefix="wine-of-", dir=os.path.dirname(PREPARED))
        self.prefix = os.path.join(self.folder, "prefix")
        # Linked, which needs the same drive; nothing writes into the system's files there.
        subprocess.run(["cp", "-al", PREPARED, self.prefix], check=True)
        for name in os.listdir(self.prefix):
            if name.endswith(".reg"):
                path = os.path.join(self.prefix, name)
                shutil.copyfile(path, path + ".own")
                os.replace(path + ".own", path)
        self.server = None
        self.started = []
        self.environment = dict(os.environ, WINEPREFIX=self.prefix)

    def map_ports(self, ports):
        """`ports`: device by name ("COM9"). The machine's own are none of the programs' business."""
        for port, device in {"COM1": "/dev/null", **ports}.items():
            self.run(["reg", "add", r"HKLM\Software\Wine\Ports", "/v", port, "/d", device, "/f"], check=True)
        # They are given when the server starts.
        self.stop()
        # It has a terminal of its own. The first port that it opens would become that otherwise, and it would end when
        # the port is pulled out.
        terminal = os.openpty()

        def take_terminal():
            os.setsid()
            fcntl.ioctl(terminal[1], termios.TIOCSCTTY, 0)

        self.server = subprocess.Popen(["wineserver", "--foreground", "--persistent"], env=self.environment,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                       preexec_fn=take_terminal)
        # A program that comes first would start another one.
        time.sleep(1)
        # The services that start with the first program and stay would hold what that one writes to.
        subprocess.run([UNDER_WINE, "cmd", "/c", "exit"], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def __exit__(self, *exception):
        self.stop()
        for program in self.started:
            program.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def stop(self):
        """Ends every program and the server."""
        subprocess.run(["wineserver", "--kill"], env=self.environment, check=False,
                       stderr=subprocess.DEVNULL)
        subprocess.run(["wineserver", "--wait"], env=self.environment, check=False,
                       stderr=subprocess.DEVNULL)
        if self.server:
            self.server.wait()
            self.server = None

    def run(self, command, **options):
        """Runs a program to its end. Standard output and error are returned as bytes."""
        return subprocess.run([UNDER_WINE] + command, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def start(self, command, **options):
        """Starts a program that ends with this object at the latest."""
        program = subprocess.Popen([UNDER_WINE] + command, env=self.environment, stdin=subprocess.DEVNULL, **options)
        self.started.append(program)
        return program
