"""kalivor-cli of Windows against kalivor-sim, over a port that is a pseudo-terminal: output, status and files are byte
for byte those of Linux.

KALIVOR_CLI_EXE, KALIVOR_CLI, KALIVOR_SIM and KALIVOR_EXAMPLES name the programs and the example.
"""
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from wine import Wine, windows_path

CLI_EXE = os.environ["KALIVOR_CLI_EXE"]
CLI = os.environ["KALIVOR_CLI"]
SIM = os.environ["KALIVOR_SIM"]
EXAMPLES = os.environ["KALIVOR_EXAMPLES"]

CIRCUIT = ["--uncheck", "all", "--check", "group=Heizkreis 1"]
WATER = ["--uncheck", "all", "--check", "group=Warmwasser"]
VALUE = "_Hk1RaumSollTag=22.5"
# A controller of another version or plant than the one that is chosen.
OTHER_PLANT = ["--plant", "3"]

# Which exchange a reply meets that comes after its time is a matter of milliseconds, on one system as well.
FAULTS = ["silent", "late:350", "lost-byte", "doubled-byte", "flipped-bit", "bad-checksum", "split", "noise",
          "error-06", "wrong-length", "echo-only", "foreign-reply", "unplug"]


class Simulator:
    """A running kalivor-sim at the device that both systems know by one name."""

    def __init__(self, device, options):
        self.device = device
        self.process = subprocess.Popen([SIM, "--ini-path", EXAMPLES, "--link", device] + options,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        if not self.process.stdout.readline():
            raise AssertionError("kalivor-sim did not start")

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.process.terminate()
        self.process.communicate()


class Reports(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.device = os.path.join(cls.folder, "regler")
        cls.wine = Wine()
        cls.wine.map_ports({"COM9": cls.device})
        # Started once, it starts the next program quickly.
        cls.wine.run([CLI_EXE, "--program-version"])

    @classmethod
    def tearDownClass(cls):
        cls.wine.__exit__()
        shutil.rmtree(cls.folder)

    def on_linux(self, arguments):
        # The language of dates is the system's.
        environment = dict(os.environ, XDG_CONFIG_HOME=self.folder, LC_ALL="en_US.UTF-8")
        return subprocess.run([CLI, "--ini-path", EXAMPLES, "--port", self.device] + arguments, env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def on_windows(self, arguments):
        return self.wine.run([CLI_EXE, "--ini-path", windows_path(EXAMPLES), "--port", "COM9"] + arguments)

    def both(self, arguments, simulator=(), files=()):
        """Runs the command on both systems, each with a fresh simulator, and returns what both did."""
        outcomes = []
        for name, run, path in (("linux", self.on_linux, str), ("windows", self.on_windows, windows_path)):
            place = os.path.join(self.folder, name)
            os.makedirs(place, exist_ok=True)
            with Simulator(self.device, list(simulator)):
                done = run([path(os.path.join(place, word[1:])) if word.startswith("@") else word
                            for word in arguments])
            # The only text in which the systems may differ is the name of a file or port.
            error = done.stderr.replace(windows_path(place).encode() + b"\\", b"").replace(place.encode() + b"/", b"")
            error = error.replace(b"COM9", self.device.encode())
            outcomes.append((done.returncode, done.stdout.decode(), error.decode()))
        for file in files:
            contents = []
            for name in ("linux", "windows"):
                with open(os.path.join(self.folder, name, file), "rb") as opened:
                    contents.append(opened.read())
            self.assertEqual(contents[1], contents[0], file)
        self.assertEqual(outcomes[1], outcomes[0])
        return outcomes[1]

    def test_identify(self):
        status, out, _ = self.both(["identify"])
        self.assertEqual((status, out), (0, "HZL-012.0\n"))

    def test_receive_everything_and_save(self):
        status, out, _ = self.both(["receive", "--save", "@alles.qpf"], files=["alles.qpf"])
        self.assertEqual(status, 0)
        self.assertTrue(out.endswith("\nEmpfangen beendet\n"), out[-200:])

    def test_send_a_value(self):
        status, out, _ = self.both(["send", "--set", VALUE, "--uncheck", "all", "--check", "_Hk1RaumSollTag"])
        self.assertEqual(status, 0)
        self.assertTrue(out.endswith("\nSenden beendet\n"), out[-200:])

    def test_compare_equal(self):
        self.assertEqual(self.both(["compare"] + CIRCUIT)[0], 0)

    def test_compare_different(self):
        status, out, _ = self.both(["compare", "--set", VALUE] + CIRCUIT)
        self.assertEqual(status, 1)
        self.assertIn("22.5", out)

    def test_a_question_without_an_answer(self):
        status, _, error = self.both(["send"] + CIRCUIT, simulator=OTHER_PLANT)
        self.assertEqual(status, 4)
        self.assertIn("Bitte wählen Sie:", error)

    def test_another_version_is_found(self):
        self.both(["receive"] + CIRCUIT, simulator=["--controller", "HZL-013.1"])

    def test_a_controller_at_the_other_rate_and_address(self):
        self.assertEqual(self.both(["identify", "--address", "7"],
                                   simulator=["--address", "7", "--rate", "19200"])[0], 0)

    def test_nobody_answers(self):
        self.assertEqual(self.both(["receive"] + CIRCUIT, simulator=["--fault", "silent"])[0], 3)

    def test_texts_without_a_controller(self):
        for command in (["versions"], ["plants"], ["params"], ["tree"], ["pages", "--date", "2026-01-02"],
                        ["check-definitions"], ["--help"], ["receive", "--set", "nichts=1"], ["show", "fehlt.qpf"]):
            with self.subTest(" ".join(command)):
                self.both(command)

    def test_a_value_file_of_the_one_is_read_by_the_other(self):
        self.both(["standard", "--save", "@standard.qpf"], files=["standard.qpf"])
        self.both(["show", "@standard.qpf"])
        self.both(["params", "--load", "@standard.qpf"])

    def test_names_in_all_characters(self):
        self.both(["standard", "--save", "@Größe 日本 😀.qpf"], files=["Größe 日本 😀.qpf"])

    def test_a_paced_line_with_echo(self):
        self.assertEqual(self.both(["receive"] + WATER, simulator=["--paced", "--echo"])[0], 0)


    def test_ctrl_c_ends_a_transfer(self):
        arguments = ["receive"]
        linux = lambda: subprocess.Popen([CLI, "--ini-path", EXAMPLES, "--port", self.device] + arguments,
                                         stdout=subprocess.PIPE)
        windows = lambda: self.wine.start([CLI_EXE, "--ini-path", windows_path(EXAMPLES), "--port", "COM9"] + arguments,
                                          stdout=subprocess.PIPE)
        for start in (linux, windows):
            with Simulator(self.device, ["--paced"]):
                program = start()
                time.sleep(2)
                program.send_signal(signal.SIGINT)
                out = program.communicate(timeout=30)[0].decode()
            self.assertRegex(out, r"^Empfangen\.+\nEmpfangen abgebrochen\n$")
            self.assertEqual(program.returncode, 3)


def fault_test(fault, echo):
    def test(self):
        options = ["--seed", "7", "--fault", fault + ":0.4:6"] + (["--echo"] if echo else [])
        _, out, _ = self.both(["receive"] + WATER, simulator=options)
        self.assertRegex(out, r"\nEmpfangen (beendet|abgebrochen)\n$")

    return test


for kind in FAULTS:
    for with_echo in (False, True):
        name = "test_fault_" + kind.replace("-", "_").replace(":", "_") + ("_echo" if with_echo else "")
        setattr(Reports, name, fault_test(kind, with_echo))


if __name__ == "__main__":
    unittest.main(verbosity=2)
