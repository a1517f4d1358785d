"""What a screen reader finds: every window by its title, every control by role and name."""
import os
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import HZL120, LFT205, keys

BUTTON, BOX, LABEL, LIST = "push button", "text", "label", "combo box"

MAIN_CONTROLS = [
    (LIST, "Versionsnummer"),
    (LIST, "Anlageart"),
    ("panel", "Versionsnummer"),
    ("panel", "Anlageart"),
    ("tree", "Parameter"),
    (BUTTON, "Empfangen"),
    (BUTTON, "Senden"),
    (BUTTON, "Standard"),
    (BUTTON, "Vergleichen"),
    (LABEL, "Ready"),
    ("menu item", "Datei"),
    ("menu item", "Optionen"),
    ("menu item", "Werkzeuge"),
    ("menu item", "?"),
]
PANELS = ["Zustand", "Wertedatei"]
TOOL_TIPS = {
    "Empfangen": "Empfängt alle angekreuzten Parameter vom angeschlossenen Regler.",
    "Senden": "Sendet alle angekreuzten Parameter an den angeschlossenen Regler.",
    "Standard": "Setzt alle angekreuzten Parameter auf den jeweiligen Standardwert.",
    "Vergleichen": "Vergleicht alle angekreuzten Parameter mit den entsprechenden im angeschlossenen Regler"
    " und meldet alle Abweichungen.",
}
MENUS = {
    "Datei": ["Öffnen...", "Schließen", "Speichern", "Speichern unter...", "Drucken...", "Beenden"],
    "Optionen": ["Schnittstelle", "Regler", "Dateien"],
    "Werkzeuge": ["Parameterliste", "Suchen", "Rückgängig", "Wiederholen", "Definitionen prüfen",
                  "Sicher senden…", "Sicher empfangen…", "Sicherungen…", "Verbindung…", "Telegramme",
                  "Diagnosebericht…", "Verlauf", "Serviceprotokoll…"],
    "?": ["Info "],
}
REPORT_CONTROLS = [(BOX, "Report"), (BUTTON, "Abbrechen"), (BUTTON, "Print"), (BUTTON, "OK")]
NUMBER_CONTROLS = [
    (BOX, "Wert"),
    (BOX, "Standard"),
    (BOX, "Minimum"),
    (BOX, "Maximum"),
    (BUTTON, "Standardwert übernehmen"),
    (BUTTON, "OK"),
    (BUTTON, "Abbrechen"),
    (LABEL, "Heizkreis 1 Raumsolltemperatur Tag"),
    (LABEL, "Gewünschte Raumtemperatur in der Nutzungszeit"),
]
TEXT_CONTROLS = [
    (BOX, "Wert"),
    (BUTTON, "OK"),
    (BUTTON, "Abbrechen"),
    (LABEL, "Standort"),
    (LABEL, "Raum oder Gebäude in dem der Regler eingebaut ist"),
]
QUESTION_CONTROLS = [
    (BUTTON, f"PC     (Senden Abbrechen)  : {HZL120}"),
    (BUTTON, f"Regler (Werte neu Einlesen): {LFT205}"),
]
OPTIONS_CONTROLS = {
    "Schnittstelle": [(LIST, "Schnittstelle")],
    "Regler": [(LIST, "Geräteadresse")],
    "Dateien": [(BOX, "Versionstabelle"), (BUTTON, "Browse")],
}
EVERY_PAGE_CONTROLS = [("page tab", page) for page in OPTIONS_CONTROLS] + [
    (BUTTON, "OK"),
    (BUTTON, "Abbrechen"),
    (BUTTON, "Übernehmen"),
]
PREVIEW_CONTROLS = [
    ("filler", "Druckvorschau"),
    ("filler", "Druckseite"),
    (BUTTON, "Drucken  "),
    (BUTTON, "Seite Drucken  "),
    (BUTTON, "Ausrichtung  "),
    (BUTTON, "1:2  "),
    (BUTTON, "Schliessen  "),
    (BUTTON, "Vorige Seite"),
    (BUTTON, "Nächste Seite"),
]
ABOUT_CONTROLS = [
    (LABEL, "KALIVOR"),
    (LABEL, "Parametrierung von Reglern"),
    (BUTTON, "OK"),
    (BUTTON, "Systeminfo..."),
]


