"""The telegrams from outside: by keyboard, while a transfer runs, and as a screen reader hears them."""
import re
import unittest

from Scenario import Scenario

from Bus import Table, wait_for
from Window import keys

EMPTY = "Noch ist nichts gesendet worden. Sobald der PC mit dem Regler spricht, steht hier jedes Telegramm."
CONTROLS = [
    ("combo box", "Zeigen:"),
    ("text", "Suche"),
    ("push button", "Weitersuchen"),
    ("check box", "nur Treffer"),
    ("table", "Telegramme"),
    ("check box", "Anhalten"),
    ("push button", "Kopieren"),
    ("push button", "Speichern unter…"),
    ("push button", "Schließen"),
]


class Telegrams(Scenario):
    def start(self, *options):
        self.program = self.program(*options)
        self.program.menu("alt+w", "t")
        self.window = self.program.window("Telegramme")
        wait_for(lambda: self.window.has("active"), "the window active")

    def table(self):
        return Table(self.window.find("table", "Telegramme"))

    def test_a_transfer_is_seen_while_it_runs(self):
        self.start("--fault", "bad-checksum:1:1")
        for role, name in CONTROLS:
            with self.subTest(role=role, name=name):
                self.window.find(role, name)
        # The program takes a while for each answer, so it is searched once only.
        count = self.window.find_all("label", EMPTY)[0]
        self.program.press("Empfangen")
        wait_for(lambda: re.fullmatch(r"[1-9]\d* Anfragen", count.name), "telegrams")
        self.assertFalse(self.program.main.enabled, "the transfer runs")
        wait_for(lambda: self.program.main.enabled, "the end of the transfer")
        table = self.table()
        self.assertEqual(table.titles, ["Nr", "Zeit", "Dauer (ms)", "Versuch", "Richtung", "Zeichen", "Bedeutung"])
        self.assertEqual(table.cell(0, "Bedeutung").name, "Gerät 1: Versionsabfrage")
        self.assertRegex(table.cell(1, "Bedeutung").name, "^Prüfsumme falsch, .. statt ..$")
        self.assertEqual(table.cell(1, "Richtung").name, "Antwort")

    def test_keys(self):
        """Quality, and back; Escape closes."""
        self.start()
        keys("alt+q")
        wait_for(lambda: self.window.find_all("label", "Noch ist kein Telegramm gesendet worden."), "the hint")
        self.window.find("radio button", "seit dem Start")
        keys("alt+l")
        keys("Escape")
        wait_for(lambda: not self.window.has("showing"), "the window closed")
        self.assert_usable(self.program)


if __name__ == "__main__":
    unittest.main()
