"""The parameter list from outside: what a newcomer does, what a screen reader says, what the keyboard can do."""
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest

from Scenario import Scenario

from Bus import FocusListener, Table, wait_for
from Window import EXAMPLES, keys, value_file

NAME, VALUE, OTHER, STATE = "Name", "Wert", "Vergleich", "Zustand"
SLOPE, SLOPE_2 = "Heizkreis 1 Heizkurve Steilheit", "Heizkreis 2 Heizkurve Steilheit"
ALL = 111
LONGEST_S = 120

COLUMNS = ["Kreuz", "Nr", "Gruppe", NAME, VALUE, OTHER, "Differenz", STATE, "Einheit", "Min", "Max", "Standard"]
HIDDEN_COLUMNS = ["Variable", "Adresse", "Typ"]
# Disabled at first: there is nothing to take over.
TAKE_OVER = "Werte übernehmen…"
CONTROLS = [
    ("text", "Suche"),
    ("combo box", "Vergleichen mit:"),
    ("push button", TAKE_OVER),
    ("check box", f"angekreuzt ({ALL})"),
    ("check box", "verschieden (0)"),
    ("check box", "nicht Standard (0)"),
    ("check box", "geändert (0)"),
    ("check box", "außerhalb (0)"),
    ("table", "Parameter"),
    ("push button", "Alle gezeigten ankreuzen"),
    ("push button", "Nur die gezeigten"),
    ("push button", "Keine"),
    ("push button", "Auswahlen"),
    ("push button", "Spalten"),
    ("push button", "Ausgeben"),
]


def type_text(text):
    subprocess.run(["xdotool", "type", "--delay", "5", text], check=True)


