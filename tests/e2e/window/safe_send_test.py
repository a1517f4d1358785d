"""Sending safely from outside: by keyboard, as a screen reader hears it, and after the program was killed."""
import glob
import os
import signal
import unittest

from Scenario import Scenario

from Bus import Table, wait_for
from Window import keys, value_file

NAME, OLD, NEW, NOW, STATE = "Name", "Regler (alt)", "PC (neu)", "Regler (jetzt)", "Zustand"
DAY, SLOPE = "Heizkreis 1 Raumsolltemperatur Tag", "Heizkreis 1 Heizkurve Steilheit"
# In the controller, and on the PC.
PLANT = ["_Hk1RaumSollTag=22.5", "_Hk1KurveSteil=1.60"]


class SafeSend(Scenario):
    def setUp(self):
        self.store = self.folder()
        self.values = os.path.join(self.store, "Wertedateien")
        os.makedirs(os.path.join(self.store, "KALIVOR"))
        with open(os.path.join(self.store, "KALIVOR", "KALIVOR.ini"), "w", encoding="utf-8") as settings:
            settings.write(f"[Settings]\nUserpath={self.values}\n")

    def plant(self, *options):
        """The controller with the plant's values."""
        return self.controller("--values", value_file(self.store, *PLANT), *options)

    def start(self, line):
        return self.program_on(line, settings_folder=self.store)

    def open(self, program, stroke="ctrl+shift+s", title="Sicher senden"):
        program.menu(*stroke.split())
        return self.opened(program, title)

    def opened(self, program, title):
        window = program.window(title)
        wait_for(lambda: window.has("active"), f"{title!r} active")
        return window

    def sentence(self, window, text):
        wait_for(lambda: window.has("showing") and window.find_all("label", text), f"the sentence {text!r}")

    def table(self, window):
        return Table(window.find("table", "Werte"))

    @staticmethod
    def lines(path):
        if not os.path.exists(path):
            return 0
        with open(path, "rb") as file:
            return file.read().count(b"\n")

    def test_newcomer(self):
        """Looks at what differs, leaves one out, sends, reads the account, repeats, takes back: by keyboard alone."""
        controller = self.plant("--fault", "ignore-write:1:1")
        program = self.start(controller.device)
        window = self.open(program)
        self.sentence(window, "2 von 111 angekreuzten Werten sind verschieden; sie werden in den Regler geschrieben.")
        table = self.table(window)
        self.assertEqual(table.shown_titles(), ["Kreuz", "Nr", NAME, OLD, NEW, "Einheit", STATE])
        self.assertEqual(table.texts(NAME), [DAY, SLOPE])
        self.assertEqual(table.texts(OLD), ["22.5", "1.60"])
        self.assertEqual(table.texts(NEW), ["21.5", "1.40"])
        self.assertEqual(table.texts(STATE), ["verschieden"] * 2)
        self.assertEqual(table.cell(0, "Kreuz").name, "angekreuzt")
        self.assertEqual(table.cell(0, NEW).description, f"{NEW}, {DAY}")
        window.find("push button", "2 Werte senden")
        keys("Down", "space")
        window.find("push button", "1 Wert senden")
        self.assertEqual(table.cell(1, "Kreuz").name, "nicht angekreuzt")
        self.assertFalse(glob.glob(os.path.join(self.values, "*", "*")), "nothing is kept before it is sent")
        keys("Return")
        self.sentence(window, "1 abweichend")
        backups = glob.glob(os.path.join(self.values, "Sicherungen", "*.qpf"))
        self.assertEqual(len(backups), 1)
        self.assertEqual(window.find("text", "Sicherung").text, backups[0])
        table = self.table(window)
        self.assertEqual(table.shown_titles(), ["Nr", NAME, OLD, NEW, NOW, "Einheit", STATE])
        self.assertEqual([table.cell(0, title).name for title in (OLD, NEW, NOW)], ["22.5", "21.5", "22.5"])
        keys("alt+f")
        self.sentence(window, "1 geprüft")
        self.assertEqual(table.texts(NOW), ["21.5"])
        keys("alt+z")
        back = self.opened(program, "Zurücknehmen")
        back.find("push button", "1 Wert zurückschreiben")
        keys("Return")
        self.sentence(back, "1 geprüft")
        keys("Escape")
        wait_for(lambda: not back.has("showing"), "the window closed")
        self.assert_usable(program)
        program.end()
        self.assertEqual(controller.memory(), self.plant().memory(), "all is as it was")

    def test_order_of_tab(self):
        program = self.start(self.plant().device)
        window = self.open(program)
        wait_for(lambda: self.table(window).cell(0, NAME).has("focused"), "the table")
        for caption in ("Alle", "Keine", "Ausgeben", "2 Werte senden", "Abbrechen"):
            keys("Tab")
            wait_for(lambda name=caption: window.find("push button", name).has("focused"), f"the focus at {caption!r}")
        keys("space")
        wait_for(lambda: not window.has("showing"), "the window closed")
        self.assert_usable(program)

    def test_receiving_is_taken_back(self):
        program = self.start(self.plant().device)
        window = self.open(program, "alt+w e", "Sicher empfangen")
        window.find("push button", "2 Werte übernehmen")
        keys("Return")
        wait_for(lambda: not window.has("showing"), "the window closed")
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn("    22.5 ", program.tree.row(DAY).name)
        keys("ctrl+z")
        wait_for(lambda: "    21.5 " in program.tree.row(DAY).name, "the value of before")
        self.assert_usable(program)

    def test_a_killed_program(self):
        """After its first word: the next start says so, before anything else can be done, and finishes it."""
        controller = self.plant("--fault", "late:120")
        program = self.start(controller.device)
        window = self.open(program)
        window.find("push button", "2 Werte senden")
        journal = os.path.join(self.store, "KALIVOR", "Sendung.txt")
        keys("Return")
        header = wait_for(lambda: self.lines(journal), "the journal")
        wait_for(lambda: self.lines(journal) > header, "the first word begun")
        program.process.send_signal(signal.SIGKILL)
        program.process.wait(10)

        program = self.start(controller.device)
        question = self.opened(program, "Unterbrochene Sendung")
        text = question.find("label").name
        self.assertIn("Eine Sendung an den Regler wurde unterbrochen: 1 von 2 Werten geschrieben.", text)
        self.assertIn("HZL-012.0, Adresse 1", text)
        keys("Return")
        wait_for(lambda: not question.has("showing"), "the question answered")
        window = self.opened(program, "Zu Ende senden")
        keys("Return")
        wait_for(lambda: any(label.name.endswith("geprüft") for label in window.find_all("label")), "the account")
        keys("Escape")
        wait_for(lambda: not window.has("showing"), "the window closed")
        self.assert_usable(program)
        window = self.open(program, "alt+w i", "Sicherungen")
        backups = Table(window.find("table", "Sicherungen"))
        self.assertEqual(backups.texts("Regler"), ["HZL-012.0"])
        self.assertEqual(backups.texts("Werte"), ["111"])
        for caption in ("Mit PC vergleichen", "Mit Regler vergleichen und wiederherstellen…", "Aufräumen…"):
            self.assertTrue(window.find("push button", caption).enabled, caption)
        keys("Escape")
        program.end()
        self.assertEqual(controller.memory(), self.controller().memory(), "the PC's values")


if __name__ == "__main__":
    unittest.main()
