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
                              check=False)

    def value(self, *arguments):
        """The value of the parameter that is edited, after the arguments."""
        lines = [line for line in self.cli("params", *arguments).stdout.splitlines() if DAY in line]
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

    def picture(self, number):
        return subprocess.run(["import", "-window", number, "png:-"], capture_output=True, check=True,
                              timeout=LONG_S).stdout

    def is_still(self, number):
        before = self.picture(number)
        time.sleep(1.5)
        return before == self.picture(number)

    def take_picture(self, number, title):
        picture = self.picture(number)
        colours = subprocess.run(["identify", "-format", "%k", "-"], input=picture, capture_output=True, check=True)
        self.assertGreater(int(colours.stdout), 20, f"the window {title!r} shows nothing")
        if "KALIVOR_PICTURES" in os.environ:
            with open(os.path.join(os.environ["KALIVOR_PICTURES"], f"windows-{title}.png"), "wb") as file:
                file.write(picture)

    def report(self):
        """Waits for the report's end and closes it."""
        number = self.window("Report")
        wait_for(lambda: self.is_still(number), "the last line of the report")
        self.take_picture(number, "Report")
        self.keys("Escape")
        self.gone("Report")
        self.window("KALIVOR")

    def file_dialog(self, title, path):
        self.window(title)
        self.keys("Home", "shift+End")
        self.type(windows_path(path))
        self.keys("Return")
        self.gone(title)

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

        saved = os.path.join(self.folder, "werte.qpf")
        self.keys("ctrl+s")
        self.file_dialog("Speichern", saved)
        self.assertEqual(self.value("--load", saved), "225")

        # "Senden" stands behind "Empfangen", "Vergleichen" two further.
        self.window("KALIVOR")
        self.keys("Tab", "Tab", "space")
        self.report()
        self.assertEqual(self.cli("compare", "--port", self.device, "--load", saved).returncode, 0)
        self.keys("Tab", "Tab", "space")
        self.report()

        self.keys("alt+o", "Return")
        self.window("Optionen")
        self.keys("Escape")
        self.gone("Optionen")

        # Another value file, and what the controller holds over it.
        standard = os.path.join(self.folder, "standard.qpf")
        self.cli("standard", "--save", standard)
        self.window("KALIVOR")
        self.keys("ctrl+o")
        self.file_dialog("Öffnen", standard)
        self.window("KALIVOR")
        self.keys("shift+Tab", "shift+Tab", "shift+Tab", "space")
        self.report()
        self.keys("ctrl+s")
        wait_for(lambda: self.value("--load", standard) == "225", "the received value in the file")

        # Without a printer, pages become a PDF file.
        pages = os.path.join(self.folder, "liste.pdf")
        self.keys("ctrl+p")
        self.file_dialog("Drucken in PDF-Datei", pages)
        self.window("Print Preview")
        self.keys("Tab", "space")
        wait_for(lambda: os.path.exists(pages), "the printed pages")
        text = subprocess.run(["pdftotext", "-layout", pages, "-"], capture_output=True, text=True, check=True).stdout
        self.assertRegex(text, r"Heizkreis 1 Raumsolltemperatur Tag\.+ +22\.5 °C")
        self.keys("alt+F4")
        self.gone("Print Preview")

        # A controller of another plant: the question, which the second answer settles.
        self.pull_out()
        self.plug_in("--plant", "1")
        self.window("KALIVOR")
        self.keys("Tab", "space")
        self.window("Wählen")
        self.keys("Tab", "Tab", "space")
        self.gone("Wählen")
        self.report()

        self.keys("alt+F4")
        self.gone("KALIVOR")
        self.assertEqual(program.wait(LONG_S), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