class ListWindow(Scenario):
    def start(self, *options, **more):
        self.program = self.program_on(self.controller(*options).device, **more)
        self.open()

    def open(self):
        """With the cursor in the search field."""
        self.program.menu("ctrl+f")
        self.list = self.program.window("Parameterliste")
        self.search = self.list.find("text", "Suche")
        self.table = Table(self.list.find("table", "Parameter"))
        wait_for(lambda: self.list.has("active") and self.search.has("focused"), "the cursor in the search field")

    def count_line(self, text):
        wait_for(lambda: self.list.find_all("label", text), f"the line {text!r}")

    def search_for(self, text, line):
        type_text(text)
        self.count_line(line)

    def compare_with_controller(self):
        keys("alt+v", "Down", "End", "Return")

    def slope_in_tree(self):
        return self.program.tree.row(SLOPE).name

    def focused(self):
        """The name of the control that has the keyboard; that of a list is its label's."""
        for control in self.list.descendants():
            if control.has("focused") and control.role != "filler":
                return control.labels[0] if control.role == "combo box" else control.name
        return None

    def tab(self, key):
        before = self.focused()
        keys(key)
        return wait_for(lambda: self.focused() not in (None, before) and self.focused(), f"another than {before!r}")

    def go_to_table(self):
        keys("Down")
        wait_for(lambda: self.table.control.has("focused") or self.table.cell(0, VALUE).has("focused"), "the table")

    def value_edit(self, name):
        """The field in the cell, when it has the keyboard."""
        return wait_for(lambda: self.listener.control("text", "Wert von " + name), f"the field of {name!r}")

    def wait_for_value(self, row, text):
        wait_for(lambda: self.table.cell(row, VALUE).name == text, f"{text!r} in row {row}")

    def test_newcomer(self):
        """Finds a parameter, compares, takes over, takes back, exports: with the keyboard alone."""
        values = value_file(self.folder(), "_Hk1KurveSteil=1.75")
        self.program = self.program_on(self.controller("--values", values).device)
        self.program.tree.expand_all()
        begin = time.monotonic()
        self.open()
        self.search_for("steilheit", f"2 von {ALL}")
        keys("alt+r")
        wait_for(lambda: self.list.find_all("check box", "angekreuzt (2)"), "two marks")
        self.compare_with_controller()
        self.count_line(f"2 von {ALL} · 1 verschieden")
        self.assertEqual(self.table.texts(OTHER), ["1.75", "0.60"])
        self.assertEqual(self.table.texts(STATE), ["verschieden", "gleich"])
        self.program.activate(self.list)
        keys("alt+e")
        self.count_line(f"1 von {ALL} · 1 verschieden")
        keys("alt+n")
        question = self.program.window("Wählen")
        self.assertTrue(question.find_all("label", "1 Wert übernehmen?"))
        wait_for(lambda: question.has("active"), "the question active")
        keys("Tab", "Return")
        wait_for(lambda: not question.has("showing"), "the question answered")
        wait_for(lambda: "    1.75 " in self.slope_in_tree(), "the value of the controller")
        self.count_line(f"0 von {ALL}")
        self.program.activate(self.list)
        keys("ctrl+z")
        self.count_line(f"1 von {ALL} · 1 verschieden")
        self.assertIn("    1.40 ", self.slope_in_tree())
        self.program.activate(self.list)
        keys("alt+b")
        keys("c")
        path = os.path.join(self.program.settings_folder, "liste.csv")
        dialog = self.program.window("Exportieren")
        wait_for(lambda: dialog.has("active"), "the file dialog active")
        keys("ctrl+a")
        type_text(path)
        keys("Return")
        wait_for(lambda: os.path.exists(path) and not dialog.has("showing"), "the exported file")
        took = time.monotonic() - begin
        print(f"From the search to the exported file: {took:.1f} s")
        self.assertLess(took, LONGEST_S)
        with open(path, encoding="utf-8", newline="") as file:
            lines = file.read().split("\r\n")
        self.assertEqual(lines[0], "\ufeffReglerversion: HZL-012.0")
        titles = "Kreuz;Nr;Gruppe;Name;Wert;Vergleich;Zustand;Einheit;Min;Max;Standard"
        row = f"x;13;Heizkreis 1;{SLOPE};1,40;1,75;verschieden;;0,20;3,50;1,40"
        self.assertEqual(lines[-4:], ["", titles, row, ""])
        self.assert_usable(self.program)

    def test_screen_reader(self):
        self.start()
        self.assertEqual(self.list.role, "frame")
        for role, name in CONTROLS:
            with self.subTest(role=role, name=name):
                self.list.find(role, name)
        for role in ("push button", "check box", "text", "table"):
            self.assertTrue(all(control.name for control in self.list.find_all(role)), role)
        self.assertEqual(self.table.titles, COLUMNS + HIDDEN_COLUMNS)
        self.assertEqual({header.role for header in self.table.headers}, {"table column header"})
        self.count_line(f"{ALL} von {ALL}")
        self.search_for("steilheit", f"2 von {ALL}")
        expected = ["angekreuzt", "13", "Heizkreis 1", SLOPE, "1.40", "", "", "", "", "0.20", "3.50", "1.40"]
        self.assertEqual([self.table.cell(0, title).name for title in COLUMNS], expected)
        self.list.find("push button", "Suche leeren")
        self.assertEqual(self.table.cell(0, VALUE).description, f"Wert, {SLOPE}")
        mark = self.table.cell(0, "Kreuz")
        self.assertTrue(mark.has("checked"))
        keys("alt+k")
        wait_for(lambda: not self.table.cell(0, "Kreuz").has("checked"), "no mark")
        self.assertEqual(self.table.cell(0, "Kreuz").name, "nicht angekreuzt")
        pressed = self.list.find("check box", "angekreuzt (0)")
        self.assertFalse(pressed.has("checked"))
        keys("alt+a")
        wait_for(lambda: pressed.has("checked"), "the filter pressed")
        self.count_line(f"0 von {ALL}")
        self.assertEqual(pressed.name, "angekreuzt (0)")

    def test_order_of_tab(self):
        self.start()
        names = [name for _, name in CONTROLS if name != TAKE_OVER]
        forth = [self.tab("Tab") for _ in names]
        self.assertEqual(forth, names[1:] + names[:1])
        back = [self.tab("shift+Tab") for _ in names]
        self.assertEqual(back, forth[-2::-1] + forth[-1:])

    def test_editing(self):
        self.start()
        self.listener = FocusListener()
        self.addCleanup(self.listener.close)
        self.search_for("steilheit", f"2 von {ALL}")
        self.go_to_table()
        # What cannot be is not taken, and the field says why.
        keys("F2", "9")
        edit = self.value_edit(SLOPE)
        wait_for(lambda: edit.description == "größer als 3.50", "the reason")
        self.assertEqual(edit.text, "1.40")
        keys("1", "comma", "5", "Escape")
        wait_for(lambda: self.table.cell(0, VALUE).has("focused"), "the cell")
        self.assertEqual(self.table.texts(VALUE), ["1.40", "0.60"])
        # Typing begins at once, Enter goes down, the arrows go on.
        keys("1", "comma", "5", "Return", "period", "9", "Return")
        self.wait_for_value(0, "1.50")
        self.wait_for_value(1, "0.90")
        self.count_line(f"2 von {ALL}")
        self.assertTrue(self.list.find_all("check box", "geändert (2)"))
        keys("Up", "F2")
        self.value_edit(SLOPE)
        keys("Escape")
        self.program.activate(self.program.main)
        self.program.tree.expand_all()
        self.assertIn("    1.50 ", self.slope_in_tree())

    def test_marks_hits_and_copies(self):
        self.start()
        self.search_for("steilheit", f"2 von {ALL}")
        self.go_to_table()
        keys("space")
        wait_for(lambda: not self.table.cell(0, "Kreuz").has("checked"), "no mark")
        self.assertTrue(self.table.cell(1, "Kreuz").has("checked"))
        # In the clipboard are the titles and the row; the search field shows what it gets.
        keys("ctrl+c", "alt+s", "ctrl+v")
        wait_for(lambda: "steilheit" not in self.search.text, "the copied row")
        self.assertIn(f"\t{SLOPE}\t", self.search.text)
        self.assertIn("\t1,40\t", self.search.text)
        keys("ctrl+a")
        self.search_for("steilheit", f"2 von {ALL}")
        # Enter goes through the hits and round, Shift+Enter back; the tree goes along.
        for key, hit in (("Return", SLOPE), ("Return", SLOPE_2), ("Return", SLOPE), ("shift+Return", SLOPE_2)):
            keys(key)
            wait_for(lambda name=hit: self.program.tree.row(name).has("selected"), f"{hit!r} in the tree")
        self.assertFalse(self.program.tree.row(SLOPE).has("checked"))
        self.assertTrue(self.program.tree.row(SLOPE_2).has("checked"))
        keys("Escape")
        self.count_line(f"{ALL} von {ALL}")

    def test_columns_and_place(self):
        store = self.folder()
        self.start(settings_folder=store)
        self.search_for("heizkreis", f"26 von {ALL}")
        self.go_to_table()
        # The current cell is in the value's column: it goes past the name, and orders the rows.
        keys("ctrl+shift+Left", "alt+p")
        keys("s")
        titles = ["Kreuz", "Nr", "Gruppe", VALUE, NAME, OTHER, STATE, "Einheit", "Min", "Max", "Standard"]
        wait_for(lambda: self.table.shown_titles() == titles, "the other order")
        wait_for(lambda: self.numbers() == sorted(self.numbers()), "the smallest value in front")
        names = self.table.texts(NAME)
        command = ["xdotool", "search", "--onlyvisible", "--name", "^Parameterliste$"]
        command += ["windowsize", "--sync", "900", "480", "windowmove", "--sync", "160", "140"]
        subprocess.run(command, check=True)
        place = wait_for(lambda: self.list.place[2:] == (900, 480) and self.list.place, "the place")
        self.assertEqual(self.program.end(), 0)

        self.start(settings_folder=store)
        self.search_for("heizkreis", f"26 von {ALL}")
        self.assertEqual(self.table.shown_titles(), titles)
        self.assertEqual(self.table.texts(NAME), names)
        wait_for(lambda: self.list.place == place, f"the list at {place}")

    def numbers(self):
        return [float(text) for text in self.table.texts(VALUE)]

    def test_findings(self):
        folder = self.folder()
        for name in os.listdir(EXAMPLES):
            shutil.copy(os.path.join(EXAMPLES, name), folder)
        path = os.path.join(folder, "HZL120.TXT")
        with open(path, encoding="cp1252", newline="") as file:
            lines = file.readlines()
        row = next(i for i, line in enumerate(lines) if SLOPE in line)
        lines[row] = lines[row].replace("  int  ", "  imt  ")
        lines.insert(row, lines[row - 1])
        with open(path, "w", encoding="cp1252", newline="") as file:
            file.writelines(lines)
        program = self.program_on(self.controller().device, ini_path=folder)
        program.menu("alt+w", "d")
        window = program.window("Definitionen prüfen")
        window.find("label", "1 Fehler, 2 Warnungen in 1 Datei")
        table = Table(window.find("table", "Befunde"))
        self.assertEqual(table.titles, ["Datei", "Zeile", "Schwere", "Text"])
        self.assertEqual(table.texts("Datei"), ["HZL120.TXT"] * 3)
        found = list(zip(table.texts("Zeile"), table.texts("Schwere")))
        self.assertEqual(found, [(str(row + 1), "Warnung"), (str(row + 2), "Fehler"), (str(row + 1), "Warnung")])
        self.assertIn("Typ „imt“ ist unbekannt", table.cell(1, "Text").name)
        wait_for(lambda: window.has("active"), "the findings active")
        keys("Escape")
        wait_for(lambda: not window.has("showing"), "the findings closed")
        self.assert_usable(program)

    def test_reading_is_aborted(self):
        """While it lasts no other window takes input; what was read stays, and nothing old stands for the rest."""
        self.start("--paced", "--fault", "late:60")
        self.compare_with_controller()
        progress = self.program.window("Regler lesen")
        # The program takes a while for each answer, so they are searched once only.
        labels = [child for child in progress.children if child.role == "label"]
        patterns = rf"[1-9]\d* von {ALL}", r"noch \d+ s"
        wait_for(
            lambda: all(re.fullmatch(pattern, label.name) for pattern, label in zip(patterns, labels)),
            "how many there are, and how long it takes",
        )
        self.assertFalse(self.list.enabled)
        self.assertFalse(self.program.main.enabled)
        keys("Escape")
        wait_for(lambda: not progress.has("showing"), "the window of the reading closed")
        self.list.find("label", "Abgebrochen; der Rest wurde nicht gelesen")
        states = self.table.texts(STATE)
        read = states.count("gleich")
        self.assertTrue(0 < read < ALL, read)
        self.assertEqual(states, ["gleich"] * read + [""] * (ALL - read))
        self.assertEqual(self.table.texts(OTHER)[read:], [""] * (ALL - read))
        self.assert_usable(self.program)

    def test_an_unread_parameter(self):
        """The controller refuses a word each time that it is asked for it."""
        folder = tempfile.mkdtemp(prefix="kalivor-settings-")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        os.mkdir(os.path.join(folder, "KALIVOR"))
        with open(os.path.join(folder, "KALIVOR", "KALIVOR.ini"), "w", encoding="utf-8") as file:
            file.write("[SicherSenden]\nRuhezeit=500\n")  # the line rests behind each refusal
        self.start("--fault", "error-05:0.1", "--seed", "4", settings_folder=folder)
        self.compare_with_controller()
        self.count_line(f"{ALL} von {ALL} · 1 verschieden")
        states = self.table.texts(STATE)
        self.assertEqual(states.count("gleich"), ALL - 1)
        unread = states.index("nicht gelesen")
        self.assertEqual(self.table.cell(unread, OTHER).name, "")


if __name__ == "__main__":
    unittest.main()
