"""The window when descriptors or memory run out. The limits are set while it runs: it has started with enough."""
import os
import resource
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import ENCODING, keys

MIB = 1 << 20
# Enough for a message box, and far less than the large address list takes.
LEFT = 32 * MIB
# The sanitizers reserve terabytes of address space, so a program with more than this is built with them.
SANITIZED = 1 << 40
SMALL, LARGE = "AB1-123.4", "AB1-124.0"


def write_definitions(folder):
    """Two versions; the second has an address list of 400,000 lines."""
    texts = {
        "VF.INI": f"Version  Adressen  Definitionen  Anlagen  Kennung\r\n{SMALL}  -  D.TXT  A B  WR\r\n"
        f"{LARGE}  A.TXT  D.TXT  A B  WR\r\n",
        "D.TXT": "Heading\r\nGruppe  Parameter  0  9  0  -  0  0  int  1F00  V1  A B -  -\r\n",
        "A.TXT": "Heading\r\n" + "".join(f"V{i}  1F00\r\n" for i in range(1, 400_001)),
    }
    for name, text in texts.items():
        with open(os.path.join(folder, name), "w", encoding="cp1252", newline="") as file:
            file.write(text)


class Limits(Scenario):
    def limit(self, program, kind, count):
        """Sets a limit of the running program. Gives back a function that takes it away again."""
        pid = program.process.pid
        before = resource.prlimit(pid, kind)
        resource.prlimit(pid, kind, (count, before[1]))
        return lambda: resource.prlimit(pid, kind, before)

    def lowest_free_descriptor(self, program):
        used = {int(name) for name in os.listdir(f"/proc/{program.process.pid}/fd")}
        return next(number for number in range(len(used) + 1) if number not in used)

    def address_space(self, program):
        with open(f"/proc/{program.process.pid}/status", encoding=ENCODING) as status:
            size = next(line for line in status if line.startswith("VmSize:"))
        return int(size.split()[1]) * 1024

    def select_version(self, program, name, key):
        program.activate(program.main)
        program.tree.go_to_top()
        for _ in range(4):
            if program.versions.has("focused"):
                break
            keys("shift+Tab")
        wait_for(lambda: program.versions.has("focused"), "the focus in the versions")
        keys(key)
        wait_for(lambda: program.versions.name == name, f"version {name}")

    def test_without_descriptors(self):
        folder = self.folder()
        path = os.path.join(folder, "a.qpf")
        program = self.program()
        if self.address_space(program) > SANITIZED:
            self.skipTest("UndefinedBehaviorSanitizer opens a pipe to look at an object")
        program.menu("ctrl+s")
        program.choose_file("Speichern", path)
        wait_for(lambda: program.file == path and os.path.getsize(path), "the file")
        with open(path, "rb") as file:
            saved = file.read()
        program.transfer_nothing()

        # What is open stays open.
        give_back = self.limit(program, resource.RLIMIT_NOFILE, self.lowest_free_descriptor(program))
        report = program.transfer("Empfangen")
        self.assertEqual(
            report.wait_for_end(), "Empfangen..\nERROR: COM 1 nicht verfügber\nEmpfangen abgebrochen\n"
        )
        report.close()
        give_back()

        # A new window needs one for a moment, to share its picture with the display.
        give_back = self.limit(program, resource.RLIMIT_NOFILE, self.lowest_free_descriptor(program) + 1)
        program.menu("ctrl+s")
        self.assertEqual(
            program.message(), f"Fehler beim schreiben von\n{path}\nZu viele geöffnete Dateien."
        )
        with open(path, "rb") as file:
            self.assertEqual(file.read(), saved)
        self.assertEqual(os.listdir(folder), ["a.qpf"])
        self.assert_usable(program)

        give_back()
        report = program.transfer("Empfangen")
        self.assertTrue(report.wait_for_end().endswith("\nEmpfangen beendet\n"))
        report.close()
        self.assert_usable(program)

    def test_without_memory(self):
        folder = self.folder()
        write_definitions(folder)
        program = self.program_on(self.controller().device, ini_path=folder)
        if self.address_space(program) > SANITIZED:
            self.skipTest("AddressSanitizer needs terabytes of address space itself")
        self.assertEqual(program.versions.name, SMALL)

        give_back = self.limit(program, resource.RLIMIT_AS, self.address_space(program) + LEFT)
        self.select_version(program, LARGE, "Down")
        self.assertEqual(program.message(), "Der Arbeitsspeicher reicht nicht aus.")
        self.assert_usable(program)

        give_back()
        self.select_version(program, SMALL, "Up")
        self.select_version(program, LARGE, "Down")
        self.assertFalse(program.is_shown("KALIVOR") and program.find_window("KALIVOR", ("alert",)))
        program.activate(program.main)
        program.tree.expand_all()
        self.assertTrue(program.tree.find("Parameter...."))
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
