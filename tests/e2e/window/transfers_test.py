"""Receiving, comparing and the standard values."""
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import HZL120, HZL131, LFT205, value_file

DAY = "Heizkreis 1 Raumsolltemperatur Tag"


class Transfers(Scenario):
    def changed_controller(self, *options):
        """A controller in which two values differ from the standard."""
        folder = self.controller().folder
        file = value_file(folder, "_Hk1RaumSollTag=22.5", "_Standort=Keller")
        return self.controller("--values", file, *options)

    def open(self, controller):
        program = self.program_on(controller.device)
        program.activate(program.main)
        return program

    def groups(self, program):
        return [row.name.partition("  ")[0] for row in program.tree.rows()[1:]]

    def test_receive(self):
        program = self.open(self.changed_controller())
        program.tree.expand_all()
        self.assertIn("    21.5 °C", program.tree.row(DAY).name)

        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen.." + "." * 111 + "\nEmpfangen beendet\n")
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        self.assertEqual(program.tree.row("Standort....").name.rstrip(" \0").rpartition(". ")[2], "Keller")
        self.assert_usable(program)
        report.close()
        self.assert_usable(program)

    def test_abort_in_the_middle(self):
        program = self.open(self.controller("--fault", "late:300"))
        self.assertEqual(program.transfer_nothing(), "Empfangen..\nEmpfangen beendet\n")
        report = program.transfer("Empfangen")
        report.wait_for_text("Empfangen....")
        self.assertEqual(program.state, "Busy")
        self.assertFalse(program.main.enabled)
        self.assertFalse(report.button("OK").enabled)
        self.assertFalse(report.button("Print").enabled)

        report.button("Abbrechen").press()
        text = report.wait_for_end()
        self.assertTrue(text.endswith("\nEmpfangen abgebrochen\n"), text)
        self.assertLess(text.count("."), 100)
        self.assertFalse(report.button("Abbrechen").enabled)
        report.close()
        self.assert_usable(program)
        self.assertEqual(program.transfer_nothing(), "Empfangen..\nEmpfangen beendet\n")

    def test_receive_from_another_version(self):
        program = self.open(self.controller("--controller", LFT205))
        self.assertEqual(program.versions.name, HZL120)
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen.." + "." * 77 + "\nEmpfangen beendet\n")
        self.assertEqual(program.versions.name, LFT205)
        self.assertEqual(program.entries(program.plants), ["", "Lüftung", "Klima"])
        self.assertNotIn("Heizkreis 1", self.groups(program))
        self.assert_usable(program)

    def test_receive_from_another_plant_type(self):
        program = self.open(self.controller("--plant", "1"))
        self.assertIn("Zuluft", self.groups(program))
        report = program.transfer("Empfangen")
        self.assertTrue(report.wait_for_end().endswith(".\nEmpfangen beendet\n"))
        wait_for(lambda: program.plants.name == "Heizung", "the plant type selected")
        self.assertNotIn("Zuluft", self.groups(program))
        self.assert_usable(program)

    def test_compare_with_a_difference(self):
        program = self.open(self.changed_controller())
        program.tree.expand_all()
        report = program.transfer("Vergleichen")
        text = report.wait_for_end()
        difference = f"\nÄnderung bei: {DAY}\n   PC    :     21.5 \n   Regler:     22.5 ."
        self.assertIn(difference, text)
        self.assertIn("\nÄnderung bei: Standort\n", text)
        self.assertEqual(text.count("Änderung bei"), 2)
        self.assertTrue(text.endswith(".\nVergleich beendet\n"), text)
        self.assertIn("    21.5 °C", program.tree.row(DAY).name)
        self.assert_usable(program)

    def test_compare_with_another_version(self):
        program = self.open(self.controller("--controller", HZL131))
        report = program.transfer("Vergleichen")
        self.assertEqual(
            report.wait_for_end(), f"Vergleichen..\nAndere ReglerVersion: {HZL131}\nVergleich abgebrochen\n"
        )
        self.assertEqual(program.versions.name, HZL120)
        self.assert_usable(program)

    def test_standard(self):
        program = self.open(self.changed_controller())
        program.tree.expand_all()
        program.transfer("Empfangen").wait_for_end()
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        program.press("Standard")
        wait_for(lambda: "    21.5 °C" in program.tree.row(DAY).name, "the standard value")
        self.assertIn(". Heizzentrale Haus 01", program.tree.row("Standort....").name)
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
