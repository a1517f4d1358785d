"""The parameter list by keyboard: find a parameter, compare, take over, take back, export."""
import os
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import keys, value_file

SLOPE = "Heizkreis 1 Heizkurve Steilheit"


class ParameterList(Scenario):
    def start(self):
        """On a controller that has another slope than the definitions."""
        values = value_file(self.folder(), "_Hk1KurveSteil=1.75")
        self.store = self.folder()
        line = self.controller("--values", values).device
        self.program = self.program_on(line, settings_folder=self.store)
        self.program.menu("ctrl+f")
        self.list = self.program.window("Parameterliste")

    def count_line(self, text):
        wait_for(lambda: self.list.find_all("label", text), f"the line {text!r}")

    def type(self, text):
        keys(*["space" if letter == " " else letter for letter in text])

    def compare_with_the_controller(self):
        keys("alt+v", "Down", "Down", "Down", "Down", "Return")
        self.count_line("111 von 111 · 1 verschieden")

    def answer(self, caption):
        question = self.program.window("Wählen")
        question.find("push button", caption).press()
        wait_for(lambda: not self.program.is_shown("Wählen"), "the question to go")

    def slope(self):
        return self.program.tree.row(SLOPE).name

    def test_from_search_to_export(self):
        self.start()
        wait_for(lambda: self.list.find("text", "Suche").has("focused"), "the cursor in the search field")
        self.type("steilheit")
        self.count_line("2 von 111")
        keys("Return")
        wait_for(lambda: self.program.tree.row(SLOPE).has("selected"), "the hit in the tree")
        keys("Escape")
        self.compare_with_the_controller()

        self.program.activate(self.list)
        keys("alt+e")
        self.count_line("1 von 111 · 1 verschieden")
        keys("alt+n")
        self.answer("Übernehmen")
        self.count_line("0 von 111")
        self.program.activate(self.program.main)
        self.program.tree.expand_all()
        self.assertIn("    1.75 ", self.slope())
        self.program.activate(self.list)
        keys("ctrl+z")
        self.count_line("1 von 111 · 1 verschieden")
        self.assertIn("    1.40 ", self.slope())

        path = os.path.join(self.store, "liste.csv")
        self.program.activate(self.list)
        keys("alt+b", "c")
        self.program.choose_file("Exportieren", path)
        wait_for(lambda: os.path.exists(path), "the exported file")
        with open(path, encoding="utf-8-sig") as file:
            rows = [line.rstrip("\n") for line in file if SLOPE in line]
        self.assertEqual(len(rows), 1)
        self.assertIn(";1,40;1,75;verschieden;", rows[0])
        self.assert_usable(self.program)
        self.assertEqual(self.program.end(), 0)

    def test_a_value_typed_in_the_table(self):
        self.start()
        self.type("kurvesteil")
        self.count_line("2 von 111")
        # What cannot become a value leaves the field as it was.
        keys("Down", "x", "9", "2", "comma", "5", "Return")
        self.program.activate(self.program.main)
        self.program.tree.expand_all()
        self.assertIn("    2.50 ", self.slope())
        self.program.activate(self.list)
        keys("Down", "space")
        self.count_line("2 von 111")
        self.assert_usable(self.program)


if __name__ == "__main__":
    unittest.main()
