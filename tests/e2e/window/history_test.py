"""The history from outside: switched on, filled by transfers, found again after the program was killed."""
import os
import unittest

from Scenario import Scenario

from Bus import Table, wait_for
from Window import keys, type_text, value_file


class History(Scenario):
    def setUp(self):
        self.store = self.folder()
        self.simulator = self.controller("--values", value_file(self.store, "_Hk1KurveSteil=1.60"))

    def open(self):
        """The program with its history."""
        program = self.program_on(self.simulator.device, settings_folder=self.store)
        program.menu("alt+w", "l")
        return program, self.opened(program, "Verlauf")

    def opened(self, program, title):
        window = program.window(title)
        wait_for(lambda: window.has("active"), f"{title!r} active")
        return window

    def entries(self, window, count):
        def shown():
            table = Table(window.find("table", "Einträge"))
            return table if table.rows == count else None
        return wait_for(shown, f"{count} entries")

    def test_newcomer(self):
        """Switches it on, names himself and the plant, works, remarks, and finds it all again: by keyboard alone."""
        program, window = self.open()
        wait_for(lambda: window.find_all("label", "Noch ist nichts aufgezeichnet."), "the hint")
        keys("alt+f")
        wait_for(lambda: window.find("check box", "Verlauf führen").has("checked"), "kept")
        keys("alt+t")
        type_text("Anna")
        keys("alt+w")
        self.opened(program, "Anlage wählen")
        type_text("Kesselhaus")
        keys("Return")
        form = self.opened(program, "Neue Anlage")
        self.assertEqual(form.find("text", "Name der Anlage").text, "Kesselhaus")
        keys("Return")
        wait_for(lambda: window.find_all("label", "Kesselhaus"), "the plant chosen")
        keys("Escape")

        program.transfer("Empfangen")
        program.menu("alt+w", "l")
        window = self.opened(program, "Verlauf")
        table = self.entries(window, 1)
        self.assertEqual(table.texts("Art"), ["empfangen"])
        self.assertEqual(table.texts("Anlage"), ["Kesselhaus"])
        self.assertEqual(table.texts("Techniker"), ["Anna"])
        keys("alt+m")
        type_text("Brenner gewartet")
        keys("Return")
        wait_for(lambda: "Brenner gewartet" in window.find("text", "Bemerkungen").text, "the remark")

        os.kill(program.process.pid, 9)
        program.process.wait()
        program, window = self.open()
        table = self.entries(window, 1)
        self.assertEqual(table.texts("Bemerkung"), ["Brenner gewartet"])
        self.assertTrue(window.find("check box", "Verlauf führen").has("checked"))
        keys("Escape")
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
