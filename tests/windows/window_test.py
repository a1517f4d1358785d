"""kalivor.exe under Wine in an X server, driven by keys: receives, edits, saves, loads, compares, asks, shows options and
preview. What it has done is read from its files and from the simulator, by the programs of this system.

KALIVOR_EXE, KALIVOR_CLI, KALIVOR_SIM and KALIVOR_EXAMPLES name the programs and the example; KALIVOR_PICTURES a folder
for pictures of its windows, if they are wanted.
"""
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from wine import Wine, windows_path

LONG_S = 30
DAY = "_Hk1RaumSollTag"


def wait_for(condition, what):
    end = time.monotonic() + LONG_S
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.1)
    raise AssertionError(f"{what}: not within {LONG_S} s")


def xdotool(*words):
    return subprocess.run(["xdotool"] + list(words), capture_output=True, text=True, check=False).stdout.strip()


class Screen:
    """An X server with a window manager."""

    def __init__(self):
        reading, writing = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1000x24", "-nolisten",
                                        "tcp"], pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            os.environ["DISPLAY"] = ":" + number.readline().strip()
        self.manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def close(self):
        self.manager.kill()
        self.manager.wait()
        self.server.kill()
        self.server.wait()


class Window(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.screen = Screen()
        self.addCleanup(self.screen.close)
        self.device = os.path.join(self.folder, "regler")
        self.simulator = None
        self.wine = Wine()
        self.addCleanup(self.wine.__exit__)
        self.wine.map_ports({"COM9": self.device})

    # ---- the controller

    def plug_in(self, *options):
        self.simulator = subprocess.Popen(
            [os.environ["KALIVOR_SIM"], "--ini-path", os.environ["KALIVOR_EXAMPLES"], "--link", self.device]
            + list(options), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.simulator.stdout.readline()
        self.addCleanup(self.simulator.stdout.close)
        self.addCleanup(self.pull_out)

    def pull_out(self):
        if self.simulator.poll() is None:
            self.simulator.send_signal(signal.SIGTERM)
            self.simulator.wait()

    def cli(self, *arguments):
        return subprocess.run([os.environ["KALIVOR_CLI"], "--ini-path", os.environ["KALIVOR_EXAMPLES"]] + list(arguments),
                              env=dict(os.environ, XDG_CONFIG_HOME=self.folder), capture_output=True, text=True,
                              check=False).stdout

    def value(self, *arguments):
        """The value of the parameter that is edited, after the arguments."""
        lines = [line for line in self.cli("params", *arguments).splitlines() if DAY in line]
        self.assertEqual(len(lines), 1)
        return lines[0].split("\t")[3]

    # ---- the window

    def find(self, title):
        return xdotool("search", "--onlyvisible", "--name", f"^{title}$").split("\n")[-1]

    def settled(self, title):
        """The window's number, if it stays: the picture that is shown while the program starts has the same title."""
        number = self.find(title)
        time.sleep(0.7)
        return number if number == self.find(title) else None

    def window(self, title):
        """Waits for a window, and gives it the keys."""
        number = wait_for(lambda: self.settled(title), f"the window {title!r}")
        xdotool("windowactivate", "--sync", number)
        time.sleep(1)
        self.take_picture(number, title)
        return number

    def gone(self, title):
        wait_for(lambda: not self.find(title), f"the end of the window {title!r}")

    def keys(self, *names):
        xdotool("key", "--delay", "150", *names)
        time.sleep(0.3)

    def type(self, text):
        xdotool("type", "--delay", "20", text)
        time.sleep(0.3)

    def take_picture(self, number, title):
        picture = subprocess.run(["import", "-window", number, "png:-"], capture_output=True, check=True).stdout
        colours = subprocess.run(["identify", "-format", "%k", "-"], input=picture, capture_output=True, check=True)
        self.assertGreater(int(colours.stdout), 20, f"the window {title!r} shows nothing")
        if "KALIVOR_PICTURES" in os.environ:
            with open(os.path.join(os.environ["KALIVOR_PICTURES"], f"windows-{title}.png"), "wb") as file:
                file.write(picture)

    def report(self):
        """Waits for the report's end and closes it."""
        self.window("Report")
        self.keys("Escape")
        self.gone("Report")
        self.window("KALIVOR")

    def file_dialog(self, title, path):
        self.window(title)
        self.type(windows_path(path))
        self.keys("Return")
        self.gone(title)
        self.window("KALIVOR")

    def test_a_day_at_work(self):
        self.plug_in()
        program = self.wine.start(
            [os.environ["KALIVOR_EXE"], "--ini-path", windows_path(os.environ["KALIVOR_EXAMPLES"]), "--port", "COM9"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.window("KALIVOR")

        # From the list of versions over that of plants into the tree, and to the first value of the second group.
        self.keys("Tab", "Tab", "Home", "Down", "Down", "Right", "Down", "Return")
        self.window("Edit Parameter")
        self.keys("ctrl+a")
        self.type("22.5")
        self.keys("Return")
        self.gone("Edit Parameter")
        self.window("KALIVOR")

        saved = os.path.join(self.folder, "größe.qpf")
        self.keys("ctrl+s")
        self.file_dialog("Speichern", os.path.join(self.folder, "werte.qpf"))
        os.rename(os.path.join(self.folder, "werte.qpf"), saved)
        self.assertEqual(self.value("--load", saved), "225")

        # "Senden" stands behind "Empfangen".
        self.keys("Tab", "Tab", "space")
        self.report()
        self.assertEqual(self.cli("compare", "--port", self.device, "--load", saved).splitlines()[-1],
                         "Vergleichen beendet")
        self.shot("1")
        self.keys("Tab", "Tab", "space")
        self.shot("2")
        self.report()
        self.keys("alt+o", "Return")
        time.sleep(1)
        self.shot("3")
        self.keys("Escape")
        self.keys("ctrl+p")
        time.sleep(2)
        self.shot("4")
        self.keys("alt+F4")
        time.sleep(1)
        self.shot("5")
        self.pull_out()
        self.plug_in("--plant", "3")
        self.window("KALIVOR")
        self.keys("shift+Tab","shift+Tab","shift+Tab", "space")
        time.sleep(3)
        self.shot("6")

    def shot(self, name):
        print(name,subprocess.run("for i in $(xdotool search --onlyvisible --name . 2>/dev/null); do xdotool getwindowname $i; done",shell=True,capture_output=True,text=True).stdout)
        subprocess.run(["import", "-window", "root", f"/tmp/w-{name}.png"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
