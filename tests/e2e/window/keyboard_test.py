"""Every window with the keyboard alone: Tab goes round, Enter accepts, Esc leaves, letters open the menus."""
import os
import subprocess
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import HZL120, LFT205, keys, value_file

GROUP = "Heizkreis 1  "
DAY = "Heizkreis 1 Raumsolltemperatur Tag"
PLACE = "Standort...."
# What has the focus together with the control that the user sees it in.
COMPANIONS = ("page tab", "panel")
TABS = " (page)"

MAIN = ["Versionsnummer", "Anlageart", "Parameter", "Empfangen", "Senden", "Standard", "Vergleichen"]
OPTIONS = {
    "Schnittstelle": ["Schnittstelle", "OK", "Abbrechen", "Übernehmen"],
    "Regler": ["Geräteadresse", "OK", "Abbrechen", "Übernehmen"],
    "Dateien": ["Versionstabelle", "Browse", "OK", "Abbrechen", "Übernehmen"],
}
NUMBER = ["Wert", "Standardwert übernehmen", "Standard", "Minimum", "Maximum", "OK", "Abbrechen"]
TEXT = ["Wert", "OK", "Abbrechen"]
SCALE, CLOSE, NEXT = "1:2", "Schliessen", "Nächste Seite"
PREVIEW = ["Druckvorschau", "Drucken", "Seite Drucken", "Ausrichtung", SCALE, CLOSE, "Vorige Seite", NEXT]


def type_text(text):
    """Types it instead of what is there."""
    keys("ctrl+a")
    subprocess.run(["xdotool", "type", text], check=True)


