"""Start and end of the program."""
import configparser
import os
import unittest

from Scenario import Scenario
from Window import EXAMPLES, HZL120, HZL131, LFT205


def children_of(process_id):
    """The processes that it has started."""
    with open(f"/proc/{process_id}/task/{process_id}/children", encoding="ascii") as file:
        return [int(word) for word in file.read().split()]


class Start(Scenario):
    def test_shows_lists_tree_and_state(self):
        program = self.program()
        self.assertEqual(program.main.role, "frame")
        self.assertEqual(program.versions.name, HZL120)
        self.assertEqual(program.entries(program.versions), [HZL120, HZL131, LFT205])
        self.assertEqual(program.entries(program.plants), ["", "Heizung", "Lüftung"])
        self.assertEqual(program.state, "Ready")
        self.assertFalse(program.is_shown("Report"))

        rows = program.tree.rows()
        self.assertEqual(rows[0].name.split(), ["Anlage", "Wert", "Min.", "Max.", "Standard"])
        groups = [row.name.partition("  ")[0] for row in rows[1:]]
        self.assertEqual(groups[:4], ["Allgemein", "Heizkreis 1", "Heizkreis 2", "Warmwasser"])
        for row in rows:
            self.assertTrue(row.has("checked"), row.name)
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn(
            "Heizkreis 1 Raumsolltemperatur Tag................    21.5 °C  |     5.0 |    30.0 |    21.5 ",
            program.tree.texts(),
        )

    def test_stores_settings_but_not_those_of_the_command_line(self):
        program = self.program()
        program.close_main()
        self.assertEqual(program.process.returncode, 0)
        store = configparser.ConfigParser()
        store.optionxform = str
        store.read(os.path.join(program.settings_folder, "KALIVOR", "KALIVOR.ini"), encoding="utf-8")
        settings = store["Settings"]
        self.assertEqual(settings["Adresse"], "1")
        self.assertEqual(settings["Schnittstelle"], "1")
        self.assertEqual(settings["Inifile"], "VF.INI")
        self.assertNotEqual(settings["Inipath"].rstrip("/"), EXAMPLES.rstrip("/"))
        for key in ("MainLeft", "MainTop", "MainWidth", "MainHeight"):
            float(settings[key])

    def test_demonstration(self):
        program = self.program_on(None, "--demo", ini_path=None)
        self.assertEqual(children_of(program.process.pid), [])
        report = program.transfer("Vergleichen")
        text = report.wait_for_end()
        for name in ("Raumsolltemperatur Tag", "Heizkurve Steilheit", "Vorlauftemperatur Maximum"):
            self.assertEqual(text.count(name), 1, text)
        report.close()
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen.." + "." * 111 + "\nEmpfangen beendet\n")
        report.close()
        self.assertEqual(program.end(), 0)
        self.assertEqual(os.listdir(program.settings_folder), [])


if __name__ == "__main__":
    unittest.main()
