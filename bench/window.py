"""A display of its own, and the desktop program on it, driven from outside."""
import os
import subprocess
import tempfile
import time

# How often the Tab key leads from the first control to a button.
RECEIVE, SEND = 3, 4


def resident_MiB(pid):
    with open(f"/proc/{pid}/statm", encoding="ascii") as figures:
        return int(figures.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 2**20


class Display:
    """Without window manager, as it would take part in every start."""

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="kalivor-bench-")
        reader, writer = os.pipe()
        options = ["-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"]
        self._server = subprocess.Popen(["Xvfb", "-displayfd", str(writer), *options], pass_fds=[writer],
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with open(reader, encoding="ascii") as answer:
            number = answer.readline().strip()
        self.environment = dict(os.environ, DISPLAY=":" + number, HOME=self.folder, XDG_CONFIG_HOME=self.folder,
                                XDG_CACHE_HOME=self.folder, XDG_RUNTIME_DIR=self.folder)
        for name in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_ACCESSIBILITY", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)

    def run(self, *command):
        return subprocess.run(command, env=self.environment, check=True, capture_output=True, text=True).stdout

    def close(self):
        self._server.terminate()
        self._server.wait()
        subprocess.run(["rm", "-r", self.folder], check=True)


class Program:
    """The desktop program on a line."""

    def __init__(self, display, programs, folder, device):
        self._display = display
        command = [os.path.join(programs, "kalivor"), "--ini-path", folder, "--port", device]
        self.process = subprocess.Popen(command, env=display.environment)
        self.pid = self.process.pid
        # The splash screen has the same title.
        before, self._window = None, self.window("KALIVOR")
        while self._window != before:
            time.sleep(1.5)
            before, self._window = self._window, self.window("KALIVOR")

    def window(self, title):
        """Waits for it; its number."""
        found = self._display.run("xdotool", "search", "--sync", "--onlyvisible", "--all", "--pid", str(self.pid),
                                  "--name", f"^{title}$")
        return found.split()[-1]

    def lead_to(self, button):
        """Moves the keyboard's focus to a button of the main window."""
        self._display.run("xdotool", "windowfocus", "--sync", self._window)
        time.sleep(0.2)
        self._display.run("xdotool", "key", *["Tab"] * button)
        time.sleep(0.2)

    def press(self, button):
        """Presses a button of the main window with the keyboard."""
        self.lead_to(button)
        self.press_led_to()

    def press_led_to(self):
        """Presses the button that has the focus."""
        self._display.run("xdotool", "key", "space")

    def close(self):
        self.process.terminate()
        self.process.wait()


class Painting:
    """When the pixels of a window change, in seconds of the monotonic clock."""

    def __init__(self, display, watch, title):
        self._process = subprocess.Popen([watch, "paint", title], env=display.environment, stdout=subprocess.PIPE,
                                         text=True)
        self._process.stdout.readline()

    def times(self):
        """Ends the watching; all moments so far."""
        self._process.terminate()
        text = self._process.communicate()[0]
        return [int(line) / 1e9 for line in text.split()]

    def close(self):
        if self._process.poll() is None:
            self._process.kill()
            self._process.communicate()