class Keyboard(Scenario):
    def setUp(self):
        # No printing service, and none is searched for in the network.
        os.environ["CUPS_SERVER"] = "/fehlt/cups.sock"

    def focus(self, window):
        """The name of the control that has the focus, or None while none or several have it."""
        names = [
            self.name_of(control)
            for control in window.descendants()
            if control.has("focused") and control.has("showing") and control.role not in COMPANIONS
        ]
        names = [name for name in names if name]
        return names[0] if len(names) == 1 else None

    def name_of(self, control):
        """As a user would call it: a list shows its text as its name, and the strip of tabs has the page's."""
        if control.role == "combo box":
            return (control.labels or [control.name])[0]
        return control.name.strip() + (TABS if control.role == "page tab list" else "")

    def wait_for_focus(self, window, name):
        wait_for(lambda: self.focus(window) == name, f"the focus in {name!r} of {window.name!r}")

    def tab(self, window, key="Tab"):
        """Goes on to the next control; its name."""

        def other():
            now = self.focus(window)
            return now != before and now

        before = wait_for(lambda: self.focus(window), f"the focus in {window.name!r}")
        keys(key)
        return wait_for(other, f"another control than {before!r}")

    def tab_to(self, window, name):
        seen = []
        while self.focus(window) != name:
            self.assertNotIn(self.focus(window), seen, f"{name!r} is not in the round")
            seen.append(self.focus(window))
            self.tab(window)

    def assert_round(self, window, names, start=0):
        """Tab goes through all of these and back to the start, and so does Shift+Tab the other way."""
        self.wait_for_focus(window, names[start])
        forth = names[start + 1 :] + names[: start + 1]
        self.assertEqual([self.tab(window) for _ in names], forth)
        self.assertEqual([self.tab(window, "shift+Tab") for _ in names], forth[-2::-1] + forth[-1:])

    def closed(self, window):
        wait_for(lambda: not window.has("showing"), f"{window.name!r} closed")

    def start(self, *options):
        program = self.program(*options)
        program.activate(program.main)
        return program

    def opened(self, program, title):
        """The window, when it has the keyboard by itself."""
        window = program.window(title)
        wait_for(lambda: window.has("active"), f"{title!r} active")
        return window

    def editor_of(self, program, row):
        program.tree.go_to(row)
        keys("Return")
        return self.opened(program, "Edit Parameter")

    def test_main_window(self):
        program = self.start()
        self.assert_round(program.main, MAIN)
        keys("Down")
        wait_for(lambda: program.versions.name != HZL120, "another version")
        self.tab(program.main)
        keys("End")
        wait_for(lambda: program.plants.name not in ("", "Anlageart"), "another plant type")

    def test_tree(self):
        program = self.start()
        self.tab_to(program.main, "Parameter")
        keys("Home", "Down", "Down")
        group = program.tree.row(GROUP)
        wait_for(lambda: program.tree.row(GROUP).has("focused"), "the group as the current row")
        self.assertIsNone(program.tree.find(DAY))
        keys("plus")
        wait_for(lambda: program.tree.find(DAY), "the group open")
        keys("space")
        wait_for(lambda: not program.tree.row(DAY).has("checked"), "no check mark below the group")
        keys("Down")
        wait_for(lambda: not program.tree.row(GROUP).has("focused"), "the next row")
        keys("space")
        current = next(row for row in program.tree.rows() if row.has("focused"))
        wait_for(lambda: current.has("checked"), "its check mark")
        keys("Up", "minus")
        wait_for(lambda: not program.tree.find(DAY), "the group closed")
        self.assertFalse(group.has("checked"))

    def test_menus(self):
        program = self.start()
        bar = program.main.find("menu bar")
        menus = {name: bar.find("menu item", name) for name in ("Datei", "Optionen", "Werkzeuge", "?")}
        for stroke, name in (("alt+d", "Datei"), ("alt+o", "Optionen"), ("alt+w", "Werkzeuge"), ("alt+question", "?")):
            program.menu(stroke, "Down")
            self.assertTrue(menus[name].find_all("menu item"), name)
            keys("Escape", "Escape")
            wait_for(lambda menu=menus[name]: not menu.find_all("menu item"), f"the menu {name!r} closed")
        program.menu("alt+d", "Right")
        wait_for(lambda: menus["Optionen"].find_all("menu item"), "the menu to the right")
        keys("Escape", "Escape")
        program.menu("alt+d", "f")
        program.cancel_file("Öffnen")
        program.menu("alt+o", "r")
        options = self.opened(program, "Optionen")
        keys("Escape")
        self.closed(options)
        self.assert_usable(program)
        program.menu("alt+d", "b")
        wait_for(lambda: program.process.poll() is not None, "the end of the program")
        self.assertEqual(program.process.returncode, 0)

    def test_options(self):
        program = self.start()
        program.menu("alt+o", "s")
        options = self.opened(program, "Optionen")
        for page, controls in OPTIONS.items():
            # The one that is on every page.
            self.tab_to(options, "OK")
            self.assert_round(options, [page + TABS, *controls], 1 + controls.index("OK"))
            keys("ctrl+Tab")
        self.tab_to(options, "Abbrechen")
        keys("space")
        self.closed(options)
        self.assert_usable(program)

    def test_number_editor(self):
        program = self.start()
        program.tree.expand_all()
        editor = self.editor_of(program, DAY)
        self.assert_round(editor, NUMBER)
        type_text("22.5")
        self.tab(editor)
        keys("space")
        wait_for(lambda: editor.find("text", "Wert").text == "21.5", "the standard value")
        keys("shift+Tab")
        self.wait_for_focus(editor, "Wert")
        type_text("23.5")
        keys("Return")
        self.closed(editor)
        wait_for(lambda: "    23.5 °C" in program.tree.row(DAY).name, "the new value")
        editor = self.editor_of(program, DAY)
        self.wait_for_focus(editor, "Wert")
        type_text("24.5")
        keys("Escape")
        self.closed(editor)
        self.assertIn("    23.5 °C", program.tree.row(DAY).name)

    def test_text_editor(self):
        program = self.start()
        program.tree.expand_all()
        editor = self.editor_of(program, PLACE)
        self.assert_round(editor, TEXT)
        type_text("Keller")
        self.tab(editor)
        keys("space")
        self.closed(editor)
        wait_for(lambda: program.tree.row(PLACE).name.endswith(". Keller"), "the new text")

    def test_transfer_and_report(self):
        program = self.start()
        self.tab_to(program.main, "Empfangen")
        keys("space")
        report = self.opened(program, "Report")
        wait_for(lambda: report.find("push button", "OK").enabled, "the end of the transfer")
        self.assertTrue(report.find("text", "Report").text.endswith("\nEmpfangen beendet\n"))
        self.tab_to(report, "OK")
        self.assert_round(report, ["OK", "Report", "Print"])
        keys("Return")
        self.closed(report)
        self.assert_usable(program)

    def test_abort(self):
        program = self.start("--fault", "late:300")
        self.tab_to(program.main, "Empfangen")
        keys("space")
        report = self.opened(program, "Report")
        text = report.find("text", "Report")
        wait_for(lambda: "Empfangen...." in text.text, "some of the transfer")
        keys("Escape")
        wait_for(lambda: text.text.endswith("\nEmpfangen abgebrochen\n"), "the end of the transfer")
        self.assertTrue(report.has("showing"))
        keys("Escape")
        self.closed(report)
        self.assert_usable(program)

    def test_question(self):
        program = self.start("--controller", LFT205)
        self.tab_to(program.main, "Senden")
        keys("space")
        question = self.opened(program, "Wählen")
        pc, regler = f"PC     (Senden Abbrechen)  : {HZL120}", f"Regler (Werte neu Einlesen): {LFT205}"
        # Typed before it was read.
        keys("Return", "space", "KP_Enter")
        self.assertIsNone(self.focus(question))
        self.assertTrue(question.has("showing"))
        keys("Tab")
        self.assert_round(question, [pc, regler])
        keys("Escape")
        self.tab(question)
        self.assertTrue(question.has("showing"))
        keys("Return")
        self.closed(question)
        wait_for(lambda: program.versions.name == LFT205, "the controller's version")

    def test_files(self):
        path = value_file(self.folder(), "_Hk1RaumSollTag=22.5")
        other = os.path.join(os.path.dirname(path), "other.qpf")
        program = self.start()
        keys("ctrl+o")
        dialog = self.opened(program, "Öffnen")
        self.wait_for_focus(dialog, "Dateiname:")
        type_text(path)
        keys("Return")
        wait_for(lambda: program.file == path, "the file in the status bar")
        program.menu("alt+d", "u")
        dialog = self.opened(program, "Speichern unter")
        self.wait_for_focus(dialog, "Dateiname:")
        type_text(other)
        keys("Return")
        wait_for(lambda: program.file == other, "the other file in the status bar")
        self.assertTrue(os.path.exists(other))

    def test_message_box(self):
        path = os.path.join(self.folder(), "fehlt.qpf")
        program = self.program_on(self.controller().device)
        program.activate(program.main)
        keys("ctrl+s")
        dialog = self.opened(program, "Speichern")
        self.wait_for_focus(dialog, "Dateiname:")
        type_text(os.path.join(path, "a.qpf"))
        keys("Return")
        box = program.window("KALIVOR", ("alert",))
        wait_for(lambda: box.has("active") and self.focus(box) == "OK", "the box active")
        keys("Return")
        self.closed(box)
        self.assert_usable(program)

    def test_printing(self):
        path = os.path.join(self.folder(), "liste.pdf")
        program = self.start()
        keys("ctrl+p")
        dialog = self.opened(program, "Drucken")
        self.tab_to(dialog, "Ausgabedatei:")
        type_text(path)
        self.tab_to(dialog, "Drucken")
        keys("space")
        preview = self.opened(program, "Print Preview")
        self.assert_round(preview, PREVIEW)
        self.tab_to(preview, NEXT)
        keys("space")
        wait_for(lambda: preview.find("label", description="Seite").name == "Seite  2 von 3", "the second page")
        self.tab_to(preview, SCALE)
        keys("Down", "Down", "Return")
        wait_for(lambda: preview.find_all("push button", "1:1  "), "the page in full size")
        self.tab_to(preview, "Drucken")
        keys("space")
        wait_for(lambda: os.path.exists(path), "the printed file")
        self.tab_to(preview, CLOSE)
        keys("space")
        self.closed(preview)
        keys("ctrl+p")
        dialog = self.opened(program, "Drucken")
        keys("Escape")
        self.closed(dialog)
        self.assert_usable(program)

    def test_about_box(self):
        program = self.start()
        program.menu("alt+question", "o")
        about = self.opened(program, "Info")
        self.assert_round(about, ["OK", "Systeminfo..."])
        keys("Return")
        self.closed(about)
        program.menu("alt+question", "o")
        about = self.opened(program, "Info")
        keys("alt+s")
        self.assertEqual(program.message(), "Systeminformationsprogramm zur Zeit nicht verfügbar.")
        keys("Escape")
        self.closed(about)
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
