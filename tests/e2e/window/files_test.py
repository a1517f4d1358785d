"""Value files through the menus, their dialogs and the command line."""
import os
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import HZL120, HZL131, keys, value_file

DAY = "Heizkreis 1 Raumsolltemperatur Tag"
RECORD = 62
VERSION_AT, VERSION_WIDTH = 24, 30
SIZE = 112 * RECORD
QUESTION = "Wählen"


def set_version(path, version):
    with open(path, "r+b") as file:
        file.seek(VERSION_AT)
        file.write(version.encode().ljust(VERSION_WIDTH))


def content(path):
    with open(path, "rb") as file:
        return file.read()


class Files(Scenario):
    def start(self, *arguments):
        return self.program_on(self.controller().device, *arguments)

    def changed_file(self):
        """A value file in which the day's temperature is 22.5."""
        return value_file(self.folder(), "_Hk1RaumSollTag=22.5")

    def test_save_asks_once(self):
        program = self.start()
        path = os.path.join(self.folder(), "a.qpf")
        program.menu("ctrl+s")
        program.choose_file("Speichern", path)
        wait_for(lambda: program.file == path, "the file in the status bar")
        first = content(path)
        self.assertEqual(len(first), SIZE)
        self.assertEqual(first[VERSION_AT : VERSION_AT + VERSION_WIDTH].decode(), HZL120.ljust(VERSION_WIDTH))

        program.type_value(program.open_expanded_editor(DAY), "22.5")
        program.menu("ctrl+s")
        wait_for(lambda: content(path) != first, "the file saved again")
        self.assertFalse(program.is_shown("Speichern"))
        self.assertEqual(os.listdir(os.path.dirname(path)), ["a.qpf"])
        self.assert_usable(program)

    def test_open(self):
        path = self.changed_file()
        program = self.start()
        program.menu("ctrl+o")
        program.choose_file("Öffnen", path)
        wait_for(lambda: program.file == path, "the file in the status bar")
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        self.assert_usable(program)

    def test_save_as_and_close(self):
        path = self.changed_file()
        other = os.path.join(os.path.dirname(path), "other")
        program = self.start(path)
        wait_for(lambda: program.file == path, "the file of the command line")
        before = content(path)
        program.menu("alt+d", "u")
        # No suffix is added, and nothing is asked before an existing file is overwritten.
        program.choose_file("Speichern unter", other)
        wait_for(lambda: program.file == other, "the new name in the status bar")
        self.assertEqual(content(other), before)
        program.menu("alt+d", "u")
        program.choose_file("Speichern unter", other)
        self.assert_usable(program)

        # Two items have this letter: it only goes to the first.
        program.menu("alt+d", "c", "Return")
        wait_for(lambda: program.file == "", "no file in the status bar")
        program.menu("ctrl+s")
        program.cancel_file("Speichern")
        self.assertEqual(program.file, "")
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)

    def test_cancelled_dialogs_change_nothing(self):
        path = self.changed_file()
        before = content(path)
        program = self.start(path)
        wait_for(lambda: program.file == path, "the file of the command line")
        for strokes, title in ((["ctrl+o"], "Öffnen"), (["alt+d", "u"], "Speichern unter")):
            program.menu(*strokes)
            program.cancel_file(title)
            self.assertEqual(program.file, path)
        self.assertEqual(content(path), before)
        self.assert_usable(program)

    def test_unknown_version(self):
        path = self.changed_file()
        set_version(path, "V9")
        program = self.start()
        program.menu("ctrl+o")
        program.choose_file("Öffnen", path)
        self.assertEqual(program.message(), "Unbekannte ReglerVersion: V9".ljust(56))
        self.assertEqual(program.file, path)
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn("    21.5 °C", program.tree.row(DAY).name)
        self.assert_usable(program)

    def question(self):
        """Opens a file of another known version; its question."""
        path = self.changed_file()
        set_version(path, HZL131)
        program = self.start()
        program.menu("ctrl+o")
        program.choose_file("Öffnen", path)
        dialog = program.window(QUESTION)
        self.assertFalse(program.main.enabled)
        return program, dialog

    def answered(self, program, dialog, answer, version):
        dialog.find("push button", answer).press()
        wait_for(lambda: not dialog.has("showing") and program.main.enabled, "the question answered")
        self.assertEqual(program.versions.name, version)
        program.activate(program.main)
        program.tree.expand_all()
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        self.assert_usable(program)

    def test_other_version_converted(self):
        program, dialog = self.question()
        self.answered(program, dialog, f"PC (Daten werden konvertiert): {HZL120}", HZL120)

    def test_other_version_taken_from_the_file(self):
        program, dialog = self.question()
        self.answered(program, dialog, f"Datei: {HZL131}", HZL131)

    def test_missing_file_on_the_command_line(self):
        path = os.path.join(self.folder(), "fehlt.qpf")
        program = self.start(path)
        self.assertEqual(program.message(), f"Fehler beim lesen von\n{path}\nDatei nicht gefunden.")
        self.assertEqual(program.file, path)
        self.assert_usable(program)

    def test_saving_to_what_is_no_file(self):
        program = self.start()
        program.menu("ctrl+s")
        program.choose_file("Speichern", "/dev/full")
        reason = "Der Pfad ist keine gewöhnliche Datei."
        self.assertEqual(program.message(), f"Fehler beim schreiben von\n/dev/full\n{reason}")
        self.assertEqual(program.file, "/dev/full")
        self.assert_usable(program)

    def test_menus_and_shortcuts_rest_during_a_transfer(self):
        program = self.program("--fault", "late:300")
        program.transfer_nothing()
        report = program.transfer("Empfangen")
        text = report.wait_for_text("Empfangen...")
        keys("ctrl+o")
        wait_for(lambda: len(report.text) > len(text) + 3, "more of the transfer")
        self.assertFalse(program.is_shown("Öffnen"))
        report.button("Abbrechen").press()
        report.wait_for_end()
        report.close()
        self.assertFalse(program.is_shown("Öffnen"))
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