class Access(Scenario):
    def assert_controls(self, window, controls):
        """They are all there. Nothing else that a user can operate is there without a name."""
        for role, name in controls:
            with self.subTest(window=window.name, role=role, name=name):
                window.find(role, name)
        for role in (BUTTON, BOX, "menu item", "tree"):
            for control in window.find_all(role):
                self.assertTrue(control.name, f"{role} without a name in {window.name!r}")
        # Their names are what is chosen in them.
        for control in window.find_all(LIST):
            self.assertTrue(control.labels, f"{control.name!r} without a label in {window.name!r}")

    def menu_items(self, menu):
        return [item.name for item in menu.find_all("menu item")]

    def close(self, program, window):
        wait_for(lambda: window.has("active"), f"{window.name!r} active")
        keys("Escape")
        wait_for(lambda: not window.has("showing"), f"{window.name!r} closed")

    def test_main_window(self):
        program = self.program()
        self.assert_controls(program.main, MAIN_CONTROLS)
        for panel in PANELS:
            program.main.find(LABEL, description=panel)
        self.assertEqual({caption: program.button(caption).description for caption in TOOL_TIPS}, TOOL_TIPS)
        self.assertTrue(all(row.name for row in program.tree.rows()))

    def test_menus(self):
        program = self.program()
        program.activate(program.main)
        bar = program.main.find("menu bar")
        self.assertEqual(self.menu_items(bar), list(MENUS))
        for caption, items in MENUS.items():
            menu = bar.find("menu item", caption)
            menu.do("ShowMenu")
            wait_for(lambda shown=menu: self.menu_items(shown), f"the menu {caption!r}")
            self.assertEqual(self.menu_items(menu), items)
            keys("Escape")
            wait_for(lambda shown=menu: not self.menu_items(shown), f"the menu {caption!r} closed")

    def test_about_box(self):
        program = self.program()
        menu = program.main.find("menu item", "?")
        menu.do("ShowMenu")
        wait_for(lambda: self.menu_items(menu), "the menu")
        menu.find("menu item", "Info ").press()
        about = program.window("Info")
        self.assert_controls(about, ABOUT_CONTROLS)
        self.close(program, about)
        self.assert_usable(program)

    def test_editors(self):
        program = self.program()
        number = "Heizkreis 1 Raumsolltemperatur Tag"
        for start, controls in ((number, NUMBER_CONTROLS), ("Standort...", TEXT_CONTROLS)):
            program.activate(program.main)
            if program.tree.find(start) is None:
                program.tree.expand_all()
            editor = program.open_editor(start)
            self.assert_controls(editor, controls)
            self.close(program, editor)

    def test_options(self):
        program = self.program()
        program.menu("alt+o", "s")
        options = program.window("Optionen")
        for controls in OPTIONS_CONTROLS.values():
            role, name = controls[0]
            wait_for(lambda role=role, name=name: options.find_all(role, name), f"the page with {name!r}")
            self.assert_controls(options, EVERY_PAGE_CONTROLS + controls)
            keys("ctrl+Tab")
        self.close(program, options)

    def test_preview(self):
        # No printing service, and none is searched for in the network.
        os.environ["CUPS_SERVER"] = "/fehlt/cups.sock"
        program = self.program()
        program.menu("ctrl+p")
        program.window("Drucken").find(BUTTON, "Drucken").press()
        preview = program.window("Print Preview")
        self.assert_controls(preview, PREVIEW_CONTROLS)
        # What is on the page is there to be read, too.
        page = preview.find("filler", "Druckseite").description
        self.assertIn("\nHeizkreis 1\n", page)
        self.assertEqual(preview.find(LABEL, description="Seite").name, "Seite  1 von 3")

    def test_message_box(self):
        path = "/fehlt/fehlt.qpf"
        program = self.program_on(self.controller().device)
        program.menu("ctrl+s")
        program.choose_file("Speichern", path)
        box = program.window("KALIVOR", ("alert",))
        reason = f"Fehler beim schreiben von\n{path}\nDer Ordner ist nicht vorhanden."
        self.assert_controls(box, [(LABEL, reason), (BUTTON, "OK")])

    def test_report_and_question(self):
        program = self.program("--controller", LFT205)
        report = program.transfer("Senden")
        self.assert_controls(report.control, REPORT_CONTROLS)
        self.assert_controls(program.window("Wählen"), QUESTION_CONTROLS)


if __name__ == "__main__":
    unittest.main()
