"""Finding the controller from outside: by keyboard, as a screen reader hears it, and what stays stored."""
import os
import unittest

from Scenario import Scenario

from Bus import Table, wait_for
from Window import keys

CONTROLS = [
    ("table", "Schnittstellen"),
    ("push button", "Suchen"),
    ("check box", "alle Adressen 0 bis 255"),
    ("push button", "Zuordnen…"),
    ("table", "Antworten"),
    ("push button", "Übernehmen"),
    ("push button", "Schließen"),
]


class Connection(Scenario):
    def setUp(self):
        self.store = self.folder()
        self.silent = self.controller("--fault", "silent")
        self.present = self.controller("--plant", "1")
        os.makedirs(os.path.join(self.store, "KALIVOR"))
        self.settings = os.path.join(self.store, "KALIVOR", "KALIVOR.ini")
        with open(self.settings, "w", encoding="utf-8") as settings:
            settings.write(f"[Ports]\nCOM1={self.silent.device}\nCOM2={self.present.device}\n")

    def start(self):
        self.program = self.program_on(self.silent.device, settings_folder=self.store)
        self.program.menu("alt+w", "v")
        self.window = self.program.window("Verbindung")
        wait_for(lambda: self.window.has("active"), "the window active")

    def stored(self):
        with open(self.settings, encoding="utf-8") as settings:
            return settings.read()

    def label(self, text):
        wait_for(lambda: self.window.find_all("label", text), f"the text {text!r}")

    def test_newcomer(self):
        """Searches, reads what was found and what was seen elsewhere, and takes the answer over."""
        self.start()
        for role, name in CONTROLS:
            with self.subTest(role=role, name=name):
                self.window.find(role, name)
        keys("alt+s")
        self.label("1 Regler gefunden.")
        answers = Table(self.window.find("table", "Antworten"))
        self.assertEqual(answers.texts("Version"), ["HZL-012.0"])
        self.assertEqual(answers.texts("Anlageart"), ["Heizung (1)"])
        self.assertIn("Es kam gar nichts zurück", self.window.find("text", "Befunde").text)
        keys("alt+b")
        self.label("Übernommen: COM2, Geräteadresse 1.")
        keys("Escape")
        wait_for(lambda: not self.window.has("showing"), "the window closed")
        self.assert_usable(self.program)
        self.program.transfer_nothing()
        self.program.end()
        self.assertIn("Schnittstelle=2", self.stored())

    def test_order_of_tab_and_binding(self):
        self.start()
        for role, name in (("push button", "Suchen"), ("check box", "alle Adressen 0 bis 255"),
                           ("push button", "Zuordnen…")):
            keys("Tab")
            wait_for(lambda r=role, n=name: self.window.find(r, n).has("focused"), f"the focus at {name!r}")
        keys("space")
        dialog = self.program.window("Schnittstelle zuordnen")
        wait_for(lambda: dialog.has("active"), "the dialog active")
        keys("alt+n", "Tab")
        for character in "socket://192.0.2.7:4001":
            keys({":": "colon", "/": "slash", ".": "period"}.get(character, character))
        keys("Return")
        wait_for(lambda: not dialog.has("showing"), "the dialog closed")
        self.assertIn("COM1=socket://192.0.2.7:4001", self.stored())


if __name__ == "__main__":
    unittest.main()
